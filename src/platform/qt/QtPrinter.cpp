#include "platform/qt/QtPrinter.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QFont>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QLineEdit>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <algorithm>
#include <optional>

#include "platform/qt/CommandWindow.h"
#include "platform/qt/QtText.h"
#include "text/RuntimeError.h"

namespace hylden {

namespace {

constexpr double kPageUnits = 100;
constexpr int kPrinterError = 482;

RuntimeError PrinterFailure() {
  return {kPrinterError, "Printer error"};
}

QFont ReportFont(const PrintedLine& line) {
  QFont font;
  font.setFamilies(
      {QStringLiteral("Courier New"), QStringLiteral("Liberation Mono"), QStringLiteral("Nimbus Mono PS")});
  font.setStyleHint(QFont::TypeWriter);
  font.setFixedPitch(true);
  font.setPointSize(line.points);
  font.setBold(line.bold);
  return font;
}

/// Where the next line goes, page by page.
class PageWriter {
 public:
  PageWriter(const PrintJob& job, QPrinter& printer)
      : job_(job),
        printer_(printer),
        unit_(printer.pageLayout().paintRectPixels(printer.resolution()).height() / kPageUnits) {
    if (!painter_.begin(&printer)) throw PrinterFailure();
    position_ = job.top;
  }

  void Write(const PrintedLine& line) {
    if (line.newPage && position_ > job_.top) BeginPage();
    const QFont font = ReportFont(line);
    const QFontMetricsF metrics(font, &printer_);
    painter_.setFont(font);
    QString rest = ToQt(line.text);
    const qsizetype perLine = CharactersPerLine(metrics);
    do {
      WriteLine(rest.left(perLine), metrics);
      rest = rest.mid(perLine);
    } while (!rest.isEmpty());
  }

  void Finish() {
    if (!painter_.end() || printer_.printerState() == QPrinter::Error) throw PrinterFailure();
  }

 private:
  qsizetype CharactersPerLine(const QFontMetricsF& metrics) const {
    const double width = printer_.pageLayout().paintRectPixels(printer_.resolution()).width();
    return std::max<qsizetype>(1, static_cast<qsizetype>(width / metrics.horizontalAdvance(QLatin1Char('0'))));
  }

  void WriteLine(const QString& text, const QFontMetricsF& metrics) {
    const double height = metrics.lineSpacing() / unit_;
    if (position_ > job_.top && (position_ > job_.bottom || position_ + height > kPageUnits)) BeginPage();
    painter_.drawText(QPointF(0, position_ * unit_ + metrics.ascent()), text);
    position_ += height;
  }

  void BeginPage() {
    if (!printer_.newPage()) throw PrinterFailure();
    position_ = job_.top;
  }

  const PrintJob& job_;
  QPrinter& printer_;
  QPainter painter_;
  double unit_;
  double position_ = 0;
};

bool ChoosePrinter(QPrinter& printer, const QString& pdfDirectory) {
  QPrintDialog dialog(&printer, CommandWindow::ForBox());
  dialog.setWindowTitle(QStringLiteral("Printer"));
  // Set at the printer itself, the name would choose PDF for those who have one of paper.
  auto* const file = dialog.findChild<QLineEdit*>(QStringLiteral("filename"));
  const QString name = printer.docName().isEmpty() ? QStringLiteral("print") : printer.docName();
  if (file && !pdfDirectory.isEmpty()) file->setText(QDir(pdfDirectory).filePath(name + QLatin1String(".pdf")));
  return dialog.exec() == QDialog::Accepted;
}

/// A PDF writer tells of no failure, so the file is looked at.
void CheckPdf(const QString& path) {
  if (QFileInfo(path).size() == 0) throw RuntimeError(ErrorNumber::PathFileAccessError);
}

}  // namespace

void PaintJob(const PrintJob& job, QPrinter& printer) {
  PageWriter writer(job, printer);
  for (const PrintedLine& line : job.lines) writer.Write(line);
  writer.Finish();
}

bool QtPrinter::Print(const PrintJob& job) {
  if (preview_) return Preview(job);
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(ToQt(job.title));
  if (!outputFile_.isEmpty()) {
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(outputFile_);
  } else if ((job.askForPrinter || QPrinterInfo::defaultPrinter().isNull()) &&
             !ChoosePrinter(printer, pdfDirectory ? ToQt(pdfDirectory()) : QString())) {
    return false;
  }
  PaintJob(job, printer);
  if (printer.outputFormat() == QPrinter::PdfFormat) CheckPdf(printer.outputFileName());
  return true;
}

bool QtPrinter::Preview(const PrintJob& job) {
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(ToQt(job.title));
  QPrintPreviewDialog dialog(&printer, CommandWindow::ForBox());
  dialog.setWindowTitle(QStringLiteral("Print Preview"));
  dialog.resize(900, 700);
  // An exception may not cross the dialog's event handling; it is kept until the dialog has closed.
  std::optional<RuntimeError> failure;
  QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, [&](QPrinter* paper) {
    try {
      PaintJob(job, *paper);
    } catch (const RuntimeError& error) {
      failure = error;
    }
  });
  const bool printed = dialog.exec() == QDialog::Accepted;
  if (failure) throw RuntimeError(*failure);
  return printed;
}

}  // namespace hylden
