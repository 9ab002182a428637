#include "testrun/qt/ReportPdf.h"

#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>

#include "platform/qt/QtText.h"
#include "shell/Version.h"
#include "testrun/qt/ReportPages.h"
#include "text/RuntimeError.h"
#include "text/TextFile.h"
#include "widgets/CurveView.h"

namespace hylden {

namespace {
constexpr int kResolution = 600;
constexpr int kPrinterError = 482;
}  // namespace

std::string ReportPdf(const RunReportText& report, ReportPaper paper) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter writer(&buffer);
  writer.setPdfVersion(QPagedPaintDevice::PdfVersion_A1b);
  writer.setResolution(kResolution);
  writer.setPageSize(QPageSize(paper == ReportPaper::A4 ? QPageSize::A4 : QPageSize::Letter));
  writer.setPageMargins(QMarginsF());
  writer.setTitle(ToQt(report.Title));
  writer.setCreator(ToQt(VersionTitle()));
  const int pages = ReportPages(report, writer, nullptr, 0).Compose();
  const auto painter = CurveView::PagePainter(writer);
  if (!painter->isActive()) throw RuntimeError(kPrinterError, "Printer error");
  ReportPages(report, writer, painter.get(), pages).Compose();
  painter->end();
  return bytes.toStdString();
}

Done FileReport(const OpenedRun& run, const ReportChoices& choices, const std::string& path) {
  return Trapped("FileReport", path,
                 [&] { ReplaceFile(path, ReportPdf(ReportOf(run, choices.AllSteps), choices.Paper)); });
}

}  // namespace hylden
