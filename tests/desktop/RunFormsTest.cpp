#include "desktop/RunForms.h"

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QMenu>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableView>
#include <cmath>

#include "text/Pattern.h"
#include "widgets/WindowPlace.h"

namespace hylden {
namespace {

using testing::ElementsAreArray;
using testing::HasSubstr;

using Strings = std::vector<std::string>;

/// The lines of the run data file and of the reports, made from the rows by hand.
Strings LinesOf(const std::vector<RunEntry>& rows, bool thresholdsOnly) {
  Strings lines;
  for (const RunEntry& entry : rows) {
    const RunRow row = CellsOf(entry);
    if (row[1].rfind("Threshold", 0) == 0)
      lines.push_back(row[0] + ", " + row[1] + ", " + row[2]);
    else if (!thresholdsOnly)
      lines.push_back(row[0] + ", " + row[1] + ", " + row[2] + ", " + row[3] + ", " + row[4] + ", " + row[5]);
  }
  return lines;
}

Strings Split(const std::string& text) {
  Strings lines;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = text.find("\r\n", start);
    lines.push_back(text.substr(start, end - start));
    start = end == std::string::npos ? text.size() : end + 2;
  }
  return lines;
}

Strings Tail(const Strings& lines, std::size_t count) {
  return {lines.end() - static_cast<std::ptrdiff_t>(std::min(count, lines.size())), lines.end()};
}

TEST_F(RunForms, ReadyFormOffersRunAndExitOnly) {
  Open("substitution-am.tst");
  EXPECT_EQ(Text("pnlStatus"), "State: Idle");
  EXPECT_TRUE(Enabled("cmdRun") && Enabled("cmdExit") && Enabled("mnuFile"));
  EXPECT_FALSE(Shown("cmdHalt") || Enabled("cmdHalt") || Enabled("cmdManual"));
  EXPECT_TRUE(Find<QPushButton>(*form, "cmdRun").hasFocus() || Buttons().focusWidget() != nullptr);
  EXPECT_EQ(Text("lblSteps"), std::to_string(form->Engine().Steps().size()));
  EXPECT_EQ(Text("lblStartFreq"), "0.15");
  EXPECT_EQ(Text("lblStopFreq"), "80.0");
  EXPECT_EQ(Text("lblFreq"), "--");
  EXPECT_FALSE(caller.isVisible());
}

TEST_F(RunForms, WholeRunIsShownSavedAndPrintedAsRecorded) {
  Open("probe-limited-pulse.tst");
  const std::string file = m.directory.File("whole.run");
  dialogs.AnswerSave(file);
  Strings states;
  bool red = false, rfShown = false;
  m.events.onYield = [&] {
    if (states.empty() || states.back() != Text("pnlStatus")) states.push_back(Text("pnlStatus"));
    auto& label = Find<QLabel>(*form, "lblInducedLevel");
    red = red || label.palette().color(QPalette::WindowText) != form->palette().color(QPalette::WindowText);
    rfShown = rfShown || Text("lblRf") == "RF ON";
    EXPECT_FALSE(Enabled("mnuFile") || Find<QAction>(*form, "mnuFileSave").isEnabled()) << "during the run";
    EXPECT_TRUE(Shown("cmdHalt") && Enabled("cmdHalt") && Enabled("cmdManual"));
    EXPECT_FALSE(Shown("cmdRun") || Enabled("cmdRun") || Enabled("cmdExit"));
  };
  dialogs.onShow = [&](const Message& message) {
    if (message.title != "Save Run Data") return;
    form->PressHalt();
    EXPECT_NE(Text("pnlStatus"), "Halting...") << "the run is over";
  };
  Press(*form, "cmdRun");

  ASSERT_EQ(form->Engine().Outcome(), RunOutcome::Finished) << testing::PrintToString(dialogs.Texts());
  EXPECT_FALSE(m.bench.State().Generator.RfOn);
  EXPECT_EQ(Text("lblRf"), "RF off");
  EXPECT_TRUE(red && rfShown);
  EXPECT_THAT(states, testing::IsSupersetOf({"Intermediate dwell...", "Finishing Final Dwell..."}));
  EXPECT_EQ(Text("pnlStatus"), "State: Idle");
  EXPECT_TRUE(Enabled("cmdRun") && Find<QAction>(*form, "mnuFileSave").isEnabled());
  EXPECT_EQ(Find<QProgressBar>(*form, "prgSteps").value(), static_cast<int>(form->Engine().Steps().size()));

  const RunRow last = Row(Rows().size());
  EXPECT_EQ(Text("lblFreq"), last[0]);
  EXPECT_EQ(Text("lblSigGenLevel"), last[1].substr(0, last[1].find(' ')));
  EXPECT_EQ(Text("lblTestLevel"), last[2]);
  EXPECT_EQ(Text("lblInducedLevel"), last[3].substr(0, last[3].find(' ')));
  EXPECT_EQ(Text("lblStep"), "Step# " + Text("lblSteps"));
  EXPECT_EQ(Text("lblDwell"), "0.50");

  const QAbstractItemModel& table = *Find<QTableView>(*form, "flxTestData").model();
  ASSERT_EQ(table.rowCount(), static_cast<int>(Rows().size()));
  for (int column = 0; column < table.columnCount(); ++column) {
    const auto index = static_cast<std::size_t>(column);
    EXPECT_EQ(table.headerData(column, Qt::Horizontal).toString().toStdString(), kRunHeadings[index]);
    for (int row = 0; row < table.rowCount(); ++row)
      EXPECT_EQ(table.index(row, column).data().toString().toStdString(),
                Row(static_cast<std::size_t>(row) + 1)[index]);
  }

  const Strings lines = LinesOf(Rows(), false);
  EXPECT_THAT(Tail(Split(m.directory.Read("whole.run")), lines.size()), ElementsAreArray(lines));
  for (const char* report : {"mnuFilePrintBrief", "mnuFilePrintDetailed", "mnuFilePrintThreshold"})
    Choose(*form, report);
  ASSERT_EQ(m.printer.jobs.size(), 3u);
  EXPECT_THAT(Tail(m.printer.Lines(0), lines.size()), ElementsAreArray(lines));
  EXPECT_THAT(Tail(m.printer.Lines(1), lines.size()), ElementsAreArray(lines));
  EXPECT_GT(m.printer.Lines(1).size(), m.printer.Lines(0).size()) << "the parameters come first";
  EXPECT_EQ(m.printer.Lines(2).back(), "Freq(MHz), Threshold, Comment") << "no threshold was marked";
}

TEST_F(RunForms, SecondRunStartsWithAnEmptyRecord) {
  Open("substitution-am.tst");
  m.When(AtStep(3), [&] { Press(*form, "cmdHalt"); });
  Press(*form, "cmdRun");
  EXPECT_GE(Rows().size(), 2u);
  m.When([&] { return Rows().size() == 1; },
         [&] {
           EXPECT_EQ(Find<QTableView>(*form, "flxTestData").model()->rowCount(), 1);
           Press(*form, "cmdHalt");
         });
  dialogs.Answer(MessageAnswer::No);  // the rows may go
  Press(*form, "cmdRun");
  EXPECT_EQ(m.ActionsLeft(), 0u);
  EXPECT_EQ(Rows().size(), 1u);
}

TEST_F(RunForms, RowsThatWereToBeSavedStayUntilTheOperatorLetsThemGo) {
  Open("substitution-am.tst");
  m.When(AtStep(3), [&] { form->PressHalt(); });
  Press(*form, "cmdRun");  // to be saved, and the file dialog cancelled
  ASSERT_EQ(Rows().size(), 3u);
  for (const char* button : {"cmdRun", "cmdExit"}) {
    dialogs.Answer(MessageAnswer::Cancel);
    Press(*form, button);
    EXPECT_EQ(dialogs.LastText(), "The run data has not been saved.\r\nSave it?");
    EXPECT_EQ(Rows().size(), 3u);
    EXPECT_TRUE(form->isVisible());
  }
  dialogs.Answer(MessageAnswer::No);
  Press(*form, "cmdExit");
  EXPECT_EQ(Asked("Save Run Data"), 4u);
  EXPECT_FALSE(form->isVisible());
}

TEST_F(RunForms, CancelledConfirmationStartsNothing) {
  Open("substitution-am.tst");
  dialogs.Answer(MessageAnswer::Cancel);
  const int calls = m.driver.Calls();
  Press(*form, "cmdRun");
  EXPECT_EQ(dialogs.messages.back().title, "MAKE SURE!!!");
  EXPECT_EQ(m.driver.Calls(), calls) << "the bus was touched";
  EXPECT_TRUE(Enabled("cmdRun") && Enabled("cmdExit"));
  EXPECT_EQ(form->Engine().Outcome(), RunOutcome::NotRun);
}

TEST_F(RunForms, RunWithoutStepsUnloads) {
  m.LoadTest("substitution-am.tst");
  m.Test().FreqSweep = m.Test().FreqList = false;
  OpenForm();
  EXPECT_EQ(dialogs.LastText(), "Error, no frequencies to test? Check setup.");
  EXPECT_FALSE(form->isVisible() || Buttons().isVisible());
  EXPECT_TRUE(caller.isVisible());
}

TEST_F(RunForms, MissingCalibrationLeavesExitOnly) {
  m.LoadTest("substitution-am.tst");
  m.Test().CalInfoFile = m.directory.File("gone.hyinfo");
  OpenForm();
  EXPECT_EQ(dialogs.messages.size(), 1u);
  EXPECT_TRUE(form->isVisible() && Enabled("cmdExit"));
  EXPECT_FALSE(Enabled("cmdRun") || Enabled("mnuFile"));
  QTest::keyClick(&Buttons(), Qt::Key_Return);
  EXPECT_EQ(dialogs.messages.size(), 1u) << "Enter ran what is not ready";
  QTest::keyClick(&Buttons(), Qt::Key_Escape);
  EXPECT_FALSE(form->isVisible());
}

TEST_F(RunForms, EnterRunsAndEscapeExitsWhenReady) {
  Open("substitution-am.tst");
  QSignalSpy unloaded(form.get(), &WorkingForm::Unloaded);
  m.When(AtStep(2), [&] {
    QTest::keyClick(&Buttons(), Qt::Key_Return);  // no meaning during a run
    Press(*form, "cmdHalt");
  });
  dialogs.Answer(MessageAnswer::Ok);
  dialogs.Answer(MessageAnswer::No);  // not to be saved
  QTest::keyClick(&Find<QPushButton>(*form, "cmdRun"), Qt::Key_Return);
  EXPECT_EQ(Asked("MAKE SURE!!!"), 1u);
  EXPECT_EQ(Asked("Save Run Data"), 1u);
  QTest::keyClick(&Find<QPushButton>(*form, "cmdRun"), Qt::Key_Escape);
  EXPECT_EQ(unloaded.count(), 1);
  EXPECT_FALSE(form->isVisible() || Buttons().isVisible());
}

struct HaltCase {
  const char* name;
  bool closes;
  void (*act)(frmRunTest& form, frmRunButtons& buttons);
};

class HaltTest : public RunForms, public testing::WithParamInterface<HaltCase> {};

TEST_P(HaltTest, RunEndsInOrderWithRfOff) {
  Open("substitution-am.tst");
  dialogs.AnswerSave(m.directory.File("halted.run"));
  m.When([&] { return AtStep(4)() && m.bench.State().Generator.RfOn; },
         [&] {
           GetParam().act(*form, Buttons());
           EXPECT_TRUE(m.station.shell.delay.HaltRequested());
           EXPECT_FALSE(Enabled("cmdHalt") || Enabled("cmdRunHalt") || Enabled("cmdRun") || Enabled("cmdManual") ||
                        Enabled("cmdExit"));
           EXPECT_TRUE(Find<QPushButton>(*form, "cmdHalt").isVisible());
           EXPECT_TRUE(form->isVisible()) << "closed with the run still going on";
         });
  QSignalSpy unloaded(form.get(), &WorkingForm::Unloaded);
  const std::string before = Text("lblRf");
  Press(*form, "cmdRun");
  EXPECT_EQ(m.ActionsLeft(), 0u);
  EXPECT_EQ(form->Engine().Outcome(), RunOutcome::EndedEarly);
  EXPECT_FALSE(m.bench.State().Generator.RfOn);
  EXPECT_EQ(Asked("Save Run Data"), 1u);
  EXPECT_EQ(Rows().size(), 4u) << "three steps, and the one that was halted";
  EXPECT_EQ(Split(m.directory.Read("halted.run")).size(), 3 + Rows().size());
  for (const int address : {18, 13, 14}) EXPECT_FALSE(m.bench.Bus().IsRemote(address)) << address;

  EXPECT_TRUE(form->isVisible()) << "it closes after the button has returned";
  QCoreApplication::processEvents();
  EXPECT_EQ(unloaded.count(), GetParam().closes ? 1 : 0);
  EXPECT_EQ(form->isVisible(), !GetParam().closes);
  EXPECT_EQ(caller.isVisible(), GetParam().closes);
}

QMenu& OpenUnitsMenu(frmRunTest& form) {
  auto& label = Find<QLabel>(form, "lblPower");
  QTest::mouseClick(form.windowHandle(), Qt::RightButton, {}, label.mapTo(&form, label.rect().center()));
  return Find<QMenu>(form, "mnuUnitsPower");
}

INSTANTIATE_TEST_SUITE_P(
    Ways, HaltTest,
    testing::Values(
        HaltCase{"button", false, [](frmRunTest& form, frmRunButtons&) { Press(form, "cmdHalt"); }},
        HaltCase{"escape_in_the_run_window", false,
                 [](frmRunTest& form, frmRunButtons&) {
                   QTest::keyClick(&Find<QTableView>(form, "flxTestData"), Qt::Key_Escape);
                 }},
        HaltCase{"escape_in_the_buttons", false,
                 [](frmRunTest& form, frmRunButtons&) {
                   QTest::keyClick(&Find<QPushButton>(form, "cmdManual"), Qt::Key_Escape);
                 }},
        HaltCase{"button_of_the_run_window", false,
                 [](frmRunTest& form, frmRunButtons&) { Press(form, "cmdRunHalt"); }},
        HaltCase{"escape_in_a_box", false, [](frmRunTest& form, frmRunButtons&) { form.PressHalt(); }},
        HaltCase{"run_window_closed", true, [](frmRunTest& form, frmRunButtons&) { EXPECT_FALSE(form.close()); }},
        HaltCase{"buttons_closed", true, [](frmRunTest&, frmRunButtons& buttons) { EXPECT_FALSE(buttons.close()); }}),
    [](const testing::TestParamInfo<HaltCase>& halt) { return halt.param.name; });

TEST_F(RunForms, EscapeInAMenuJustClosesTheMenu) {
  Open("substitution-am.tst");
  m.When(AtStep(2), [&] {
    QMenu& menu = OpenUnitsMenu(*form);
    EXPECT_TRUE(menu.isVisible());
    QTest::keyClick(&menu, Qt::Key_Escape);
    EXPECT_FALSE(menu.isVisible());
    QTest::keyClick(form->menuBar(), Qt::Key_Escape);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier, QString(), true);
    QCoreApplication::sendEvent(form.get(), &held);  // the press that closed the menu
    EXPECT_FALSE(m.station.shell.delay.HaltRequested());
  });
  m.When(AtStep(3), [&] { QTest::keyClick(form.get(), Qt::Key_Escape); });
  Press(*form, "cmdRun");
  EXPECT_EQ(m.ActionsLeft(), 0u);
  EXPECT_EQ(form->Engine().CompletedSteps(), 2);
}

TEST_F(RunForms, HaltIsInSightAsLongAsTheRunIsOn) {
  Open("substitution-am.tst");
  ExpectMnemonicsApart(*form);
  EXPECT_EQ(Buttons().windowHandle()->transientParent(), form->windowHandle());
  EXPECT_EQ(Buttons().windowType(), Qt::Dialog) << "it would go below the run window";
  EXPECT_FALSE(Buttons().windowFlags().testFlag(Qt::WindowMinimizeButtonHint));
  EXPECT_TRUE(Shown("cmdRunHalt"));
  EXPECT_FALSE(Enabled("cmdRunHalt"));
  m.When(AtStep(2), [&] {
    EXPECT_TRUE(Enabled("cmdRunHalt"));
    Press(*form, "cmdRunHalt");
  });
  Press(*form, "cmdRun");
  EXPECT_FALSE(Enabled("cmdRunHalt"));
}

TEST_F(RunForms, RunControlsKeepTheirSizeAndTakeTheKeysWhenARunBegins) {
  Open("substitution-am.tst");
  QCoreApplication::processEvents();
  const QSize ready = Buttons().size();
  form->activateWindow();  // as the confirmation leaves it
  m.When(AtStep(2), [&] {
    EXPECT_EQ(QApplication::activeWindow(), &Buttons());
    EXPECT_EQ(Buttons().size(), ready);
    Press(*form, "cmdHalt");
  });
  Press(*form, "cmdRun");
  QCoreApplication::processEvents();
  EXPECT_EQ(Buttons().size(), ready);
}

TEST(RunWindowPlace, RunControlsOpenBesideTheRunWindowWhereThereIsRoom) {
  const QSize controls(360, 60);
  const QRect window(0, 0, 900, 680);
  EXPECT_GT(PlaceBeside(window, controls, {0, 0, 1280, 1024}).y(), window.bottom());
  EXPECT_GT(PlaceBeside(window, controls, {0, 0, 1366, 768}).x(), window.right());
  const QRect over(PlaceBeside(window, controls, {0, 0, 1024, 768}), controls);
  EXPECT_TRUE(window.contains(over)) << "beside the figures";
}

TEST_F(RunForms, SecondRunStartsFromTheEstimate) {
  Open("substitution-am.tst");
  const std::string estimate = Text("lblEstTime");
  m.When(AtStep(20), [&] {
    EXPECT_NE(Text("lblEstTime"), estimate);
    form->PressHalt();
  });
  Press(*form, "cmdRun");
  m.When(AtStep(1), [&] {
    EXPECT_EQ(Text("lblEstTime"), estimate);
    EXPECT_EQ(Text("lblElapsed"), "--");
    form->PressHalt();
  });
  dialogs.Answer(MessageAnswer::No);  // the rows may go
  Press(*form, "cmdRun");
  EXPECT_EQ(m.ActionsLeft(), 0u);
}

TEST_F(RunForms, WindowThatIsPlacedByItsContentsGoesWhereItsFrameBelongs) {
  QWidget window;
  window.move(200, 150);
  KeepFrame(window);
  window.show();
  window.windowHandle()->setPosition(200, 150);  // as a window manager may do it
  ASSERT_GT(window.windowHandle()->frameMargins().top(), 0);
  QCoreApplication::processEvents();
  EXPECT_EQ(window.frameGeometry().topLeft(), QPoint(200, 150));
  window.move(60, 40);
  QCoreApplication::processEvents();
  EXPECT_EQ(window.frameGeometry().topLeft(), QPoint(60, 40)) << "once is enough";
}

TEST_F(RunForms, EscapeAtAPromptHaltsTheRun) {
  m.LoadTest("substitution-am.tst");
  m.Test().SweepDwell = 0;
  OpenForm();
  bool rfWasOn = false;
  dialogs.onShow = [&](const Message& message) {
    if (message.title != "Wait for user") return;
    rfWasOn = m.bench.State().Generator.RfOn;
    form->PressHalt();
  };
  Press(*form, "cmdRun");
  EXPECT_TRUE(rfWasOn);
  EXPECT_EQ(Asked("Wait for user"), 1u) << "the answer OK went before the halt";
  EXPECT_FALSE(m.bench.State().Generator.RfOn);
}

TEST_F(RunForms, RunGoesOnUnderAnOpenMenu) {
  Open("substitution-am.tst");
  m.When(AtStep(2), [&] { EXPECT_TRUE(OpenUnitsMenu(*form).isVisible()); });
  m.When(AtStep(4), [&] {
    EXPECT_TRUE(Find<QMenu>(*form, "mnuUnitsPower").isVisible());
    Find<QMenu>(*form, "mnuUnitsPower").close();
    Press(*form, "cmdHalt");
  });
  Press(*form, "cmdRun");
  EXPECT_EQ(m.ActionsLeft(), 0u);
}

struct UnitCase {
  const char* action;
  const char* label;
  const char* caption;
  double (*convert)(double held, double ohms);
  const char* pattern;
};

class UnitTest : public RunForms, public testing::WithParamInterface<UnitCase> {};

double Same(double held, double) {
  return held;
}

TEST_P(UnitTest, FigureAndCaptionChangeTheRecordDoesNot) {
  const UnitCase& unit = GetParam();
  const std::string label = unit.label;
  m.LoadTest("forward-power-constant-peak.tst");
  if (label == "lblInducedLevel") m.LoadTest("probe-limited-pulse.tst");
  OpenForm();
  m.When(AtStep(2), [&] { EXPECT_EQ(Text(unit.label) == "--", label != "lblTestLevel") << "of the step before"; });
  m.When(AtValue(2, unit.label), [&] { Press(*form, "cmdHalt"); });
  Press(*form, "cmdRun");
  const Strings rows = LinesOf(Rows(), false);
  const double held = std::stod(Text(unit.label));
  Choose(*form, unit.action);
  EXPECT_EQ(Text((label + "Cap").c_str()), unit.caption);
  // The label's own rounding, 0.05 dB, is what the two may differ by.
  const double ohms = double{m.Test().EUTCircuitImpedance};
  const double lower = unit.convert(held - 0.051, ohms), upper = unit.convert(held + 0.051, ohms);
  const double margin = std::string(unit.pattern) == "##0.0" ? 0.051 : 0.0051;
  EXPECT_GE(std::stod(Text(unit.label)), lower - margin);
  EXPECT_LE(std::stod(Text(unit.label)), upper + margin);
  EXPECT_EQ(Text(unit.label).size() - Text(unit.label).find('.'), std::string(unit.pattern).size() - 3);
  EXPECT_TRUE(Find<QAction>(*form, unit.action).isChecked());
  EXPECT_EQ(LinesOf(Rows(), false), rows);
}

INSTANTIATE_TEST_SUITE_P(
    Menus, UnitTest,
    testing::Values(
        UnitCase{"mnuLevelUnitsDBuV", "lblTestLevel", "Test Level\n(dBuv)", Same, "##0.0"},
        UnitCase{"mnuLevelUnitsDBuA", "lblTestLevel", "Test Level\n(dBuA)",
                 [](double v, double z) { return v - 20 * std::log10(z); }, "##0.0"},
        UnitCase{"mnuLevelUnitsDBm", "lblTestLevel", "Test Level\n(dBm)",
                 [](double v, double z) { return v - 90 - 10 * std::log10(z); }, "##0.0"},
        UnitCase{"mnuLevelUnitsMW", "lblTestLevel", "Test Level\n(mW)",
                 [](double v, double z) { return std::pow(10, (v - 90 - 10 * std::log10(z)) / 10); }, "##0.0"},
        UnitCase{"mnuLevelUnitsVolts", "lblTestLevel", "Test Level\n(Volts)",
                 [](double v, double) { return std::pow(10, (v - 120) / 20); }, "##0.00"},
        UnitCase{"mnuUnitsInducedDBuV", "lblInducedLevel", "Induced Level\n(dBuv est)",
                 [](double i, double z) { return i + 20 * std::log10(z); }, "##0.0"},
        UnitCase{"mnuUnitsInducedDBuA", "lblInducedLevel", "Induced Level\n(dBuA)", Same, "##0.0"},
        UnitCase{"mnuUnitsInducedDBM", "lblInducedLevel", "Induced Level\n(dBm est)",
                 [](double i, double z) { return i - 90 + 10 * std::log10(z); }, "##0.0"},
        UnitCase{"mnuUnitsInducedMW", "lblInducedLevel", "Induced Level\n(mW est)",
                 [](double i, double z) { return std::pow(10, (i - 90 + 10 * std::log10(z)) / 10); }, "##0.0"},
        UnitCase{"mnuUnitsInducedVolts", "lblInducedLevel", "Induced Level\n(Volts est)",
                 [](double i, double z) { return std::pow(10, (i + 20 * std::log10(z) - 120) / 20); }, "##0.000"},
        UnitCase{"mnuUnitsPowerdBm", "lblPower", "Forward Power\n(dBm)", Same, "##0.0"},
        UnitCase{"mnuUnitsPowerWatts", "lblPower", "Forward Power\n(watts)",
                 [](double p, double) { return std::pow(10, (p - 30) / 10); }, "##0.000"}),
    [](const testing::TestParamInfo<UnitCase>& unit) { return unit.param.action; });

TEST_F(RunForms, RelativeInducedLevelIsTheDistanceToTheLimit) {
  Open("probe-limited-pulse.tst");
  m.When(AtValue(2, "lblInducedLevel"), [&] { Press(*form, "cmdHalt"); });
  Press(*form, "cmdRun");
  const double induced = std::stod(Text("lblInducedLevel"));
  const double limit = std::stod(Text("lblTestLevel")) - 20 * std::log10(double{m.Test().EUTCircuitImpedance}) +
                       double{m.Test().LimitMargin};
  Choose(*form, "mnuUnitsInducedRelative");
  EXPECT_EQ(Text("lblInducedLevelCap"), "Induced level\ndB (relative)");
  EXPECT_NEAR(std::stod(Text("lblInducedLevel")), induced - limit, 0.16);
  EXPECT_EQ(Find<QLabel>(*form, "lblInducedLevel").toolTip(), "dB relative to induced current limit");
}

TEST_F(RunForms, BenchIsAnnouncedOnEveryWindowOfTheRun) {
  m.LoadTest("substitution-am.tst");
  form = std::make_unique<frmRunTest>(m.station.shell, m.station.instruments, m.station.documents);
  form->SetSimulated();
  form->OpenFrom(&caller);
  form->Load();
  m.When(AtStep(2), [&] { Press(*form, "cmdManual"); });
  m.When([&] { return Manual() != nullptr; },
         [&] {
           for (QWidget* window : {static_cast<QWidget*>(form.get()), static_cast<QWidget*>(Manual())}) {
             auto& notice = Find<QLabel>(*window, "lblBench");
             EXPECT_TRUE(notice.isVisible());
             EXPECT_THAT(notice.text().toStdString(), HasSubstr("SIMULATED BENCH"));
           }
           form->PressHalt();
         });
  EXPECT_TRUE(Find<QLabel>(Buttons(), "lblBench").isVisible());
  Press(*form, "cmdRun");
  EXPECT_EQ(m.ActionsLeft(), 0u);
}

TEST_F(RunForms, WindowPlacesAreRemembered) {
  Open("substitution-am.tst");
  Buttons().move(120, 40);
  m.When(AtStep(2), [&] { Press(*form, "cmdManual"); });
  m.When([&] { return Manual() != nullptr; },
         [&] {
           Manual()->move(60, 30);
           EXPECT_FALSE(Buttons().isVisible());
           form->PressHalt();
         });
  Press(*form, "cmdRun");
  EXPECT_EQ(Buttons().pos(), QPoint(120, 40)) << "shown again where it was hidden";
  form->close();
  EXPECT_TRUE(form->isVisible()) << "the rows were to be saved and are not";
  dialogs.Answer(MessageAnswer::No);  // they may go
  form->close();
  EXPECT_NE(m.station.shell.settings.GetFormPosition(windowkey::kRunTestForm), "");
  OpenForm();
  EXPECT_EQ(Buttons().pos(), QPoint(120, 40));
  m.When(AtStep(1), [&] { Press(*form, "cmdManual"); });
  m.When([&] { return Manual() != nullptr; },
         [&] {
           EXPECT_EQ(Manual()->pos(), QPoint(60, 30));
           form->PressHalt();
         });
  Press(*form, "cmdRun");
  EXPECT_EQ(m.ActionsLeft(), 0u);
}

}  // namespace
}  // namespace hylden
