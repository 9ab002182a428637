#include <QPrinter>
#include <string_view>

#include "desktop/FormDriver.h"
#include "platform/console/ConsoleClock.h"
#include "platform/qt/QtEventLoop.h"
#include "platform/qt/QtPrinter.h"
#include "platform/qt/QtSpeaker.h"
#include "support/TempDir.h"
#include "text/RuntimeError.h"
#include "widgets/FileDrop.h"
#include "widgets/ThemeColors.h"

namespace hylden {
namespace {

TEST(QtEventLoop, RunsWhatIsPendingInShortWaitsAndWaitsNoMoreAfterTheDeadline) {
  ConsoleClock clock;
  QtEventLoop events(clock);
  bool ran = false;
  QTimer::singleShot(0, [&] { ran = true; });
  events.Yield();
  EXPECT_TRUE(ran);
  QElapsedTimer timer;
  timer.start();
  for (int i = 0; i < 20; ++i) events.Yield();
  // 20 waits of 1 ms; the bound leaves room for a busy machine, and would be missed by waits without a wake-up.
  EXPECT_LT(timer.elapsed(), 2000);
  EXPECT_GT(timer.nsecsElapsed(), 5'000'000);
  timer.start();
  for (int i = 0; i < 1000; ++i) events.Yield(clock.TickMs());
  EXPECT_LT(timer.elapsed(), 700);
}

int Pages(const std::string& pdf) {
  constexpr std::string_view kPage = "/Type /Page\n";
  int pages = 0;
  for (std::size_t at = pdf.find(kPage); at != std::string::npos; at = pdf.find(kPage, at + 1)) ++pages;
  return pages;
}

PrintJob Report(int lines) {
  PrintJob job;
  job.title = "Report";
  job.top = 5;
  job.bottom = 90;
  job.lines.assign(static_cast<std::size_t>(lines), PrintedLine{"  0.15,  117.0"});
  return job;
}

TEST(QtPrinter, LongReportAndWideLinesGoOnBelow) {
  const TempDir directory;
  QtPrinter printer;
  printer.SetOutputFile(QString::fromStdString(directory.File("report.pdf")));
  const auto pages = [&](const PrintJob& job) {
    EXPECT_TRUE(printer.Print(job));
    return Pages(directory.Read("report.pdf"));
  };
  EXPECT_EQ(pages(Report(20)), 1);
  EXPECT_EQ(pages(Report(130)), 3);
  PrintJob wide = Report(30);
  for (PrintedLine& line : wide.lines) line.text.assign(400, 'x');
  EXPECT_GT(pages(wide), 1) << "a line wider than the page is cut";
  printer.SetOutputFile(QString::fromStdString(directory.File("missing/report.pdf")));
  EXPECT_THROW(printer.Print(Report(1)), RuntimeError);
}

TEST(QtPrinter, PdfIsOfferedInTheResultsDirectory) {
  const TempDir results;
  QtPrinter printer;
  printer.pdfDirectory = [&] { return results.Path(); };
  PrintJob job;
  job.title = "Test Run Parameters";
  job.askForPrinter = true;
  std::string offered;
  OnModalWindow([&](QWidget& dialog) {
    offered = TextOf(dialog, "filename");
    dynamic_cast<QDialog&>(dialog).reject();
  });
  EXPECT_FALSE(printer.Print(job));
  EXPECT_EQ(offered, results.File("Test Run Parameters.pdf"));
}

TEST(Tone, WaveHasTheLengthAskedFor) {
  const QByteArray wave = ToneWave({{1000, 200}});
  EXPECT_TRUE(wave.startsWith("RIFF"));
  EXPECT_EQ(wave.size(), 44 + 2 * 22050 / 5);
  EXPECT_EQ(ToneWave({{1000, -1}}).size(), 44);
  EXPECT_EQ(ToneWave({{1000, 1 << 30}}).size(), 44 + 2 * 22050 * 5);
  EXPECT_EQ(ToneWave({{1000, 40}, {1176, 40}, {870, 120}}).size(), wave.size()) << "tones in a row";
}

TEST(FileDrop, TakesOneFileOfItsKinds) {
  const std::pair<QList<QUrl>, QString> rows[] = {
      {{QUrl::fromLocalFile("/s/a.eqp")}, "/s/a.eqp"},
      {{QUrl::fromLocalFile("/s/A.EQP")}, "/s/A.EQP"},
      {{QUrl::fromLocalFile("/s/a.los")}, "/s/a.los"},
      {{QUrl::fromLocalFile("/s/a.tst")}, ""},
      {{QUrl::fromLocalFile("/s/a.eqp"), QUrl::fromLocalFile("/s/b.eqp")}, ""},
      {{QUrl("http://host/a.eqp")}, ""},
  };
  for (const auto& [urls, expected] : rows) {
    QWidget window;
    QString taken;
    new FileDrop(&window, "eqp los", [&](const QString& path) { taken = path; });
    EXPECT_EQ(Drop(window, urls), !expected.isEmpty());
    EXPECT_EQ(taken, "") << "the drop itself must not open dialogs";
    QCoreApplication::processEvents();
    EXPECT_EQ(taken, expected) << urls.first().toString().toStdString();
  }
}

TEST(FileDrop, WaitsForNobodyBehindABox) {
  QWidget window;
  new FileDrop(&window, "eqp", [](const QString&) { ADD_FAILURE() << "a command was interrupted while it asked"; });
  QMessageBox box(&window);
  box.open();
  Drop(window, {QUrl::fromLocalFile("/s/a.eqp")});
  QCoreApplication::processEvents();
}

double Luminance(const QColor& color) {
  const auto linear = [](double c) { return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

TEST(HighlightRed, IsReadableInLightAndDarkThemes) {
  for (const QColor& ground :
       {QColor(Qt::white), QColor(0xef, 0xef, 0xef), QColor(0x2b, 0x2b, 0x2b), QColor(Qt::black)}) {
    QPalette palette;
    const bool dark = ground.lightness() < 128;
    palette.setColor(QPalette::Window, ground);
    palette.setColor(QPalette::WindowText, dark ? Qt::white : Qt::black);
    const double a = Luminance(ground), b = Luminance(HighlightRed(palette));
    EXPECT_GE((std::max(a, b) + 0.05) / (std::min(a, b) + 0.05), 4.5) << ground.name().toStdString();
  }
}

}  // namespace
}  // namespace hylden
