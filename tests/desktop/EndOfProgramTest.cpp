// The end of the program, asked for while its windows are busy: boxes give way, RF goes off, and no window closes under
// a command of its own; a window that stays open refuses the end.

#include <gmock/gmock.h>

#include <QDialog>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <csignal>

#include "app/Desktop.h"
#include "calibration/qt/frmCblSetup.h"
#include "calibration/qt/frmRunCal.h"
#include "desktop/RunForms.h"
#include "documents/qt/frmCalSetup.h"
#include "documents/qt/frmEquipment.h"
#include "documents/qt/frmTestDef.h"
#include "platform/qt/EndSignals.h"
#include "platform/qt/QtDialogs.h"
#include "shell/qt/TopMenu.h"

namespace hylden {
namespace {

/// The demo station's program on the bench, with one window of its own open.
class Program {
 public:
  explicit Program(Dialogs& dialogs, std::function<void()> clearBoxes = {}) : m(dialogs) {
    DesktopOptions options;
    options.onEnding = std::move(clearBoxes);
    desktop = std::make_unique<Desktop>(m.station, options);
    QObject::connect(desktop.get(), &Desktop::Ended, [this] { ++ended; });
    EXPECT_TRUE(desktop->Start("\"/e:station.eqp\""));
    m.LoadTest("substitution-am.tst");
    EXPECT_TRUE(m.station.documents.calSetup.LoadDef("cdn-10v.csu"));
    CalSetupRecord& setup = m.station.documents.calSetup.Record;
    setup.StartFreq = 1, setup.StopFreq = 3, setup.StepType = StepType::Linear;
    m.station.documents.calSetup.Saved = setup;
  }
  ~Program() {
    desktop.reset();
    Turn();
  }
  static void Turn() {
    for (int i = 0; i < 20; ++i) {
      QCoreApplication::processEvents();
      QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
  }
  EndOfProgram::State End() const { return m.station.shell.end.Now(); }
  bool RfIsOn() { return m.bench.State().Generator.RfOn; }
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

  BenchMachine m;
  std::unique_ptr<Desktop> desktop;
  int ended = 0;
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
  Program p(dialogs, [&] { dialogs.CloseBoxes(); });
  dialogs.isEnding = [&] { return p.m.station.shell.end.IsAsked(); };
  std::vector<std::string> boxes;
  QPointer<QWidget> last;
  QTimer someone;
  QObject::connect(&someone, &QTimer::timeout, &someone, [&] {
    auto* const box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!box || box == last) return;
    last = box;
    boxes.push_back(box->windowTitle().toStdString());
    if (boxes.size() == 1) return p.desktop->CloseAll();
    auto* const question = qobject_cast<QMessageBox*>(box);
    QAbstractButton* const no = question ? question->button(QMessageBox::No) : nullptr;
    no ? no->click() : box->reject();
  });
  someone.start(0);
  GetParam().act(p);
  Program::Turn();
  EXPECT_EQ(boxes, GetParam().boxes);
  EXPECT_EQ(p.ended, 1);
  EXPECT_EQ(OpenWindow<QWidget>(), nullptr);
  EXPECT_FALSE(p.RfIsOn());
}

INSTANTIATE_TEST_SUITE_P(
    , EndUnderABox,
    testing::Values(
        BoxCase{"equipment_closing",
                [](Program& p) {
                  frmEquipment& form = p.Equipment();
                  Type(form, "txtSigGenAddr", "9");
                  form.close();
                },
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
        BoxCase{"test_definition_closing",
                [](Program& p) {
                  frmTestDef& form = p.TestDefinitionForm();
                  Type(form, "txtStartFreq", "9");
                  form.close();
                },
                {"Save Test Definition", "Save Test Definition"}},
        BoxCase{"test_definition_start_without_its_station",
                [](Program& p) {
                  p.m.station.documents.equip.Record.SigGenFile.clear();
                  p.m.station.documents.equip.Saved = p.m.station.documents.equip.Record;
                  Press(p.TestDefinitionForm(), "cmdStart");
                },
                {"Hylden"}},
        BoxCase{"calibration_setup_closing",
                [](Program& p) {
                  p.desktop->OpenCalibrationSetup();
                  Type(*OpenWindow<frmCalSetup>(), "txtStartFreq", "2");
                  OpenWindow<frmCalSetup>()->close();
                },
                {"Save Calibration Setup", "Save Calibration Setup"}},
        BoxCase{"cable_setup_list",
                [](Program& p) {
                  p.desktop->OpenCableSetup(&p.desktop->Menu());
                  Press(*OpenWindow<frmCblSetup>(), "cmdListFile");
                },
                {"Select frequency list file"}},
        BoxCase{"test_run_confirmation", [](Program& p) { Press(p.TestRun(), "cmdRun"); }, {"MAKE SURE!!!"}},
        BoxCase{"about", [](Program& p) { Choose(p.Equipment(), "mnuHelpAbout"); }, {"About Hylden"}}),
    [](const auto& row) { return std::string(row.param.name); });

class EndOfTheProgram : public testing::Test {
 protected:
  FakeDialogs dialogs;
  Program p{dialogs};
};

TEST_F(EndOfTheProgram, ComesBehindACommandNotBetweenItsBoxes) {
  const QPointer<frmEquipment> form = &p.Equipment();
  Type(*form, "txtSigGenAddr", "9");
  for (int i = 0; i < 2; ++i) dialogs.Answer(i == 0 ? MessageAnswer::No : MessageAnswer::Ok);
  dialogs.Answer(MessageAnswer::No);
  std::size_t boxes = 0;
  dialogs.onShow = [&](const Message&) {
    if (++boxes == 1) p.desktop->CloseAll();
    Program::Turn();
    ASSERT_TRUE(form && form->isVisible()) << boxes;
  };
  form->LoadFile(QString::fromStdString(p.m.directory.Write("half.eqp", "other.sg\r\n 3 \r\n")));
  EXPECT_EQ(boxes, 2U) << "the question, and what is wrong with the file";
  Program::Turn();
  EXPECT_EQ(boxes, 3U) << "the question of the end";
  EXPECT_EQ(p.ended, 1);
}

TEST_F(EndOfTheProgram, StartsNothingThatIsConfirmedMeanwhile) {
  frmRunTest& form = p.TestRun();
  const int calls = p.m.driver.Calls();
  dialogs.onShow = [&](const Message& message) {
    if (message.title == "MAKE SURE!!!") p.desktop->CloseAll();
  };
  Press(form, "cmdRun");  // OK
  EXPECT_EQ(form.Engine().Outcome(), RunOutcome::NotRun);
  EXPECT_EQ(p.m.driver.Calls(), calls) << "the bus was touched";
  Press(form, "cmdRun");
  EXPECT_EQ(dialogs.messages.size(), 1U);
  Press(p.desktop->Menu(), "cmdConfigSys");
  EXPECT_EQ(OpenWindow<frmEquipment>(), nullptr);
  Program::Turn();
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
    p.m.When([&] { return p.RfIsOn() && TextOf(form, "lblStep").ends_with("2"); },
             [&] {
               p.desktop->CloseAll();
               EXPECT_FALSE(p.RfIsOn());
             });
    Press(form, GetParam().start);
    EXPECT_EQ(p.m.ActionsLeft(), 0U);
    Program::Turn();
  }
};

TEST_P(EndInARun, IsRefusedByASaveThatIsCancelledAndTheProgramRunsAsBefore) {
  RunAndEndIt();
  ASSERT_EQ(p.End(), EndOfProgram::State::Refused);
  WorkingForm& form = *OpenWindow<WorkingForm>();
  EXPECT_EQ(dialogs.LastText(),
            "The program was asked to end, but this window stays open:\r\n" + form.windowTitle().toStdString());
  dialogs.Answer(MessageAnswer::No);  // the rows may go
  bool again = false;
  p.m.When([&] { return p.RfIsOn(); },
           [&] {
             again = true;
             emit p.desktop->EscapePressed();
           });
  Press(form, GetParam().start);
  EXPECT_TRUE(again);
  // A save that was missed before is asked about again.
  dialogs.Answer(MessageAnswer::Ok);
  dialogs.Answer(MessageAnswer::No);
  dialogs.onShow = [&](const Message& message) {
    if (message.text == "Busy") p.desktop->CloseAll();
  };
  form.Guard("cmdX", [&] { dialogs.Tell("Busy"); });
  Program::Turn();
  EXPECT_EQ(p.ended, 1);
}

TEST_P(EndInARun, ClosesEveryWindowWhenTheDataAreNotToBeSaved) {
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

class SignalInARun : public EndOfTheProgram, public testing::WithParamInterface<int> {};

TEST_P(SignalInARun, EndsOnlyInOrderWithRfOffOrNotAtAll) {
  const bool stops = GetParam() == SIGHUP || GetParam() == SIGQUIT || GetParam() == SIGPWR || GetParam() == SIGTERM;
  const EndSignals watch([this] { p.desktop->CloseAll(); });
  frmRunTest& form = p.TestRun();
  dialogs.AnswerSave(p.m.directory.File("kept.run"));
  p.m.When([&] { return TextOf(form, "lblStep") == "Step# 3" && p.RfIsOn(); }, [] { raise(GetParam()); });
  p.m.When([] { return true; },
           [&] {
             EXPECT_EQ(p.RfIsOn(), !stops) << "at once";
             EXPECT_EQ(p.m.station.shell.delay.HaltRequested(), stops);
             form.PressHalt();
           });
  Press(form, "cmdRun");
  EXPECT_EQ(p.m.ActionsLeft(), 0U);
  Program::Turn();
  EXPECT_FALSE(p.RfIsOn());
  EXPECT_TRUE(p.m.directory.Exists("kept.run"));
  EXPECT_EQ(p.ended, stops ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(, SignalInARun,
                         testing::Values(SIGHUP, SIGQUIT, SIGPWR, SIGTERM, SIGTSTP, SIGPIPE, SIGUSR1, SIGALRM, SIGIO,
                                         SIGXFSZ),
                         [](const auto& row) { return std::string(sigabbrev_np(row.param)); });

TEST_F(EndOfTheProgram, AskedForInABoxOfAWindowThatOpensLeavesItShut) {
  p.m.station.documents.calSetup.Record.CouplingMethod = CouplingMethod{9};
  dialogs.onShow = [&](const Message&) {
    p.desktop->CloseAll();
    Program::Turn();
  };
  p.desktop->OpenCalibrationSetup();
  Program::Turn();
  EXPECT_FALSE(dialogs.messages.empty());
  EXPECT_EQ(OpenWindow<QWidget>(), nullptr);
  EXPECT_EQ(p.ended, 1);
}

TEST_F(EndOfTheProgram, CommandThatFailsIsReportedWhereverItWasStarted) {
  struct Failing : WorkingForm {
    using WorkingForm::WorkingForm;
    bool QueryUnload() override { throw RuntimeError(ErrorNumber::DiskFull); }
  };
  auto* const form = new Failing(p.m.station.shell);
  form->setObjectName("frmX");
  p.desktop->Open(form, &p.desktop->Menu());
  form->Guard("cmdY", [] { throw std::logic_error("never"); });
  EXPECT_EQ(dialogs.LastText(), "Error # 51\rInternal error\rfrmX.cmdY\r");
  EXPECT_FALSE(form->close());
  EXPECT_TRUE(dialogs.LastText().starts_with("Error # 61\r")) << dialogs.LastText();
  EXPECT_FALSE(form->IsBusy());
}

}  // namespace
}  // namespace hylden
