// The calibrations among the program's windows: from the main menu to their files and back, and the end of the program
// in the middle of them.

#include <gmock/gmock.h>

#include <QSignalSpy>
#include <filesystem>

#include "app/Desktop.h"
#include "calibration/qt/frmCblSetup.h"
#include "calibration/qt/frmRunCablCal.h"
#include "calibration/qt/frmRunCal.h"
#include "desktop/RunForms.h"
#include "documents/qt/frmCalSetup.h"
#include "documents/qt/frmEquipment.h"
#include "shell/qt/TopMenu.h"
#include "shell/qt/frmHelp.h"
#include "support/ReadLines.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

class CalibrationDesktop : public testing::Test {
 protected:
  void SetUp() override {
    desktop = std::make_unique<Desktop>(m.station);
    ASSERT_TRUE(desktop->Start("\"/e:station.eqp\""));
    ASSERT_TRUE(m.station.documents.calSetup.LoadDef("cdn-10v.csu"));
    CalSetupRecord& setup = m.station.documents.calSetup.Record;
    setup.StartFreq = 1, setup.StopFreq = 3, setup.StepType = StepType::Linear;
  }
  void TearDown() override {
    desktop.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  /// The form that is opened next by a click.
  template <class Form>
  Form& Opened() {
    QCoreApplication::processEvents();
    Form* const form = OpenWindow<Form>();
    if (!form) throw std::runtime_error("no window opened");
    return *form;
  }
  bool RfIsOn() { return m.bench.State().Generator.RfOn; }
  MeterAt Cabled() { return m.bench.State().Cabling.Meter; }

  FakeDialogs dialogs;
  BenchMachine m{dialogs};
  std::unique_ptr<Desktop> desktop;
};

TEST_F(CalibrationDesktop, MainMenuLeadsToARecordAndBack) {
  m.bench.Connect(MeterAt::Generator);
  desktop->OpenCalibrationSetup();
  Press(Opened<frmCalSetup>(), "cmdStart");
  auto& run = Opened<frmRunCal>();
  EXPECT_EQ(OpenWindow<frmCalSetup>(), nullptr);
  EXPECT_EQ(Cabled(), MeterAt::Port);
  EXPECT_TRUE(Find<QLabel>(run, "lblBench").isVisible());
  dialogs.AnswerSave(m.directory.File("whole.cal"));
  Press(run, "cmdStart");
  EXPECT_EQ(ReadLines(m.directory.File("whole.cal")).size(), 3U);
  Press(run, "cmdExit");
  Press(Opened<frmCalSetup>(), "cmdExit");
  QCoreApplication::processEvents();
  EXPECT_TRUE(desktop->Menu().isVisible());
}

TEST_F(CalibrationDesktop, MissingCableLossIsMeasuredFromTheModalEquipmentForm) {
  m.station.documents.equip.Record.CableLossFile.clear();
  desktop->OpenCalibrationSetup();
  auto& setup = Opened<frmCalSetup>();
  Press(setup, "cmdStart");
  EXPECT_EQ(dialogs.LastText(), "No cable loss file has been selected");
  auto& equipment = Opened<frmEquipment>();
  EXPECT_EQ(QApplication::activeModalWidget(), &equipment);
  Choose(equipment, "mnuUtilInsertLoss");
  auto& cable = Opened<frmCblSetup>();
  EXPECT_EQ(QApplication::activeModalWidget(), &cable);
  Type(cable, "txtStartFreq", "1");
  Type(cable, "txtStopFreq", "2");
  Type(cable, "txtLogStep", "50");
  Press(cable, "cmdStart");
  auto& passes = Opened<frmRunCablCal>();
  // The calibration setup behind it could start a second run on the same generator.
  EXPECT_EQ(QApplication::activeModalWidget(), &passes);
  Press(passes, "cmdDirect");
  EXPECT_EQ(Cabled(), MeterAt::Generator);
  Press(passes, "cmdInsert");
  EXPECT_EQ(Cabled(), MeterAt::Cable);
  dialogs.AnswerSave(m.directory.File("cable.los"));
  Press(passes, "cmdSave");
  EXPECT_EQ(ReadLines(m.directory.File("cable.los")).size(), 15U);
  Press(passes, "cmdExit");
  Press(Opened<frmCblSetup>(), "cmdExit");
  EXPECT_EQ(&Opened<frmEquipment>(), &equipment);
  EXPECT_EQ(QApplication::activeModalWidget(), &equipment);
}

/// What the operator can do with the manual open beside a cable pass in a modal window, with RF on.
struct HaltCase {
  const char* name;
  void (*halt)(frmRunCablCal& passes, frmHelp& help);
};
class HelpBesideAModalRun : public CalibrationDesktop, public testing::WithParamInterface<HaltCase> {};

TEST_P(HelpBesideAModalRun, LeavesHaltInReach) {
  std::filesystem::copy_file(HYLDEN_SOURCE_DIR "/help/hylden.md", m.directory.File("hylden.hlp"));
  frmEquipment& equipment = *desktop->OpenEquipment(&desktop->Menu(), 0, true);
  Choose(equipment, "mnuUtilInsertLoss");
  auto& cable = Opened<frmCblSetup>();
  Type(cable, "txtStartFreq", "1");
  Type(cable, "txtStopFreq", "2");
  Press(cable, "cmdStart");
  auto& passes = Opened<frmRunCablCal>();
  ASSERT_EQ(QApplication::activeModalWidget(), &passes);
  m.When([&] { return RfIsOn(); }, [&] { QTest::keyClick(passes.windowHandle(), Qt::Key_F1); });
  m.When([&] { return true; }, [&] { GetParam().halt(passes, Opened<frmHelp>()); });
  m.When([&] { return !m.station.shell.delay.HaltRequested(); }, [] { FAIL() << "it was not halted"; });
  Press(passes, "cmdDirect");
  EXPECT_FALSE(RfIsOn());
  EXPECT_EQ(m.ActionsLeft(), 1U);
  passes.close();
  Opened<frmCblSetup>().close();
  Opened<frmEquipment>().close();
  QCoreApplication::processEvents();
  ClickOnScreen(desktop->Menu(), "cmdConfigSys");
  EXPECT_NE(OpenWindow<frmEquipment>(), nullptr) << "the manual locks nothing";
  QTest::keyClick(Opened<frmHelp>().windowHandle(), Qt::Key_Escape);
  EXPECT_EQ(OpenWindow<frmHelp>(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    , HelpBesideAModalRun,
    testing::Values(HaltCase{"button", [](frmRunCablCal& passes, frmHelp&) { ClickOnScreen(passes, "cmdHalt"); }},
                    HaltCase{"escape", [](frmRunCablCal& passes,
                                          frmHelp&) { QTest::keyClick(passes.windowHandle(), Qt::Key_Escape); }}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(CalibrationDesktop, EscapeInTheManualLeavesItsSearchAndThenTheManualButNotTheRun) {
  std::filesystem::copy_file(HYLDEN_SOURCE_DIR "/help/hylden.md", m.directory.File("hylden.hlp"));
  desktop->OpenCalibrationSetup();
  Press(Opened<frmCalSetup>(), "cmdStart");
  auto& run = Opened<frmRunCal>();
  m.When([&] { return RfIsOn(); }, [&] { QTest::keyClick(&run, Qt::Key_F1); });
  m.When([&] { return OpenWindow<frmHelp>() != nullptr; },
         [&] {
           auto& manual = Opened<frmHelp>();
           auto& search = Find<QLineEdit>(manual, "txtSearch");
           search.setFocus();
           QTest::keyClicks(&search, "halt");
           QTest::keyClick(&search, Qt::Key_Escape);
           EXPECT_TRUE(search.text().isEmpty() && manual.isVisible());
           QTest::keyClick(&manual, Qt::Key_Escape);
           EXPECT_FALSE(manual.isVisible());
           EXPECT_FALSE(m.station.shell.delay.HaltRequested());
           run.PressHalt();
         });
  Press(run, "cmdStart");
  EXPECT_EQ(m.ActionsLeft(), 0U);
}

}  // namespace
}  // namespace hylden
