// Drives the real windows through a day's work on the simulated bench and leaves a picture of each: for the README and
// the manual, and for whoever changes a window and wants to look at it.
//   hylden-pictures STATION-DIRECTORY OUTPUT-DIRECTORY

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QScrollBar>
#include <QSpinBox>
#include <QTabWidget>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <array>
#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>

#include "app/BusChoice.h"
#include "app/Desktop.h"
#include "app/Station.h"
#include "bench/BenchConfig.h"
#include "bench/qt/frmBench.h"
#include "documents/qt/frmCalCurves.h"
#include "documents/qt/frmCalSetup.h"
#include "documents/qt/frmTestDef.h"
#include "editors/qt/frmEditFactor.h"
#include "platform/VirtualTime.h"
#include "platform/qt/QtDialogs.h"
#include "platform/qt/QtEventLoop.h"
#include "platform/qt/QtPrinter.h"
#include "run/qt/RunCurvePanel.h"
#include "shell/qt/TopMenu.h"
#include "testrun/qt/frmRunTest.h"

namespace hylden {
namespace {

constexpr int kOutlierRow = 90;  ///< of the demo cable, where the picture shows one

class SilentSpeaker : public Speaker {
 public:
  void Beep(int, int) override {}
};

/// The visible window of a kind, by the name of its class; a missing one ends the tour.
QWidget& Window(const char* name) {
  for (QWidget* const window : QApplication::topLevelWidgets())
    if (window->isVisible() && window->objectName() == QLatin1String(name)) return *window;
  throw std::runtime_error(std::string("no window ") + name);
}

template <class Control>
Control& Find(QWidget& window, const char* name) {
  auto* const control = window.findChild<Control*>(QLatin1String(name));
  if (!control) throw std::runtime_error(std::string("no control ") + name);
  return *control;
}

/// The windows' own timers run on real time: a table follows its last row a moment later.
void Settle(int ms = 80) {
  QElapsedTimer time;
  for (time.start(); time.elapsed() < ms;) QApplication::processEvents(QEventLoop::AllEvents, 10);
}

class Tour {
 public:
  Tour(const QString& output) : output_(output) {
    answer_.setInterval(10);
    QObject::connect(&answer_, &QTimer::timeout, [this] { AnswerBox(); });
    answer_.start();
  }

  void Grab(QWidget& window, const char* name) {
    // In a run curves are drawn when there is time: on the bench's clock there seldom is any.
    Settle(window.findChild<RunCurvePanel*>() ? 400 : 80);
    const QString path = output_.filePath(QLatin1String(name) + QLatin1String(".png"));
    if (!window.grab().save(path)) throw std::runtime_error("can't write " + path.toStdString());
    std::cout << path.toStdString() << std::endl;
  }
  void GrabTabs(QWidget& window, const char* name) {
    auto& tabs = Find<QTabWidget>(window, "tabSetup");
    for (int i = 0; i < tabs.count(); ++i) {
      tabs.setCurrentIndex(i);
      Grab(window, (std::string(name) + "-" + std::to_string(i + 1)).c_str());
    }
    tabs.setCurrentIndex(0);
  }
  static void Press(QWidget& window, const char* button) {
    Find<QAbstractButton>(window, button).click();
    Settle();
  }
  /// A box with this title is pictured and answered when it opens.
  void OnBox(const char* title, const char* name, std::function<void(QWidget&)> answer) {
    boxes_[QLatin1String(title)] = {name, std::move(answer)};
  }
  void OnBox(const char* title, const char* name, QMessageBox::StandardButton button) {
    OnBox(title, name, [button](QWidget& box) { dynamic_cast<QMessageBox&>(box).button(button)->click(); });
  }

 private:
  struct Box {
    const char* name;
    std::function<void(QWidget&)> answer;
  };

  void AnswerBox() {
    QWidget* const box = QApplication::activeModalWidget();
    const auto known = box ? boxes_.find(box->windowTitle()) : boxes_.end();
    if (known == boxes_.end() || busy_) return;
    busy_ = true;
    Grab(*box, known->second.name);
    busy_ = false;
    known->second.answer(*box);
  }

  QDir output_;
  QTimer answer_;
  std::map<QString, Box> boxes_;
  bool busy_ = false;
};

/// What happens during the run: a picture in the middle, then manual mode with a threshold.
class DuringTheRun {
 public:
  DuringTheRun(Tour& tour, frmRunTest& run) : tour_(tour), run_(run) {}

  void Look() {
    if (looking_) return;
    looking_ = true;
    if (stage_ == 0 && CurrentStep() == 20) {
      tour_.Grab(run_, "test-run");
      tour_.Grab(Window("frmRunButtons"), "run-controls");
      stage_ = 1;
    } else if (stage_ == 1 && CurrentStep() == 49) {
      Tour::Press(Window("frmRunButtons"), "cmdManual");
      stage_ = 2;
    } else if (stage_ == 2 && IsManual()) {
      // 12 MHz, where the demo product is at its weakest.
      QWidget& manual = Window("frmManual");
      Find<QScrollBar>(manual, "scrFreqStep").setValue(47);
      Find<QScrollBar>(manual, "scrDbOffset").setValue(25);
      stage_ = 3;
      QTimer::singleShot(1200, [this] { MarkThreshold(); });
    }
    looking_ = false;
  }

 private:
  int CurrentStep() const { return Find<QLabel>(run_, "lblStep").text().section('#', 1).toInt(); }
  static bool IsManual() {
    for (QWidget* const window : QApplication::topLevelWidgets())
      if (window->isVisible() && window->objectName() == QLatin1String("frmManual")) return true;
    return false;
  }
  void PicturePanel() {
    auto& panel = dynamic_cast<frmBench&>(Window("frmBench"));
    panel.Refresh();
    tour_.Grab(panel, "bench-panel");
  }
  void MarkThreshold() {
    tour_.Grab(Window("frmManual"), "manual-mode");
    PicturePanel();
    tour_.OnBox("Threshold Comment", "threshold-comment", [](QWidget& box) {
      box.findChild<QLineEdit*>()->setText(QStringLiteral("display flickers"));
      dynamic_cast<QDialog&>(box).accept();
    });
    Tour::Press(Window("frmManual"), "cmdThreshold");
    tour_.Grab(run_, "test-run-threshold");
    Tour::Press(Window("frmManual"), "cmdReturn");
  }

  Tour& tour_;
  frmRunTest& run_;
  int stage_ = 0;
  bool looking_ = false;
};

void PrintReports(frmRunTest& run, QtPrinter& printer, const QDir& output) {
  const std::pair<RunReportKind, const char*> reports[] = {{RunReportKind::Brief, "report-brief.pdf"},
                                                           {RunReportKind::Detailed, "report-detailed.pdf"},
                                                           {RunReportKind::Threshold, "report-threshold.pdf"}};
  for (const auto& [kind, name] : reports) {
    printer.SetOutputFile(output.filePath(QLatin1String(name)));
    run.PrintReport(kind);
  }
}

/// Takes a picture of the run once this figure is on it, and one at its end.
void PictureRun(Tour& tour, QtVirtualEventLoop& events, QWidget& run, const char* button, const char* frequency,
                const char* name) {
  bool taken = false;
  events.onYield = [&] {
    if (taken || Find<QLabel>(run, "lblFreq").text() != QLatin1String(frequency)) return;
    taken = true;
    tour.Grab(run, (std::string(name) + "-run").c_str());
  };
  Tour::Press(run, button);  // returns when the run has ended
  events.onYield = nullptr;
  if (!taken) throw std::runtime_error(std::string("the run never came to ") + frequency + " MHz");
  tour.Grab(run, (std::string(name) + "-finished").c_str());
}

/// Curves beside a form, once more over others.
void PictureCurves(QWidget& form, Tour& tour, const char* file, const char* name) {
  QWidget& curves = Window("frmCalCurves");
  tour.Grab(curves, name);
  dynamic_cast<frmCalCurves&>(curves).AddFile(file);
  tour.Grab(curves, (std::string(name) + "-laid-over").c_str());
  Find<QComboBox>(curves, "cmbQuantity").setCurrentText(QStringLiteral("Gain to the test level"));
  Find<QAbstractButton>(curves, "chkDifference").click();
  tour.Grab(curves, (std::string(name) + "-difference").c_str());
  curves.close();
  Settle();
  form.activateWindow();
}

/// The calibration setup, and a calibration of a few points.
void PictureCalibration(Desktop& desktop, Tour& tour, QtVirtualEventLoop& events) {
  Tour::Press(desktop.Menu(), "cmdCalibration");
  auto& setup = dynamic_cast<frmCalSetup&>(Window("frmCalSetup"));
  setup.LoadFile(QStringLiteral("cdn-10v.csu"));
  Find<QAbstractButton>(setup, "optLinStep").click();
  Find<QLineEdit>(setup, "txtLinearStep").setText(QStringLiteral("5"));
  Find<QLineEdit>(setup, "txtStartFreq").setText(QStringLiteral("5"));
  tour.GrabTabs(setup, "calibration-setup");
  Tour::Press(setup, "cmdStart");
  tour.OnBox("Save Calibration", "calibration-save-question", QMessageBox::No);
  PictureRun(tour, events, Window("frmRunCal"), "cmdStart", "100.0", "calibration");
  Window("frmRunCal").close();
  Settle();
  tour.OnBox("Save Calibration Setup", "unsaved-question", QMessageBox::No);
  setup.close();
  Settle();
}

/// The list builder, opened by a form that sets up a run.
void PictureListBuilder(QWidget& setup, Tour& tour) {
  Tour::Press(setup, "cmdCreateList");
  QWidget& builder = Window("frmBuildList");
  const std::pair<const char*, std::array<const char*, 3>> parts[] = {{"optLog", {"0.15", "80", "1"}},
                                                                      {"optLinear", {"11.5", "12.5", "0.05"}}};
  for (const auto& [kind, texts] : parts) {
    Find<QAbstractButton>(builder, kind).click();
    Find<QLineEdit>(builder, "txtRangeStart").setText(QLatin1String(texts[0]));
    Find<QLineEdit>(builder, "txtRangeEnd").setText(QLatin1String(texts[1]));
    Find<QLineEdit>(builder, "txtStepSize").setText(QLatin1String(texts[2]));
    Tour::Press(builder, "cmdAdd");
  }
  tour.Grab(builder, "list-builder");
  Find<QAbstractButton>(builder, "cmdClear").click();
  tour.OnBox("Hylden", "list-question", QMessageBox::No);
  builder.close();
  Settle();
}

/// Both passes of an insertion-loss calibration.
void PictureCable(Desktop& desktop, Tour& tour, QtVirtualEventLoop& events) {
  desktop.OpenCableSetup(&desktop.Menu());
  QWidget& setup = Window("frmCblSetup");
  const std::pair<const char*, const char*> entries[] = {
      {"txtStartFreq", "0.15"}, {"txtStopFreq", "230"}, {"txtLogStep", "20"}, {"txtLev", "-10"}};
  for (const auto& [box, text] : entries) Find<QLineEdit>(setup, box).setText(QLatin1String(text));
  tour.Grab(setup, "insertion-loss-setup");
  PictureListBuilder(setup, tour);
  Tour::Press(setup, "cmdStart");
  QWidget& passes = Window("frmRunCablCal");
  Tour::Press(passes, "cmdDirect");
  tour.OnBox("Save Insertion Loss", "insertion-loss-question", QMessageBox::No);
  PictureRun(tour, events, passes, "cmdInsert", "24.7267", "insertion-loss");
  passes.close();
  Settle();
  setup.close();
  Settle();
}

/// The table of the station's cable, with an outlier in it, from the factor menu.
void PictureFactorEditor(Tour& tour) {
  QWidget& equipment = Window("frmEquipment");
  Find<QAction>(equipment, "mnuFactorEditLoss").trigger();
  auto& editor = dynamic_cast<frmEditFactor&>(Window("frmEditFactor"));
  editor.LoadFile(QStringLiteral("meter-cable.los"));
  auto& table = Find<QTableView>(editor, "fg2");
  table.setFocus();
  table.setCurrentIndex(table.model()->index(kOutlierRow, 1));
  for (const Qt::Key key : {Qt::Key_F2, Qt::Key_Home, Qt::Key_4}) QTest::keyClick(QApplication::focusWidget(), key);
  tour.Grab(editor, "factor-editor");
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
  editor.close();
  Settle();
}

/// The window of the bus, from the equipment form, with RF switched on by hand.
void PictureBus(Tour& tour) {
  Find<QAction>(Window("frmEquipment"), "mnuUtilBus").trigger();
  QWidget& bus = Window("frmBus");
  const std::pair<const char*, const char*> commands[] = {
      {"18", "OUTP ON"}, {"13", "MKA?"}, {"3", "*IDN?"}, {"18", "OUTP ON"}, {"13", "MKA?"}};
  for (const auto& [address, command] : commands) {
    Find<QSpinBox>(bus, "spnAddress").setValue(QByteArray(address).toInt());
    Find<QLineEdit>(bus, "txtCommand").setText(QLatin1String(command));
    Tour::Press(bus, QByteArray(command).endsWith('?') ? "cmdAsk" : "cmdSend");
    if (QByteArray(address) == "3") tour.Grab(bus, "bus-failure");
  }
  Settle();
  tour.Grab(bus, "bus");
  bus.close();
  Settle();
}

/// The editors of the three definitions, the generator's with RF on, and the parse tester on the meter's answer.
void PictureDefinitions(Desktop& desktop, Tour& tour) {
  Tour::Press(desktop.Menu(), "cmdConfigSys");
  QWidget& station = Window("frmEquipment");
  const auto type = [](const char* text) {
    return [text](QWidget& box) {
      box.findChild<QLineEdit*>()->setText(QLatin1String(text));
      dynamic_cast<QDialog&>(box).accept();
    };
  };
  const auto choose = [](QWidget& window, const char* entry) {
    Find<QAction>(window, entry).trigger();
    Settle();
  };
  choose(station, "mnuInstDefineSigGen");
  tour.OnBox("Test", "definition-prompt", type("10"));
  choose(Window("frmSigGen"), "mnuTestInit");
  choose(Window("frmSigGen"), "mnuTestRfOn");
  tour.GrabTabs(Window("frmSigGen"), "definition-generator");
  Window("frmSigGen").close();
  Settle();

  choose(station, "mnuInstDefineMeter");
  QWidget& meter = Window("frmMeter");
  Find<QAbstractButton>(meter, "optUnitDbm").click();
  tour.GrabTabs(meter, "definition-meter");
  Find<QAbstractButton>(meter, "optUnitDbuv").click();
  tour.OnBox("Hylden", "definition-reading", QMessageBox::Ok);
  choose(meter, "mnuTestInit");
  choose(meter, "mnuTestRead");
  Tour::Press(meter, "cmdParse");
  QWidget& tester = Window("frmParseTest");
  Tour::Press(tester, "cmdTest");
  tour.Grab(tester, "parse-test");
  tour.OnBox("Hylden", "parse-test-message", QMessageBox::Ok);
  Find<QLineEdit>(tester, "txtEvalExpression").setText(QStringLiteral("Mid(x, 5"));
  Tour::Press(tester, "cmdTest");
  tour.Grab(tester, "parse-test-error");
  tester.close();
  meter.close();
  Settle();

  choose(station, "mnuInstDefinePwrMtr");
  tour.GrabTabs(Window("frmPMeter"), "definition-power-meter");
  Window("frmPMeter").close();
  Settle();
  station.close();
  Settle();
}

/// The finished run, saved and opened again, and the dialog of its report.
void PictureSavedRun(Desktop& desktop, Tour& tour, const RunEngine& engine) {
  const QTemporaryDir folder;
  const std::string file = folder.filePath(QStringLiteral("forward-power.run")).toStdString();
  if (!FileRunData(engine.Data(), file, false) || !FileRunInfo(engine.Info(), file)) return;
  desktop.OpenRunData(file);
  QWidget& saved = Window("frmRunData");
  tour.Grab(saved, "saved-run");
  QTimer::singleShot(300, [&tour] {
    QWidget& report = Window("frmReport");
    tour.Grab(report, "report-dialog");
    report.close();
  });
  saved.findChild<QAction*>(QStringLiteral("mnuFileReport"))->trigger();
  saved.close();
}

int TakePictures(const QString& output) {
  const QTemporaryDir home;
  std::filesystem::copy_file(std::filesystem::path(QApplication::applicationDirPath().toStdString()) / "hylden.hlp",
                             std::filesystem::path(home.path().toStdString()) / "hylden.hlp");
  VirtualClock clock;
  QtVirtualEventLoop events(clock);
  QtDialogs dialogs;
  SilentSpeaker speaker;
  QtPrinter printer;
  Bus bus({.Others = {BusWay::Kind::Bench}}, events, clock, LoadBenchFile("bench.txt").Config);
  Shell shell(Platform{dialogs, clock, events, speaker, printer, bus.Driver()}, home.path().toStdString());
  Station station(shell, bus.SimulatedBench());
  Desktop desktop(station);
  Tour tour(output);

  desktop.Start("\"/e:station.eqp\"");
  tour.Grab(desktop.Menu(), "main-menu");
  Tour::Press(desktop.Menu(), "cmdConfigSys");
  tour.GrabTabs(Window("frmEquipment"), "station");
  PictureFactorEditor(tour);
  PictureBus(tour);
  Window("frmEquipment").close();
  Settle();

  PictureDefinitions(desktop, tour);
  PictureCalibration(desktop, tour, events);
  PictureCable(desktop, tour, events);

  Tour::Press(desktop.Menu(), "cmdRunTest");
  auto& definition = dynamic_cast<frmTestDef&>(Window("frmTestDef"));
  definition.LoadFile(QStringLiteral("forward-power-constant-peak.tst"));
  tour.GrabTabs(definition, "test-definition");
  Tour::Press(definition, "cmdCurves");
  PictureCurves(definition, tour, "ifi-10v.hyinfo", "calibration-curves");
  Tour::Press(definition, "cmdStart");
  auto& run = dynamic_cast<frmRunTest&>(Window("frmRunTest"));
  tour.Grab(run, "test-run-ready");

  desktop.ShowBenchPanel();
  DuringTheRun during(tour, run);
  events.onYield = [&] { during.Look(); };
  tour.OnBox("MAKE SURE!!!", "run-confirmation", QMessageBox::Ok);
  tour.OnBox("Save Run Data", "save-question", QMessageBox::No);
  Tour::Press(Window("frmRunButtons"), "cmdRun");  // returns when the run has ended
  events.onYield = nullptr;
  tour.Grab(run, "test-run-finished");
  PrintReports(run, printer, QDir(output));
  PictureSavedRun(desktop, tour, run.Engine());

  desktop.ShowHelp(QStringLiteral("Finding a threshold"));
  tour.Grab(Window("frmHelp"), "help");
  run.close();
  Settle();
  return 0;
}

/// Shows the windows in a dark theme, or in one of high contrast.
bool UsePalette(std::string_view name) {
  if (name != "dark" && name != "contrast") return false;
  QApplication::setStyle(QStringLiteral("Fusion"));
  const bool dark = name == "dark";
  QPalette palette(dark ? QColor(0x3a, 0x3d, 0x41) : QColor(Qt::black), dark ? QColor(0x2a, 0x2c, 0x2f) : Qt::black);
  const QColor text = dark ? QColor(0xe4, 0xe6, 0xe8) : QColor(Qt::white);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
    palette.setColor(role, text);
  palette.setColor(QPalette::Base, dark ? QColor(0x1f, 0x21, 0x23) : Qt::black);
  palette.setColor(QPalette::AlternateBase, dark ? QColor(0x2a, 0x2c, 0x2f) : QColor(0x20, 0x20, 0x20));
  palette.setColor(QPalette::Highlight, dark ? QColor(0x2f, 0x65, 0xa8) : Qt::yellow);
  palette.setColor(QPalette::HighlightedText, dark ? Qt::white : Qt::black);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, Qt::gray);
  QApplication::setPalette(palette);
  return true;
}

}  // namespace
}  // namespace hylden

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  if (argc < 3 || (argc == 4 && !hylden::UsePalette(argv[3])) || argc > 4) {
    std::cerr << "hylden-pictures STATION-DIRECTORY OUTPUT-DIRECTORY [dark|contrast]\n";
    return 2;
  }
  const QString output = QDir(QString::fromLocal8Bit(argv[2])).absolutePath();
  QDir().mkpath(output);
  try {
    std::filesystem::current_path(argv[1]);
    return hylden::TakePictures(output);
  } catch (const std::exception& error) {
    std::cerr << "hylden-pictures: " << error.what() << std::endl;
    return 1;
  }
}
