// The end of the program, asked for while its windows are busy: boxes give way, RF goes off, and no window closes under
// a command of its own; a window that stays open refuses the end.

#include <csignal>

#include "calibration/qt/frmCblSetup.h"
#include "calibration/qt/frmRunCal.h"
#include "desktop/DemoWindows.h"
#include "documents/qt/frmEquipment.h"
#include "documents/qt/frmTestDef.h"
#include "instruments/qt/frmMeter.h"
#include "instruments/qt/frmSigGen.h"
#include "platform/qt/EndSignals.h"
#include "platform/qt/QtDialogs.h"
#include "platform/qt/QtText.h"
#include "testrun/qt/frmRunTest.h"

namespace hylden {
namespace {

/// The demo station's program with its documents loaded.
class Program : public DemoWindows {
 public:
  explicit Program(Dialogs* others = nullptr, std::function<void()> clearBoxes = {}) : DemoWindows(others) {
    Start({}, std::move(clearBoxes));
    LoadTest("substitution-am.tst");
  }
  EndOfProgram::State End() const { return shell.end.Now(); }
  frmEquipment& Equipment() { return *desktop->OpenEquipment(&desktop->Menu()); }
  frmTestDef& TestDefinitionForm() {
    desktop->OpenTestDefinition();
    return *OpenWindow<frmTestDef>();
  }
  frmRunTest& TestRun() {
    desktop->OpenTestRun(&desktop->Menu());
    return *OpenWindow<frmRunTest>();
  }
  frmRunCal& Calibration() {
    desktop->OpenCalibrationRun(&desktop->Menu());
    return *OpenWindow<frmRunCal>();
  }
};

/// What an operator does, who has a box on the screen, and the boxes that are seen until the program has ended.
struct BoxCase {
  const char* name;
  void (*act)(Program& p);
  std::vector<std::string> boxes;
};

class EndUnderABox : public testing::TestWithParam<BoxCase> {};

TEST_P(EndUnderABox, EndsInOrderAndTakesNoQuestionForAnswered) {
  QtDialogs dialogs;
  Program p(&dialogs, [&] { dialogs.CloseBoxes(); });
  dialogs.isEnding = [&] { return p.shell.end.IsAsked(); };
  Someone someone([&](QWidget& box) {
    if (someone.seen.size() == 1) return p.desktop->CloseAll();
    auto* const question = qobject_cast<QMessageBox*>(&box);
    QAbstractButton* const no = question ? question->button(QMessageBox::No) : nullptr;
    no ? no->click() : dynamic_cast<QDialog&>(box).reject();
  });
  GetParam().act(p);
  Turn();
  EXPECT_EQ(someone.seen, GetParam().boxes);
  EXPECT_EQ(p.ended, 1);
  EXPECT_EQ(OpenWindow<QWidget>(), nullptr);
  EXPECT_FALSE(p.RfIsOn());
}

void TypeAndClose(WorkingForm& form, const char* box) {
  Type(form, box, "9");
  form.close();
}

INSTANTIATE_TEST_SUITE_P(
    , EndUnderABox,
    testing::Values(
        BoxCase{"equipment_closing",
                [](Program& p) { TypeAndClose(p.Equipment(), "txtSigGenAddr"); },
                {"Save Equipment", "Save Equipment"}},
        BoxCase{"equipment_loading",
                [](Program& p) {
                  frmEquipment& form = p.Equipment();
                  Type(form, "txtSigGenAddr", "9");
                  form.LoadFile("ifi-station.eqp");
                },
                {"Save Equipment", "Save Equipment"}},
        BoxCase{
            "equipment_directory", [](Program& p) { Choose(p.Equipment(), "mnuFileOptCalDir"); }, {"Select Directory"}},
        BoxCase{"test_definition_start_without_its_station",
                [](Program& p) {
                  p.documents.equip.Record.SigGenFile.clear();
                  p.documents.equip.Saved = p.documents.equip.Record;
                  Press(p.TestDefinitionForm(), "cmdStart");
                },
                {"Hylden"}},
        BoxCase{"cable_setup_list",
                [](Program& p) {
                  p.desktop->OpenCableSetup(&p.desktop->Menu());
                  Press(*OpenWindow<frmCblSetup>(), "cmdListFile");
                },
                {"Select frequency list file"}},
        BoxCase{"test_run_confirmation", [](Program& p) { Press(p.TestRun(), "cmdRun"); }, {"MAKE SURE!!!"}},
        BoxCase{"definition_closing",
                [](Program& p) {
                  Choose(p.Equipment(), "mnuInstDefineMeter");
                  Type(*OpenWindow<frmMeter>(), "txtName", "Mine");
                  OpenWindow<frmMeter>()->close();
                },
                {"Save Definition", "Save Definition"}},
        BoxCase{"definition_prompt_with_rf_on",
                [](Program& p) {
                  Choose(p.Equipment(), "mnuInstDefineSigGen");
                  SigGen& sigGen = p.instruments.sigGen;
                  EXPECT_TRUE(sigGen.InitSigGen(10, -30) && sigGen.RfOn() && p.RfIsOn());
                  Choose(*OpenWindow<frmSigGen>(), "mnuTestInit");
                },
                {"Test"}},
        BoxCase{"about", [](Program& p) { Choose(p.Equipment(), "mnuHelpAbout"); }, {"About Hylden"}}),
    [](const auto& row) { return std::string(row.param.name); });

class EndOfTheProgram : public testing::Test {
 protected:
  int cleared = 0;  ///< how often boxes had to give way
  Program p{nullptr, [this] { ++cleared; }};
  FakeDialogs& dialogs = p.dialogs;
};

TEST_F(EndOfTheProgram, ComesBehindACommandNotBetweenItsBoxes) {
  const QPointer<frmEquipment> form = &p.Equipment();
  Type(*form, "txtSigGenAddr", "9");
  for (const MessageAnswer answer : {MessageAnswer::No, MessageAnswer::Ok, MessageAnswer::No}) dialogs.Answer(answer);
  dialogs.onShow = [&](const Message&) {
    if (dialogs.messages.size() == 1) p.desktop->CloseAll();
    Turn();
    ASSERT_TRUE(form && form->isVisible()) << dialogs.messages.size();
  };
  form->LoadFile(QString::fromStdString(p.directory.Write("half.eqp", "other.sg\r\n 3 \r\n")));
  EXPECT_EQ(dialogs.messages.size(), 2U) << "the question, and what is wrong with the file";
  Turn();
  EXPECT_EQ(dialogs.messages.size(), 3U) << "the question of the end";
  EXPECT_EQ(p.ended, 1);
}

TEST_F(EndOfTheProgram, StartsNothingThatIsConfirmedMeanwhile) {
  frmRunTest& form = p.TestRun();
  const int calls = p.driver.Calls();
  dialogs.onShow = [&](const Message& message) {
    if (message.title == "MAKE SURE!!!") p.desktop->CloseAll();
  };
  Press(form, "cmdRun");  // OK
  EXPECT_EQ(form.Engine().Outcome(), RunOutcome::NotRun);
  EXPECT_EQ(p.driver.Calls(), calls) << "the bus was touched";
  Press(form, "cmdRun");
  EXPECT_EQ(dialogs.messages.size(), 1U);
  Press(p.desktop->Menu(), "cmdConfigSys");
  EXPECT_EQ(OpenWindow<frmEquipment>(), nullptr);
  Turn();
  EXPECT_EQ(p.ended, 1);
}

/// A window in which something runs; its data were to be saved, and the file dialog is cancelled.
struct RunCase {
  const char* name;
  WorkingForm& (*open)(Program& p);
  const char* start;
};

class EndInARun : public EndOfTheProgram, public testing::WithParamInterface<RunCase> {
 protected:
  void RunAndEndIt() {
    WorkingForm& form = GetParam().open(p);
    p.When([&] { return p.RfIsOn() && TextOf(form, "lblStep").ends_with("3"); },
           [&] {
             p.desktop->CloseAll();
             EXPECT_FALSE(p.RfIsOn());
           });
    Press(form, GetParam().start);
    EXPECT_EQ(p.ActionsLeft(), 0U);
    Turn();
  }
};

TEST_P(EndInARun, IsRefusedByASaveThatIsCancelledAndTheProgramRunsAsBefore) {
  RunAndEndIt();
  ASSERT_EQ(p.End(), EndOfProgram::State::Refused);
  WorkingForm& form = *OpenWindow<WorkingForm>();
  EXPECT_EQ(dialogs.LastText(),
            "The program was asked to end, but this window stays open:\r\n" + form.windowTitle().toStdString());
  dialogs.Answer(MessageAnswer::No);  // not continued
  dialogs.Answer(MessageAnswer::No);  // the rows may go
  p.WhenRfIsOn([&] { emit p.desktop->EscapePressed(); });
  Press(form, GetParam().start);
  EXPECT_EQ(p.ActionsLeft(), 0U);
  // A save that was missed before is asked about again.
  dialogs.Answer(MessageAnswer::Ok);
  dialogs.Answer(MessageAnswer::No);
  dialogs.onShow = [&](const Message& message) {
    if (message.text == "Busy") p.desktop->CloseAll();
  };
  form.Guard("cmdX", [&] { dialogs.Tell("Busy"); });
  Turn();
  EXPECT_EQ(p.ended, 1);
}

TEST_P(EndInARun, ClosesEveryWindowWhenTheDataAreNotToBeSaved) {
  p.desktop->ShowBenchPanel();
  dialogs.onShow = [&](const Message& message) {
    if (message.title.starts_with("Save")) dialogs.Answer(MessageAnswer::No);
  };
  RunAndEndIt();
  EXPECT_EQ(p.ended, 1);
  EXPECT_EQ(OpenWindow<QWidget>(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    , EndInARun,
    testing::Values(RunCase{"test", [](Program& p) -> WorkingForm& { return p.TestRun(); }, "cmdRun"},
                    RunCase{"calibration", [](Program& p) -> WorkingForm& { return p.Calibration(); }, "cmdStart"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(EndOfTheProgram, AskedTwiceKeepsTheQuestionWhetherToSaveStanding) {
  dialogs.AnswerSave(p.directory.File("ended.run"));
  frmRunTest& form = p.TestRun();
  dialogs.onShow = [&](const Message& message) {
    if (message.title != "Save Run Data") return;
    p.desktop->CloseAll();
    QCoreApplication::processEvents();
    EXPECT_TRUE(form.isVisible()) << "its data would be gone";
  };
  p.WhenRfIsOn([&] { p.desktop->CloseAll(); });
  Press(form, "cmdRun");
  EXPECT_EQ(cleared, 1) << "the question was cancelled";
  EXPECT_TRUE(p.directory.Exists("ended.run"));
  Turn();
  EXPECT_EQ(p.ended, 1);
}

TEST_F(EndOfTheProgram, AskedForWhileTheQuestionWhetherToSaveStandsLeavesItStanding) {
  frmRunTest& form = p.TestRun();
  dialogs.onShow = [&](const Message& message) {
    if (message.title == "Save Run Data") p.desktop->CloseAll();
  };
  dialogs.AnswerSave(p.directory.File("ended.run"));
  p.When([&] { return TextOf(form, "lblStep") == "Step# 3"; }, [&] { form.PressHalt(); });
  Press(form, "cmdRun");
  EXPECT_EQ(cleared, 0);
  EXPECT_TRUE(p.directory.Exists("ended.run"));
}

class SignalInARun : public EndOfTheProgram, public testing::WithParamInterface<int> {};

TEST_P(SignalInARun, EndsOnlyInOrderWithRfOffOrNotAtAll) {
  const bool stops = GetParam() == SIGHUP || GetParam() == SIGQUIT || GetParam() == SIGPWR || GetParam() == SIGTERM;
  const EndSignals watch([this] { p.desktop->CloseAll(); });
  frmRunTest& form = p.TestRun();
  dialogs.AnswerSave(p.directory.File("kept.run"));
  p.When([&] { return TextOf(form, "lblStep") == "Step# 3" && p.RfIsOn(); }, [] { raise(GetParam()); });
  p.When([] { return true; },
         [&] {
           EXPECT_EQ(p.RfIsOn(), !stops) << "at once";
           EXPECT_EQ(p.shell.delay.HaltRequested(), stops);
           form.PressHalt();
         });
  Press(form, "cmdRun");
  EXPECT_EQ(p.ActionsLeft(), 0U);
  Turn();
  EXPECT_FALSE(p.RfIsOn());
  EXPECT_TRUE(p.directory.Exists("kept.run"));
  EXPECT_EQ(p.ended, stops ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(, SignalInARun,
                         testing::Values(SIGHUP, SIGQUIT, SIGPWR, SIGTERM, SIGTSTP, SIGPIPE, SIGUSR1, SIGALRM, SIGIO,
                                         SIGXFSZ),
                         [](const auto& row) { return std::string(sigabbrev_np(row.param)); });

TEST_F(EndOfTheProgram, AskedForInABoxOfAWindowThatOpensLeavesItShut) {
  p.documents.calSetup.Record.CouplingMethod = CouplingMethod{9};
  dialogs.onShow = [&](const Message&) {
    p.desktop->CloseAll();
    Turn();
  };
  p.desktop->OpenCalibrationSetup();
  Turn();
  EXPECT_FALSE(dialogs.messages.empty());
  EXPECT_EQ(OpenWindow<QWidget>(), nullptr);
  EXPECT_EQ(p.ended, 1);
}

TEST_F(EndOfTheProgram, CommandThatFailsIsReportedWhereverItWasStarted) {
  struct Failing : WorkingForm {
    using WorkingForm::WorkingForm;
    bool QueryUnload() override { throw RuntimeError(ErrorNumber::DiskFull); }
  };
  auto* const form = new Failing(p.shell);
  form->setObjectName("frmX");
  p.desktop->Open(form, &p.desktop->Menu());
  form->Guard("cmdY", [] { throw std::logic_error("never"); });
  EXPECT_EQ(dialogs.LastText(), "Error # 51\rInternal error\rfrmX.cmdY\r");
  EXPECT_FALSE(form->close());
  EXPECT_TRUE(dialogs.LastText().starts_with("Error # 61\r")) << dialogs.LastText();
  EXPECT_FALSE(form->IsBusy());
}

TEST_F(EndOfTheProgram, EntryThatCanNotBeTakenOrIsThoughtAboutRefusesItAndTheFormWorksAsBefore) {
  frmEquipment& form = p.Equipment();
  Type(form, "txtSigGenAddr", "99");
  p.desktop->CloseAll();
  EXPECT_TRUE(p.shell.delay.HaltRequested());
  Turn();
  EXPECT_EQ(dialogs.Texts(), (std::vector<std::string>{"Number outside valid range, re-enter\r\n"
                                                       "Signal generator GPIB address: a whole number, 0 to 30",
                                                       "The program was asked to end, but this window stays open:\r\n" +
                                                           form.windowTitle().toStdString()}));
  EXPECT_EQ(p.End(), EndOfProgram::State::Refused);
  Type(form, "txtSigGenAddr", "9");
  dialogs.Answer(MessageAnswer::Cancel);
  p.desktop->CloseAll();
  Turn();
  EXPECT_TRUE(form.isVisible());
  EXPECT_EQ(p.End(), EndOfProgram::State::Refused);
  dialogs.Answer(MessageAnswer::No);
  form.close();
  Turn();
  EXPECT_EQ(p.ended, 0);
  EXPECT_TRUE(p.desktop->Menu().isVisible());
  EXPECT_EQ(p.documents.equip.Record.SigGenAddress, 9) << "kept in the session as before";
}

/// The program on real boxes.
class RealBoxes : public testing::Test {
 protected:
  RealBoxes() {
    p.Start(" \"/t:substitution-am.tst\"");
    EXPECT_FALSE(p.desktop->Menu().isVisible());
    Press(*OpenWindow<frmTestDef>(), "cmdStart");
    EXPECT_EQ(OpenWindow<frmTestDef>(), nullptr) << "the form that opened it is hidden";
  }
  QtDialogs dialogs;
  DemoWindows p{&dialogs};
};

TEST_F(RealBoxes, CommandLineLeadsToSavedRunDataAndBack) {
  frmRunTest& form = *OpenWindow<frmRunTest>();
  EXPECT_TRUE(Find<QLabel>(form, "lblBench").isVisible());
  const Someone someone([&](QWidget& modal) {
    if (auto* const box = qobject_cast<QMessageBox*>(&modal)) return box->buttons().front()->click();
    dynamic_cast<QFileDialog&>(modal).selectFile(ToQt(p.directory.File("whole.run")));
    QMetaObject::invokeMethod(&modal, "accept", Qt::DirectConnection);
  });
  Press(form, "cmdRun");
  EXPECT_THAT(someone.seen, testing::ElementsAre("MAKE SURE!!!", "Save Run Data", "Select run file"));
  EXPECT_EQ(form.Engine().Outcome(), RunOutcome::Finished);
  EXPECT_EQ(p.directory.Read("whole.run"), RunFileText(form.Engine().Data(), false));
  Press(form, "cmdExit");
  Turn();
  EXPECT_EQ(OpenWindow<frmRunTest>(), nullptr);
  EXPECT_NE(OpenWindow<frmTestDef>(), nullptr);
}

TEST_F(RealBoxes, EscapeInOneHaltsTheRun) {
  dialogs.onEscape = [&] { p.desktop->EscapeInBox(); };
  ASSERT_TRUE(OpenWindow<frmRunTest>()->close());
  Turn();
  p.Test().SweepDwell = 0;
  p.desktop->OpenTestRun(&p.desktop->Menu());
  frmRunTest& run = *OpenWindow<frmRunTest>();
  bool halted = false;
  const Someone someone([&](QWidget& modal) {
    auto& box = dynamic_cast<QMessageBox&>(modal);
    if (box.windowTitle() != "Wait for user")
      return box.button(box.windowTitle() == "MAKE SURE!!!" ? QMessageBox::Ok : QMessageBox::No)->click();
    EXPECT_TRUE(p.RfIsOn());
    QTest::keyClick(&box, Qt::Key_Escape);
    halted = p.shell.delay.HaltRequested();
  });
  Press(run, "cmdRun");
  EXPECT_TRUE(halted);
  EXPECT_FALSE(p.RfIsOn());
  EXPECT_EQ(run.Engine().Data().Entries().size(), 1u);
}

}  // namespace
}  // namespace hylden
