// The windows of the calibrations on the bench: set up, run, halted, closed in the middle, saved; from the main menu to
// their files and back.

#include <filesystem>

#include "calibration/qt/frmCblSetup.h"
#include "calibration/qt/frmRunCablCal.h"
#include "calibration/qt/frmRunCal.h"
#include "desktop/DemoWindows.h"
#include "documents/qt/frmCalSetup.h"
#include "documents/qt/frmEquipment.h"
#include "editors/qt/frmEditFactor.h"
#include "measure/qt/frmBuildList.h"
#include "shell/qt/frmHelp.h"
#include "support/ReadLines.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

class CalForms : public DemoWindowsTest {
 protected:
  CalSetup& Cal() { return m.documents.calSetup; }
  std::unique_ptr<frmCalSetup> OpenSetup() {
    auto form = std::make_unique<frmCalSetup>(m.shell, m.instruments, m.documents);
    form->show();
    return form;
  }
  std::unique_ptr<frmRunCal> OpenRun() {
    auto form = std::make_unique<frmRunCal>(m.shell, m.instruments, m.documents);
    form->OpenFrom(&caller);
    form->Load();
    return form;
  }
  static std::string Cell(QWidget& form, const char* table, int row, int column) {
    return Find<QTableView>(form, table).model()->index(row, column).data().toString().toStdString();
  }
  static int Rows(QWidget& form, const char* table) { return Find<QTableView>(form, table).model()->rowCount(); }
  std::size_t LinesOf(const std::string& name) { return ReadLines(m.directory.File(name)).size(); }

  QWidget caller;
};

TEST_F(CalForms, OpensWithUsableDefaultsAndShowsZeroAsAValue) {
  Cal().Record = {};
  EXPECT_EQ(TextOf(*OpenSetup(), "txtStopFreq"), "80");
  EXPECT_EQ(TextOf(*OpenSetup(), "txtInterDwell"), "1.0");
  EXPECT_EQ(Cal().Record.Dwell, double{m.instruments.meter.SettlingTime()});
  Cal().Record.InitLevel = 0, Cal().Record.Dwell = 0;
  EXPECT_EQ(TextOf(*OpenSetup(), "txtInitLev"), "0");
  EXPECT_EQ(TextOf(*OpenSetup(), "txtFinalDwell"), "0.0");
}

TEST_F(CalForms, EveryEntryComesBackFromTheForm) {
  CalSetupRecord& setup = Cal().Record;
  setup.StepType = StepType::List, setup.LinearStep = setup.LogStep = 0;
  setup.ListFile = "radio-services.lst";
  setup.LimitType = LimitType::File, setup.CalLevel = 0, setup.LimitFile = "stepped.lev";
  setup.MaxLevel = -5, setup.MaxStep = 4, setup.InitLevel = -41;
  setup.RecordFwdPwr = setup.RecordRevPwr = setup.LimitFwdPwr = 1, setup.FwdPwrLimit = 12;
  setup.Dwell = 0.5, setup.CouplingMethod = CouplingMethod::UserDefined, setup.UserDefinedFactor = 2.5F;
  setup.AmpUsed = "A", setup.DeviceDescription = "D";
  const CalSetupRecord shown = setup;
  const auto form = OpenSetup();
  setup = {};
  ASSERT_TRUE(form->FormToSetup(true)) << dialogs.LastText();
  EXPECT_EQ(RecordText(setup), RecordText(shown));
}

TEST_F(CalForms, EveryBoxThatHoldsNoNumberIsPointedOut) {
  Cal().Record.LimitFwdPwr = 1;
  EXPECT_EQ(ExpectPointedOut(dialogs, *OpenSetup(), Cal().Record, "cmdStart"), 9U);
  RunCablCal calibration(m.shell, m.instruments);
  calibration.Setup.StartFreq = 1, calibration.Setup.StopFreq = 2;
  frmCblSetup cableSetup(m.shell, m.documents, calibration);
  cableSetup.show();
  EXPECT_EQ(ExpectPointedOut(dialogs, cableSetup, calibration.Setup, "cmdStart"), 5U);
}

TEST_F(CalForms, ListStepsWithoutAFileOpenThePickerInsteadOfStarting) {
  Cal().Record.ListFile.clear();
  const auto form = OpenSetup();
  bool started = false;
  QObject::connect(form.get(), &frmCalSetup::StartRequested, [&] { started = true; });
  Press(*form, "optListStep");
  dialogs.Answer(MessageAnswer::Cancel);
  EXPECT_THAT(Told(dialogs, *form, "cmdStart"), testing::ElementsAre("Need filename, please pick frequency list file"));
  EXPECT_TRUE(dialogs.openRequests.empty());
  dialogs.AnswerOpen("radio-services.lst");
  Press(*form, "cmdStart");
  EXPECT_FALSE(started);
  EXPECT_EQ(std::stod(TextOf(*form, "txtStartFreq")), Cal().Record.StartFreq);
  Press(*form, "cmdStart");
  EXPECT_TRUE(started) << dialogs.LastText();
}

TEST_F(CalForms, RunThatCanNotBePreparedCanNotBeStarted) {
  Cal().Record.StopFreq = 5000;
  std::string title;
  dialogs.onShow = [&](const Message&) { title = OpenWindow<frmRunCal>()->windowTitle().toStdString(); };
  const auto form = OpenRun();
  EXPECT_EQ(dialogs.LastText(), "Cable loss file does not cover frequency range");
  EXPECT_EQ(title, "CDI Calibration: 10 V, 0.15 to 230 MHz");
  EXPECT_EQ(TextOf(*form, "pnlStatus"), "Not ready: Cable loss file does not cover frequency range");
  EXPECT_EQ(TextOf(*form, "lblState"), "Not ready");
  EXPECT_FALSE(IsEnabled(*form, "cmdStart"));
}

TEST_F(CalForms, KeyHeldDownStartsNoSecondRun) {
  const auto form = OpenRun();
  auto& start = Find<QPushButton>(*form, "cmdStart");
  start.setAutoDefault(true);
  for (const bool repeated : {false, true}) {
    QKeyEvent key(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), repeated);
    QCoreApplication::sendEvent(&start, &key);
    EXPECT_EQ(m.Asked("Save Calibration"), 1U);
  }
}

TEST_F(CalForms, ClosingWindowStaysForPointsThatMakeARecord) {
  for (const char* last : {"2.0", "3.0"}) {
    const auto form = OpenRun();
    // To be saved, and the file dialog is cancelled.
    m.When([&] { return TextOf(*form, "lblFreq") == last && m.RfIsOn(); }, [&] { form->close(); });
    Press(*form, "cmdStart");
    QCoreApplication::processEvents();
    const std::size_t points = form->Calibration().Rows().size();
    EXPECT_EQ(form->isVisible(), points >= 2) << points;
    EXPECT_EQ(Find<QWidget>(*form, "cmdSave").isVisible(), points >= 2);
    EXPECT_FALSE(m.RfIsOn());
  }
}

/// The two passes over 1, 1.5 and 2 MHz.
class CableForms : public CalForms {
 protected:
  void SetUp() override {
    CableSetup& setup = calibration.Setup;
    setup.StartFreq = 1, setup.StopFreq = 2, setup.StepType = StepType::Log, setup.LogStep = 50;
    ASSERT_TRUE(calibration.BuildPlan());
  }
  std::unique_ptr<frmRunCablCal> OpenPasses() {
    auto form = std::make_unique<frmRunCablCal>(m.shell, m.instruments, calibration);
    QObject::connect(form.get(), &frmRunCablCal::PassStarting,
                     [&](bool inserted) { m.bench.Connect(inserted ? MeterAt::Cable : MeterAt::Generator); });
    form->OpenFrom(&caller);
    return form;
  }

  RunCablCal calibration{m.shell, m.instruments};
};

TEST_F(CableForms, BothPassesGiveTheLoss) {
  calibration.Setup.StopFreq = 0;
  frmCblSetup fresh(m.shell, m.documents, calibration);
  EXPECT_EQ(TextOf(fresh, "txtStartFreq"), "") << "a placeholder is no value";
  EXPECT_EQ(Find<QLineEdit>(fresh, "txtStartFreq").placeholderText(), "Lowest Frequency");
  Type(fresh, "txtStartFreq", "1");
  Type(fresh, "txtStopFreq", "2");
  Type(fresh, "txtLogStep", "50");
  bool started = false;
  QObject::connect(&fresh, &frmCblSetup::StartRequested, [&] { started = true; });
  Press(fresh, "cmdStart");
  ASSERT_TRUE(started) << dialogs.LastText();

  const auto form = OpenPasses();
  Press(*form, "cmdInsert");
  EXPECT_EQ(dialogs.LastText(), "You must take direct readings first");
  Press(*form, "cmdDirect");
  ASSERT_EQ(Rows(*form, "lvwData"), 3);
  EXPECT_NE(Cell(*form, "lvwData", 1, 2), "");
  EXPECT_EQ(Cell(*form, "lvwData", 1, 4), "");
  Press(*form, "cmdInsert");
  const std::string loss = Cell(*form, "lvwData", 1, 4);
  EXPECT_NEAR(std::stod(loss), m.bench.Config().CableUnderTest.At(1.5), 0.1);
  EXPECT_FALSE(m.RfIsOn());
  dialogs.AnswerSave(m.directory.File("cable.los"));
  Press(*form, "cmdSave");
  EXPECT_EQ(LinesOf("cable.los"), 15U);

  m.bench.Inject({.Kind = FaultKind::Absent, .Who = BenchRole::Meter});
  Press(*form, "cmdDirect");
  EXPECT_TRUE(dialogs.LastText().ends_with("\r\nError initializing meter"));
  EXPECT_EQ(Cell(*form, "lvwData", 1, 4), loss) << "a pass that comes to nothing hides no reading";
  EXPECT_TRUE(form->close());
  EXPECT_FALSE(dialogs.WasShownContaining("has not been saved"));
}

TEST_F(CableForms, MeasuredLossIsNotLostByClosing) {
  auto form = OpenPasses();
  Press(*form, "cmdDirect");
  const std::string reading = Cell(*form, "lvwData", 2, 2);
  EXPECT_TRUE(form->close());
  form = OpenPasses();
  EXPECT_EQ(Cell(*form, "lvwData", 2, 2), reading) << "direct readings wait for their insert pass";
  dialogs.Answer(MessageAnswer::Cancel);
  dialogs.onShow = [&](const Message&) { EXPECT_TRUE(form->AsksToSave()) << "the end of the program takes it away"; };
  m.When([&] { return TextOf(*form, "lblFreq") == "2.0" && m.RfIsOn(); }, [&] { form->close(); });
  Press(*form, "cmdInsert");
  QCoreApplication::processEvents();
  EXPECT_FALSE(m.RfIsOn());
  EXPECT_TRUE(dialogs.WasShownContaining("has not been saved"));
  EXPECT_TRUE(form->isVisible());
  EXPECT_EQ(Rows(*form, "lvwData"), 3);
  EXPECT_EQ(Cell(*form, "lvwData", 2, 4), "") << "it was halted there";

  dialogs.Answer(MessageAnswer::Yes);
  dialogs.AnswerSave(m.directory.File("cable.los"));
  EXPECT_TRUE(form->close());
  EXPECT_EQ(LinesOf("cable.los"), 14U);
}

/// The calibrations among the program's windows.
class CalibrationDesktop : public CalForms {
 protected:
  void SetUp() override {
    std::filesystem::copy_file(HYLDEN_SOURCE_DIR "/help/hylden.md", m.directory.File("hylden.hlp"));
    m.Start();
  }
  frmRunCablCal& OpenPasses(frmEquipment& equipment) {
    Choose(equipment, "mnuUtilInsertLoss");
    auto& cable = m.Opened<frmCblSetup>();
    EXPECT_EQ(QApplication::activeModalWidget(), &cable);
    Type(cable, "txtStartFreq", "1");
    Type(cable, "txtStopFreq", "2");
    Type(cable, "txtLogStep", "50");
    Press(cable, "cmdStart");
    auto& passes = m.Opened<frmRunCablCal>();
    // The calibration setup behind it could start a second run on the same generator.
    EXPECT_EQ(QApplication::activeModalWidget(), &passes);
    return passes;
  }
};

TEST_F(CalibrationDesktop, MainMenuLeadsToARunThatIsShownAndSavedAndBack) {
  m.bench.Connect(MeterAt::Generator);
  Press(m.desktop->Menu(), "cmdCalibration");
  Press(m.Opened<frmCalSetup>(), "cmdStart");
  auto& run = m.Opened<frmRunCal>();
  EXPECT_EQ(OpenWindow<frmCalSetup>(), nullptr);
  EXPECT_EQ(m.Cabled(), MeterAt::Port);
  EXPECT_TRUE(Find<QLabel>(run, "lblBench").isVisible());
  EXPECT_EQ(run.windowTitle(), "CDI Calibration: 10 V, 0.15 to 230 MHz");
  dialogs.AnswerSave(m.directory.File("whole.cal"));
  m.WhenRfIsOn([&] { EXPECT_EQ(TextOf(run, "lblRf"), "RF ON"); });
  m.When([] { return true; }, [&] { EXPECT_FALSE(IsEnabled(run, "cmdStart") || IsEnabled(run, "cmdExit")); });
  Press(run, "cmdStart");
  EXPECT_EQ(m.ActionsLeft(), 0U);
  EXPECT_FALSE(m.RfIsOn());
  EXPECT_EQ(TextOf(run, "lblRf"), "RF off");
  ASSERT_EQ(Rows(run, "flxCalData"), 3);
  EXPECT_EQ(Cell(run, "flxCalData", 2, 0), "3.0");
  EXPECT_EQ(Cell(run, "flxCalData", 0, 2), "140.00");
  EXPECT_EQ(TextOf(run, "pnlStep"), "Step Number 3");
  EXPECT_EQ(LinesOf("whole.cal"), 3U);
  EXPECT_TRUE(IsEnabled(run, "cmdSave") && IsEnabled(run, "cmdStart"));
  Press(run, "cmdExit");
  Press(m.Opened<frmCalSetup>(), "cmdExit");
  QCoreApplication::processEvents();
  EXPECT_TRUE(m.desktop->Menu().isVisible());
}

TEST_F(CalibrationDesktop, SetupLeadsToTheEditorOfItsLevelFileAndToTheListBuilder) {
  m.desktop->OpenCalibrationSetup();
  auto& setup = m.Opened<frmCalSetup>();
  for (const char* const chosen : {"", "stepped.lev"}) {
    FitPathLabel(chosen, Find<PathLabel>(setup, "lblLimitFile"));
    Choose(setup, "mnuEditLevel");
    auto& editor = m.Opened<frmEditFactor>();
    EXPECT_EQ(TextOf(editor, "lblFile"), std::string("File: ") + (*chosen ? chosen : "(none)"));
    Choose(editor, "mnuFileLoad");
    EXPECT_TRUE(dialogs.openRequests.back().fileName.ends_with(*chosen ? chosen : "*.lev"));
    Choose(editor, "mnuFileExit");
    EXPECT_EQ(&m.Opened<frmCalSetup>(), &setup);
    Turn();
  }
  const std::function<void()> ways[] = {
      [&] { Press(setup, "cmdCreateList"); }, [&] { Choose(setup, "mnuEditList"); },
      [&] { emit Find<QWidget>(setup, "lblListFile").customContextMenuRequested({}); }};
  for (const auto& way : ways) {
    way();
    Press(m.Opened<frmBuildList>(), "cmdExit");
    Turn();
  }
}

TEST_F(CalibrationDesktop, MissingCableLossIsMeasuredFromTheModalEquipmentForm) {
  m.documents.equip.Record.CableLossFile.clear();
  m.desktop->OpenCalibrationSetup();
  Press(m.Opened<frmCalSetup>(), "cmdStart");
  EXPECT_EQ(dialogs.LastText(), "No cable loss file has been selected");
  auto& equipment = m.Opened<frmEquipment>();
  EXPECT_EQ(QApplication::activeModalWidget(), &equipment);
  EXPECT_EQ(Find<QTabWidget>(equipment, "tabSetup").currentIndex(), 1) << "where the tables are";
  auto& passes = OpenPasses(equipment);
  Press(passes, "cmdDirect");
  EXPECT_EQ(m.Cabled(), MeterAt::Generator);
  Press(passes, "cmdInsert");
  EXPECT_EQ(m.Cabled(), MeterAt::Cable);
  dialogs.AnswerSave(m.directory.File("cable.los"));
  Press(passes, "cmdSave");
  EXPECT_EQ(LinesOf("cable.los"), 15U);
  Press(passes, "cmdExit");
  Press(m.Opened<frmCblSetup>(), "cmdExit");
  EXPECT_EQ(&m.Opened<frmEquipment>(), &equipment);
  EXPECT_EQ(QApplication::activeModalWidget(), &equipment);
}

TEST_F(CalibrationDesktop, HelpBesideAModalRunLeavesHaltInReach) {
  frmEquipment& equipment = *m.desktop->OpenEquipment(&m.desktop->Menu(), 0, true);
  auto& passes = OpenPasses(equipment);
  const std::function<void()> halts[] = {
      [&] { ClickOnScreen(passes, "cmdHalt"); },
      [&] { QTest::keyClick(passes.windowHandle(), Qt::Key_Escape); },
  };
  for (const auto& halt : halts) {
    m.WhenRfIsOn([&] { QTest::keyClick(passes.windowHandle(), Qt::Key_F1); });
    m.When([&] { return OpenWindow<frmHelp>() != nullptr; }, halt);
    Press(passes, "cmdDirect");
    EXPECT_FALSE(m.RfIsOn());
    EXPECT_EQ(m.ActionsLeft(), 0U);
    EXPECT_EQ(Cell(passes, "lvwData", 0, 2), "") << "it was not halted at its first point";
  }
  passes.close();
  m.Opened<frmCblSetup>().close();
  m.Opened<frmEquipment>().close();
  QCoreApplication::processEvents();
  ClickOnScreen(m.desktop->Menu(), "cmdConfigSys");
  EXPECT_NE(OpenWindow<frmEquipment>(), nullptr) << "the manual locks nothing";
  QTest::keyClick(m.Opened<frmHelp>().windowHandle(), Qt::Key_Escape);
  EXPECT_EQ(OpenWindow<frmHelp>(), nullptr);
}

TEST_F(CalibrationDesktop, EscapeInTheManualLeavesItsSearchAndThenTheManualButNotTheRun) {
  m.desktop->OpenCalibrationSetup();
  Press(m.Opened<frmCalSetup>(), "cmdStart");
  auto& run = m.Opened<frmRunCal>();
  m.WhenRfIsOn([&] { QTest::keyClick(&run, Qt::Key_F1); });
  m.When([&] { return OpenWindow<frmHelp>() != nullptr; },
         [&] {
           auto& manual = m.Opened<frmHelp>();
           auto& search = Find<QLineEdit>(manual, "txtSearch");
           search.setFocus();
           QTest::keyClicks(&search, "halt");
           QTest::keyClick(&search, Qt::Key_Escape);
           EXPECT_TRUE(search.text().isEmpty() && manual.isVisible());
           QTest::keyClick(&manual, Qt::Key_Escape);
           EXPECT_FALSE(manual.isVisible());
           EXPECT_FALSE(m.shell.delay.HaltRequested());
           run.PressHalt();
         });
  Press(run, "cmdStart");
  EXPECT_EQ(m.ActionsLeft(), 0U);
}

}  // namespace
}  // namespace hylden
