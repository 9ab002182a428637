#include "desktop/RunForms.h"

#include <QTimer>

#include "calibration/qt/frmRunCal.h"
#include "run/qt/RunCurvePanel.h"
#include "testrun/RunInfo.h"
#include "testrun/RunUnits.h"
#include "testrun/qt/frmReport.h"
#include "text/TextFile.h"
#include "widgets/CurveView.h"
#include "widgets/WindowPlace.h"

namespace hylden {
namespace {

using Strings = std::vector<std::string>;

TEST_F(RunForms, ReadyFormOffersRunAndExitOnly) {
  Open();
  const auto expectReady = [this] {
    EXPECT_EQ(Text("pnlStatus"), "State: Idle");
    EXPECT_TRUE(Enabled("cmdRun") && Enabled("cmdExit") && Enabled("mnuFile"));
    EXPECT_FALSE(Shown("cmdHalt") || Enabled("cmdHalt") || Enabled("cmdManual"));
  };
  expectReady();
  EXPECT_NE(Buttons().focusWidget(), nullptr);
  EXPECT_EQ(Text("lblSteps"), std::to_string(form->Engine().Steps().size()));
  EXPECT_EQ(Text("lblStartFreq"), "0.15");
  EXPECT_EQ(Text("lblStopFreq"), "80.0");
  EXPECT_EQ(Text("lblFreq"), "--");
  EXPECT_FALSE(caller.isVisible());
  dialogs.Answer(MessageAnswer::Cancel);
  Press(*form, "cmdRun");
  EXPECT_EQ(m.Asked("MAKE SURE!!!"), 1u);
  expectReady();
}

TEST_F(RunForms, WhatItsReportWasAskedForIsKeptBesideItsFileAndSavedWithTheRun) {
  Open();
  dialogs.AnswerSave(m.directory.File("first.run"));
  Run();
  QTimer::singleShot(0, [&] {
    auto* const report = qobject_cast<frmReport*>(QApplication::activeModalWidget());
    ASSERT_NE(report, nullptr);
    Find<QLineEdit>(*report, "txtCustomer").setText("Maker of radios");
    dialogs.AnswerSave(m.directory.File("radio.pdf"));
    report->accept();
    EXPECT_FALSE(report->isVisible()) << dialogs.LastText();
    if (report->isVisible()) report->reject();
  });
  Choose(*form, "mnuFileReport");
  dialogs.AnswerSave(m.directory.File("again.run"));
  Choose(*form, "mnuFileSave");
  EXPECT_THAT(m.directory.Read("again.runinfo"), testing::HasSubstr("Maker of radios"));
  EXPECT_THAT(m.directory.Read("first.runinfo"), testing::HasSubstr("Maker of radios"));
}

TEST_F(RunForms, WhatAReportHasKeptBesideItsFileSurvivesAnotherSave) {
  Open();
  const std::string file = m.directory.File("radio.run");
  dialogs.AnswerSave(file);
  Run();
  RunInfo info = ReadRunInfo(file, ReadTextFile(file)).Info.value();
  info.Particulars.Customer = "Maker of radios";
  ASSERT_TRUE(FileRunInfo(info, file));
  dialogs.AnswerSave(file);
  Choose(*form, "mnuFileSave");
  EXPECT_THAT(m.directory.Read("radio.runinfo"), testing::HasSubstr("Maker of radios"));
  dialogs.AnswerSave(file);
  Choose(*form, "mnuFilePicture");
  EXPECT_EQ(dialogs.LastText(), "Curves are saved as .png, .svg or .pdf:\r\n" + file);
  EXPECT_THAT(m.directory.Read("radio.run"), testing::HasSubstr("Test Run Data"));
}

TEST_F(RunForms, WholeRunIsShownSavedAndPrintedAsRecorded) {
  Open("probe-limited-pulse.tst");
  dialogs.AnswerSave(m.directory.File("whole.run"));
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
  Run();
  const RunData& data = form->Engine().Data();
  ASSERT_EQ(form->Engine().Outcome(), RunOutcome::Finished) << testing::PrintToString(dialogs.Texts());
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

  EXPECT_EQ(m.directory.Read("whole.run"), RunFileText(data, false));
  for (const char* report : {"mnuFilePrintBrief", "mnuFilePrintDetailed", "mnuFilePrintThreshold"})
    Choose(*form, report);
  const std::string lastLine = RunRowLines(data, false).back();
  EXPECT_EQ(m.printer.Lines(0).back(), lastLine);
  EXPECT_EQ(m.printer.Lines(1).back(), lastLine);
  EXPECT_GT(m.printer.Lines(1).size(), m.printer.Lines(0).size()) << "the parameters come first";
  EXPECT_EQ(m.printer.Lines(2).back(), "Freq(MHz), Threshold, Comment") << "no threshold was marked";
  m.printer.failure = ErrorNumber::DeviceIoError;
  Choose(*form, "mnuFilePrintBrief");
  EXPECT_TRUE(dialogs.WasShownContaining("PrintRunData")) << dialogs.LastText();
}

TEST_F(RunForms, SecondRunStartsAfresh) {
  Open();
  const std::string estimate = Text("lblEstTime");
  m.When(AtStep(20), [&] {
    EXPECT_NE(Text("lblEstTime"), estimate);
    Press(*form, "cmdHalt");
  });
  Run();
  m.When(AtStep(1), [&] {
    EXPECT_EQ(Text("lblEstTime"), estimate);
    EXPECT_EQ(Text("lblElapsed"), "--");
    EXPECT_EQ(Find<QTableView>(*form, "flxTestData").model()->rowCount(), 1);
    Press(*form, "cmdHalt");
  });
  dialogs.Answer(MessageAnswer::No);  // not continued
  dialogs.Answer(MessageAnswer::No);  // the rows may go
  Run();
}

TEST_F(RunForms, RowsThatWereToBeSavedStayUntilTheOperatorLetsThemGo) {
  Open();
  HaltAtStep(3);
  Run();  // to be saved, and the file dialog cancelled
  ASSERT_EQ(Rows().size(), 3u);
  for (const char* button : {"cmdRun", "cmdExit"}) {
    if (std::string(button) == "cmdRun") dialogs.Answer(MessageAnswer::No);  // not continued
    dialogs.Answer(MessageAnswer::Cancel);
    Press(*form, button);
    EXPECT_EQ(dialogs.LastText(), "The run data has not been saved.\r\nSave it?");
    EXPECT_EQ(Rows().size(), 3u);
    EXPECT_TRUE(form->isVisible());
  }
  dialogs.Answer(MessageAnswer::No);
  Press(*form, "cmdExit");
  EXPECT_EQ(m.Asked("Save Run Data"), 4u);
  EXPECT_FALSE(form->isVisible());
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
  EXPECT_TRUE(form->isVisible() && Enabled("cmdExit"));
  EXPECT_FALSE(Enabled("cmdRun") || Enabled("mnuFile"));
  QTest::keyClick(&Buttons(), Qt::Key_Return);
  EXPECT_EQ(dialogs.messages.size(), 1u) << "Enter ran what is not ready";
  QTest::keyClick(&Buttons(), Qt::Key_Escape);
  EXPECT_FALSE(form->isVisible());
}

TEST_F(RunForms, EnterRunsAndEscapeExitsWhenReady) {
  Open();
  m.When(AtStep(2), [&] {
    QTest::keyClick(&Buttons(), Qt::Key_Return);  // no meaning during a run
    Press(*form, "cmdHalt");
  });
  dialogs.Answer(MessageAnswer::Ok);
  dialogs.Answer(MessageAnswer::No);  // not to be saved
  auto& run = Find<QPushButton>(*form, "cmdRun");
  QTest::keyClick(&run, Qt::Key_Return);
  EXPECT_EQ(m.Asked("MAKE SURE!!!"), 1u);
  EXPECT_EQ(m.Asked("Save Run Data"), 1u);
  QTest::keyClick(&run, Qt::Key_Escape);
  EXPECT_FALSE(form->isVisible() || Buttons().isVisible());
}

struct HaltCase {
  const char* name;
  bool closes;
  void (*act)(frmRunTest& form, frmRunButtons& buttons);
};

class HaltTest : public RunForms, public testing::WithParamInterface<HaltCase> {};

TEST_P(HaltTest, RunEndsInOrderWithRfOff) {
  Open();
  dialogs.AnswerSave(m.directory.File("halted.run"));
  m.When([&] { return AtStep(4)() && m.RfIsOn(); },
         [&] {
           GetParam().act(*form, Buttons());
           EXPECT_TRUE(m.shell.delay.HaltRequested());
           for (const char* button : {"cmdHalt", "cmdRunHalt", "cmdRun", "cmdManual", "cmdExit"})
             EXPECT_FALSE(Enabled(button)) << button;
           EXPECT_TRUE(Shown("cmdHalt"));
           EXPECT_TRUE(form->isVisible()) << "closed with the run still going on";
         });
  QSignalSpy unloaded(form.get(), &WorkingForm::Unloaded);
  Run();
  EXPECT_EQ(form->Engine().Outcome(), RunOutcome::EndedEarly);
  EXPECT_EQ(m.Asked("Save Run Data"), 1u);
  EXPECT_EQ(Rows().size(), 4u) << "three steps, and the one that was halted";
  EXPECT_EQ(m.directory.Read("halted.run"), RunFileText(form->Engine().Data(), false));
  for (const int address : {18, 13, 14}) EXPECT_FALSE(m.bench.Bus().IsRemote(address)) << address;

  EXPECT_TRUE(form->isVisible()) << "it closes after the button has returned";
  QCoreApplication::processEvents();
  EXPECT_EQ(unloaded.count(), GetParam().closes ? 1 : 0);
  EXPECT_EQ(form->isVisible(), !GetParam().closes);
  EXPECT_EQ(caller.isVisible(), GetParam().closes);
}

template <class Control>
void PressEscape(QWidget& form, const char* control) {
  QTest::keyClick(&Find<Control>(form, control), Qt::Key_Escape);
}

INSTANTIATE_TEST_SUITE_P(
    Ways, HaltTest,
    testing::Values(
        HaltCase{"button", false, [](frmRunTest& form, frmRunButtons&) { Press(form, "cmdHalt"); }},
        HaltCase{"escape_in_the_run_window", false,
                 [](frmRunTest& form, frmRunButtons&) { PressEscape<QTableView>(form, "flxTestData"); }},
        HaltCase{"escape_in_the_buttons", false,
                 [](frmRunTest& form, frmRunButtons&) { PressEscape<QPushButton>(form, "cmdManual"); }},
        HaltCase{"button_of_the_run_window", false,
                 [](frmRunTest& form, frmRunButtons&) { Press(form, "cmdRunHalt"); }},
        HaltCase{"run_window_closed", true, [](frmRunTest& form, frmRunButtons&) { EXPECT_FALSE(form.close()); }},
        HaltCase{"buttons_closed", true, [](frmRunTest&, frmRunButtons& buttons) { EXPECT_FALSE(buttons.close()); }}),
    [](const testing::TestParamInfo<HaltCase>& halt) { return halt.param.name; });

TEST_F(RunForms, RunGoesOnUnderAMenuThatEscapeJustCloses) {
  Open();
  m.When(AtStep(2), [&] {
    auto& label = Find<QLabel>(*form, "lblPower");
    QTest::mouseClick(form->windowHandle(), Qt::RightButton, {}, label.mapTo(form.get(), label.rect().center()));
    EXPECT_TRUE(Find<QMenu>(*form, "mnuUnitsPower").isVisible());
  });
  m.When(AtStep(4), [&] {
    auto& menu = Find<QMenu>(*form, "mnuUnitsPower");
    EXPECT_TRUE(menu.isVisible());
    QTest::keyClick(&menu, Qt::Key_Escape);
    EXPECT_FALSE(menu.isVisible());
    QTest::keyClick(form->menuBar(), Qt::Key_Escape);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier, QString(), true);
    QCoreApplication::sendEvent(form.get(), &held);  // the press that closed the menu
    EXPECT_FALSE(m.shell.delay.HaltRequested());
  });
  m.When(AtStep(5), [&] { QTest::keyClick(form.get(), Qt::Key_Escape); });
  Run();
  EXPECT_EQ(form->Engine().CompletedSteps(), 4);
}

TEST_F(RunForms, RunControlsStayInSightKeepTheirSizeAndTakeTheKeysWhenARunBegins) {
  Open();
  ExpectMnemonicsApart(*form);
  QCoreApplication::processEvents();
  const QSize ready = Buttons().size();
  EXPECT_EQ(Buttons().windowHandle()->transientParent(), form->windowHandle());
  EXPECT_EQ(Buttons().windowType(), Qt::Dialog) << "it would go below the run window";
  EXPECT_FALSE(Buttons().windowFlags().testFlag(Qt::WindowMinimizeButtonHint));
  EXPECT_TRUE(Shown("cmdRunHalt"));
  EXPECT_FALSE(Enabled("cmdRunHalt"));
  form->activateWindow();  // as the confirmation leaves it
  m.When(AtStep(2), [&] {
    EXPECT_EQ(QApplication::activeWindow(), &Buttons());
    EXPECT_EQ(Buttons().size(), ready);
    Press(*form, "cmdRunHalt");
  });
  Run();
  QCoreApplication::processEvents();
  EXPECT_EQ(Buttons().size(), ready);
  EXPECT_FALSE(Enabled("cmdRunHalt"));
}

TEST(RunWindowPlace, RunControlsOpenBesideTheRunWindowWhereThereIsRoom) {
  const QSize controls(360, 60);
  const QRect window(0, 0, 900, 680);
  EXPECT_GT(PlaceBeside(window, controls, {0, 0, 1280, 1024}).y(), window.bottom());
  EXPECT_GT(PlaceBeside(window, controls, {0, 0, 1366, 768}).x(), window.right());
  const QRect over(PlaceBeside(window, controls, {0, 0, 1024, 768}), controls);
  EXPECT_TRUE(window.contains(over)) << "beside the figures";
}

TEST(RunWindowPlace, WindowThatIsPlacedByItsContentsGoesWhereItsFrameBelongs) {
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

TEST_F(RunForms, EveryUnitOfTheMenusIsShownUnderItsCaptionAndTheRecordStays) {
  const std::tuple<const char*, const char*, const char*> units[] = {
      {"mnuLevelUnitsDBuV", "lblTestLevel", "Test Level\n(dBuv)"},
      {"mnuLevelUnitsDBuA", "lblTestLevel", "Test Level\n(dBuA)"},
      {"mnuLevelUnitsDBm", "lblTestLevel", "Test Level\n(dBm)"},
      {"mnuLevelUnitsMW", "lblTestLevel", "Test Level\n(mW)"},
      {"mnuLevelUnitsVolts", "lblTestLevel", "Test Level\n(Volts)"},
      {"mnuUnitsInducedDBuV", "lblInducedLevel", "Induced Level\n(dBuv est)"},
      {"mnuUnitsInducedDBuA", "lblInducedLevel", "Induced Level\n(dBuA)"},
      {"mnuUnitsInducedDBM", "lblInducedLevel", "Induced Level\n(dBm est)"},
      {"mnuUnitsInducedMW", "lblInducedLevel", "Induced Level\n(mW est)"},
      {"mnuUnitsInducedVolts", "lblInducedLevel", "Induced Level\n(Volts est)"},
      {"mnuUnitsInducedRelative", "lblInducedLevel", "Induced level\ndB (relative)"},
      {"mnuUnitsPowerdBm", "lblPower", "Forward Power\n(dBm)"},
      {"mnuUnitsPowerWatts", "lblPower", "Forward Power\n(watts)"}};
  Open("probe-limited-pulse.tst");
  m.When(AtStep(2), [&] { EXPECT_EQ(Text("lblInducedLevel"), "--") << "of the step before"; });
  m.When([&] { return AtStep(2)() && Text("lblInducedLevel") != "--"; }, [&] { Press(*form, "cmdHalt"); });
  Run();
  const std::string recorded = RunFileText(form->Engine().Data(), false);
  for (const auto& [action, label, caption] : units) {
    SCOPED_TRACE(action);
    Choose(*form, action);
    EXPECT_EQ(Text((std::string(label) + "Cap").c_str()), caption);
    EXPECT_TRUE(Find<QAction>(*form, action).isChecked());
  }
  EXPECT_EQ(Text("lblTestLevel"),
            ShowTestLevel(double{std::get<StepEntry>(Rows()[0]).Result->TestLevel}, RunUnit::Volts, 150).Value);
  EXPECT_EQ(RunFileText(form->Engine().Data(), false), recorded);
}

TEST_F(RunForms, WindowsOfARunFitASmallScreenAndNeverOpenLargerThanIt) {
  const auto expectFits = [](QWidget& window) {
    EXPECT_LE(window.minimumSizeHint().width(), 792) << window.objectName().toStdString();
    EXPECT_LE(window.minimumSizeHint().height(), 560) << window.objectName().toStdString();
    EXPECT_LE(window.height(), window.screen()->availableSize().height() - 40);
  };
  m.shell.settings.Save("RunTestForm", "Size", "9000,9000");
  Open();
  expectFits(*form);
  frmRunCal calibration(m.shell, m.instruments, m.documents);
  expectFits(calibration);
}

TEST_F(RunForms, SavesItsCurvesAsAPictureBetweenTwoRuns) {
  Open();
  std::string told;
  m.shell.onSaved = [&](const std::string& path) { told = path; };
  m.When(AtStep(3), [&] {
    EXPECT_FALSE(Find<QAction>(*form, "mnuFilePicture").isEnabled());
    Press(*form, "cmdRunHalt");
  });
  Run();
  for (const auto& [name, start] :
       {std::pair("a.png", "\x89PNG"), std::pair("a.svg", "<?xml"), std::pair("a.pdf", "%PDF")}) {
    dialogs.AnswerSave(m.directory.File(name));
    Choose(*form, "mnuFilePicture");
    EXPECT_TRUE(m.directory.Read(name).starts_with(start)) << name;
    EXPECT_EQ(told, m.directory.File(name));
  }
  m.shell.onSaved = nullptr;
}

TEST_F(RunForms, CurvesHoldTheRowsInTheChosenUnitAndLeadToThemAndBack) {
  Open("probe-limited-pulse.tst");
  auto& panel = Find<RunCurvePanel>(*form, "pnlCurves");
  auto& table = Find<QTableView>(*form, "flxTestData");
  const auto draw = [&] { QMetaObject::invokeMethod(panel.findChild<QTimer*>("tmrCurve"), "timeout"); };
  panel.SetQuantity("Induced");
  draw();
  EXPECT_EQ(panel.View().Curves().at(1).Points.size(), form->Engine().Steps().size())
      << "the limit, from the beginning";
  std::string caption;
  m.When(AtStep(4), [&] {
    panel.SetTimeLeft(1);  // a wait
    draw();
    caption = form->windowTitle().toStdString();
    EXPECT_EQ(panel.View().Curves().at(0).Points.size(), 3U);
    Press(*form, "cmdRunHalt");
  });
  Run();
  EXPECT_TRUE(caption.starts_with("Test Run - probe-limited-pulse.tst - step 4 of ")) << caption;
  draw();
  const auto& points = panel.View().Curves().at(0).Points;
  ASSERT_EQ(points.size(), 3U);
  EXPECT_EQ(points[1].Value, *std::get<StepEntry>(Rows()[1]).Result->Induced);
  emit panel.View().PointChosen(0, 1);
  EXPECT_EQ(table.currentIndex().row(), 1);
  table.setCurrentIndex(table.model()->index(2, 0));
  draw();
  EXPECT_EQ(panel.View().Current(), (CurvePlace{0, 2}));
  Choose(*form, "mnuUnitsInducedVolts");
  draw();
  EXPECT_EQ(panel.View().Curves().at(0).Unit, "V");
  dialogs.Answer(MessageAnswer::No);
  Press(*form, "cmdExit");
  OpenForm();
  EXPECT_TRUE(Find<QAction>(*form, "mnuUnitsInducedVolts").isChecked());
  EXPECT_EQ(Find<RunCurvePanel>(*form, "pnlCurves").Quantity(), "Induced");
}

TEST_F(RunForms, BenchIsAnnouncedOnEveryWindowOfTheRun) {
  m.LoadTest("substitution-am.tst");
  form = std::make_unique<frmRunTest>(m.shell, m.instruments, m.documents);
  m.shell.runNotice = "SIMULATED BENCH: address 13";
  form->SetSimulated();
  form->OpenFrom(&caller);
  form->Load();
  const auto expectNotice = [](QWidget& window) {
    auto& notice = Find<QLabel>(window, "lblBench");
    EXPECT_TRUE(notice.isVisible());
    EXPECT_EQ(notice.text().toStdString(), "SIMULATED BENCH: address 13");
  };
  expectNotice(Buttons());
  InManualMode(2, [&] {
    expectNotice(*form);
    expectNotice(*Manual());
    form->PressHalt();
  });
  Run();
}

TEST_F(RunForms, WindowPlacesAreRemembered) {
  Open();
  Buttons().move(120, 40);
  InManualMode(2, [&] {
    Manual()->move(60, 30);
    EXPECT_FALSE(Buttons().isVisible());
    form->PressHalt();
  });
  Run();
  EXPECT_EQ(Buttons().pos(), QPoint(120, 40)) << "shown again where it was hidden";
  form->close();
  EXPECT_TRUE(form->isVisible()) << "the rows were to be saved and are not";
  dialogs.Answer(MessageAnswer::No);  // they may go
  form->close();
  EXPECT_NE(m.shell.settings.GetFormPosition(windowkey::kRunTestForm), "");
  OpenForm();
  EXPECT_EQ(Buttons().pos(), QPoint(120, 40));
  InManualMode(1, [&] {
    EXPECT_EQ(Manual()->pos(), QPoint(60, 30));
    form->PressHalt();
  });
  Run();
}

TEST_F(RunForms, TableFollowsTheRunUnlessTheOperatorLooksBack) {
  Open();
  auto& table = Find<QTableView>(*form, "flxTestData");
  form->findChild<QTimer*>("tmrFollow")->setInterval(0);
  const auto lastIsVisible = [&] {
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
    return table.viewport()->rect().contains(table.visualRect(table.model()->index(table.model()->rowCount() - 1, 0)));
  };
  m.When(AtStep(20), [&] {
    EXPECT_TRUE(lastIsVisible());
    EXPECT_GT(table.verticalScrollBar()->value(), 0);
    table.verticalScrollBar()->setValue(0);
  });
  m.When(AtStep(24), [&] {
    EXPECT_FALSE(lastIsVisible());
    EXPECT_EQ(table.verticalScrollBar()->value(), 0);
    table.scrollToBottom();
  });
  m.When(AtStep(28), [&] {
    EXPECT_TRUE(lastIsVisible());
    Press(*form, "cmdHalt");
  });
  Run();
}

}  // namespace
}  // namespace hylden
