// The bench panel among the program's windows, on the demo station.

#include "bench/qt/frmBench.h"

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTextBlock>
#include <QTextBrowser>
#include <filesystem>

#include "app/Desktop.h"
#include "bench/BenchTexts.h"
#include "desktop/RunForms.h"
#include "documents/qt/frmEquipment.h"
#include "instruments/Instruments.h"
#include "shell/qt/TopMenu.h"
#include "shell/qt/WorkingForm.h"
#include "shell/qt/frmHelp.h"
#include "support/SilentRun.h"
#include "text/Pattern.h"

namespace hylden {
namespace {

class BenchPanel : public testing::Test {
 protected:
  void SetUp() override {
    m.LoadStation();
    m.LoadTest("substitution-am.tst");
    Start(&m.bench);
  }
  void TearDown() override {
    desktop.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }

  void Start(Bench* bench) {
    desktop.reset();
    m.station.bench = bench;
    desktop = std::make_unique<Desktop>(m.station);
    desktop->Menu().show();
  }
  frmBench& Panel() {
    if (!OpenWindow<frmBench>()) desktop->ShowBenchPanel();
    OpenWindow<frmBench>()->Refresh();
    return *OpenWindow<frmBench>();
  }
  MeterAt Cabling() const { return m.bench.State().Cabling.Meter; }
  /// The demo station's generator, by its own commands.
  void Drive(double freqMHz, double levelDbm) {
    SigGen& generator = m.station.instruments.sigGen;
    ASSERT_TRUE(generator.InitSigGen(freqMHz, static_cast<float>(levelDbm)));
    ASSERT_TRUE(generator.RfOn());
  }

  FakeDialogs dialogs;
  BenchMachine m{dialogs};
  std::unique_ptr<Desktop> desktop;
};

TEST_F(BenchPanel, ExistsOnlyWhereTheBenchDrivesTheProgram) {
  EXPECT_TRUE(Find<QAbstractButton>(desktop->Menu(), "cmdBench").isVisible());
  Start(nullptr);
  EXPECT_FALSE(Find<QAbstractButton>(desktop->Menu(), "cmdBench").isVisible());
  desktop->ShowBenchPanel();
  EXPECT_EQ(OpenWindow<frmBench>(), nullptr);
}

TEST_F(BenchPanel, TheRunLogSaysOfEveryRunThatItIsSimulated) {
  m.directory.Write("Hylden.ini", "[System]\r\nLogToFile=1\r\n");
  const WorkingDirectory inDirectory(m.directory.Path());
  SilentRun run;
  ASSERT_TRUE(m.station.shell.ClaimInstruments(run));
  m.station.shell.ReleaseInstruments();
  EXPECT_EQ(m.directory.Read("runlog.hyl"), "01/05/26 09:00:00 - SIMULATED BENCH: no instrument is driven\r\n");
}

TEST_F(BenchPanel, OpensOnceFromTheMenuAndFromTheNoticeOfEveryForm) {
  Press(desktop->Menu(), "cmdBench");
  ASSERT_EQ(OpenWindows<frmBench>().size(), 1u);
  EXPECT_TRUE(Find<QLabel>(Panel(), "lblBench").isVisible());
  frmEquipment& form = *desktop->OpenEquipment(&desktop->Menu());
  Choose(form, "mnuBench");
  EXPECT_EQ(OpenWindows<frmBench>().size(), 1u);
  Press(Panel(), "cmdClose");
  EXPECT_EQ(OpenWindow<frmBench>(), nullptr);
  Choose(form, "mnuBench");
  EXPECT_EQ(OpenWindows<frmBench>().size(), 1u);
  EXPECT_TRUE(form.isVisible());
  form.close();
}

TEST_F(BenchPanel, FitsBesideARunWindowOnASmallScreen) {
  desktop->OpenTestRun(&desktop->Menu());
  frmRunTest& run = *OpenWindow<frmRunTest>();
  EXPECT_LE(Panel().minimumSizeHint().width() + run.minimumSizeHint().width(), 1024);
  EXPECT_LE(Panel().height(), 700);
  EXPECT_LE(Panel().minimumSizeHint().height(), Panel().height()) << "nothing is cut off";
}

TEST_F(BenchPanel, ShowsInstrumentsAndProduct) {
  m.bench.Connect(MeterAt::Probe);
  EXPECT_EQ(TextOf(Panel(), "lblRf"), "RF off");
  EXPECT_EQ(TextOf(Panel(), "lblProduct"), "Without RF");
  EXPECT_EQ(TextOf(Panel(), "lblTestLevel"), "--");
  EXPECT_EQ(TextOf(Panel(), "lblMeterReading"), "nothing yet");
  Drive(12.5, -20);
  EXPECT_EQ(TextOf(Panel(), "lblRf"), "RF ON");
  EXPECT_EQ(TextOf(Panel(), "lblFreq"), "12.5 MHz");
  EXPECT_EQ(TextOf(Panel(), "lblLevel"), "-20.0 dBm");
  EXPECT_EQ(TextOf(Panel(), "lblProduct"), "PASSES");
  EXPECT_EQ(TextOf(Panel(), "lblThreshold"), "138.0 dBuV peak");
  EXPECT_EQ(TextOf(Panel(), "lblLastDisturbance"), "never so far");
  Drive(12.5, -10);
  const BenchState& state = m.bench.State();
  EXPECT_EQ(TextOf(Panel(), "lblProduct"), "DISTURBED");
  EXPECT_THAT(TextOf(Panel(), "lblMargin"), testing::EndsWith("above the threshold"));
  EXPECT_EQ(TextOf(Panel(), "lblTestLevel"), Format(state.TestLevelDbuv, "0.0") + " dBuV");
  EXPECT_EQ(TextOf(Panel(), "lblTestLevelVolts"),
            Format(Conversions::DbuvToVolts(state.TestLevelDbuv), "0.00#") + " V");
  EXPECT_EQ(TextOf(Panel(), "lblForwardWatts"), Format(Conversions::DbmToWatts(state.ForwardDbm), "0.00#") + " W");
  EXPECT_EQ(TextOf(Panel(), "lblReverse"), Format(state.ReverseDbm, "0.0") + " dBm");
  EXPECT_EQ(TextOf(Panel(), "lblCurrent"), Format(state.InducedDbua, "0.0") + " dBuA");
}

TEST_F(BenchPanel, SurvivesAnotherStationAndFollowsIt) {
  Drive(12.5, -20);
  EXPECT_EQ(TextOf(Panel(), "lblRf"), "RF ON");
  m.bench.Equip(BenchEquipment{});
  EXPECT_EQ(TextOf(Panel(), "lblRf"), "RF off");
  EXPECT_EQ(TextOf(Panel(), "lblGenerator"), "not on the bus");
  EXPECT_EQ(TextOf(Panel(), "lblFreq"), "--");
  EXPECT_EQ(TextOf(Panel(), "lblThreshold"), "--");
  m.station.EquipBench();
  EXPECT_THAT(TextOf(Panel(), "lblGenerator"), testing::StartsWith("Address 18"));
}

TEST_F(BenchPanel, CablesTheMeterAndShowsHowItIsCabled) {
  const std::pair<const char*, MeterAt> places[] = {{"optProbe", MeterAt::Probe},
                                                    {"optGenerator", MeterAt::Generator},
                                                    {"optCable", MeterAt::Cable},
                                                    {"optPort", MeterAt::Port}};
  for (const auto& [button, place] : places) {
    QTest::mouseClick(&Find<QRadioButton>(Panel(), button), Qt::LeftButton);
    EXPECT_EQ(Cabling(), place) << button;
    EXPECT_EQ(TextOf(Panel(), "lblCabling"), CablingText(place));
  }
  for (const auto& [button, place] : places) {
    m.bench.Connect(place);
    EXPECT_TRUE(Find<QRadioButton>(Panel(), button).isChecked()) << button;
  }
}

TEST_F(BenchPanel, RunsCableTheBenchUnlessTheOperatorDoes) {
  m.bench.Connect(MeterAt::Cable);
  desktop->OpenTestRun(&desktop->Menu());
  EXPECT_EQ(Cabling(), MeterAt::Probe) << "the panel was never opened";
  OpenWindow<frmRunTest>()->close();
  desktop->OpenCalibrationRun(&desktop->Menu());
  EXPECT_EQ(Cabling(), MeterAt::Port);
  OpenWindow<WorkingForm>()->close();
  Find<QCheckBox>(Panel(), "chkCables").click();
  Press(Panel(), "cmdClose");
  desktop->OpenTestRun(&desktop->Menu());
  EXPECT_EQ(Cabling(), MeterAt::Port) << "the choice stands when the panel is closed";
}

TEST_F(BenchPanel, EscapeClosesItButHaltsARun) {
  desktop->OpenTestRun(&desktop->Menu());
  QTest::keyClick(&Find<QRadioButton>(Panel(), "optPort"), Qt::Key_Escape);
  EXPECT_EQ(OpenWindow<frmBench>(), nullptr) << "the run has not begun";
  QSignalSpy halts(desktop.get(), &Desktop::EscapePressed);
  SilentRun run;
  ASSERT_TRUE(m.station.shell.ClaimInstruments(run));
  QTest::keyClick(&Panel(), Qt::Key_Escape);
  m.station.shell.ReleaseInstruments();
  EXPECT_EQ(halts.count(), 1);
  EXPECT_EQ(OpenWindows<frmBench>().size(), 1u);
}

TEST_F(BenchPanel, CablesBesideAModalForm) {
  frmEquipment& form = *desktop->OpenEquipment(&desktop->Menu(), 0, true);
  Choose(form, "mnuBench");
  const auto click = [this](const char* button) {
    ClickOnScreen(Panel(), button);
    return Cabling();
  };
  EXPECT_EQ(click("optCable"), MeterAt::Cable);
  form.close();
  QCoreApplication::processEvents();
  EXPECT_EQ(click("optProbe"), MeterAt::Probe) << "the form is gone";
  desktop->OpenEquipment(&desktop->Menu(), 0, true);
  EXPECT_EQ(click("optGenerator"), MeterAt::Generator) << "the panel was there before the form";
}

TEST_F(BenchPanel, F1OpensItsChapterOfTheManual) {
  std::filesystem::copy_file(HYLDEN_SOURCE_DIR "/help/hylden.md", m.directory.File("hylden.hlp"));
  desktop->Start("");
  QTest::keyClick(&Panel(), Qt::Key_F1);
  ASSERT_EQ(OpenWindows<frmHelp>().size(), 1u);
  const QTextCursor place = Find<QTextBrowser>(*OpenWindow<frmHelp>(), "txtHelp").textCursor();
  EXPECT_EQ(place.block().text().toStdString(), "The bench panel");
}

TEST_F(BenchPanel, ClosesWithTheProgram) {
  QSignalSpy ended(desktop.get(), &Desktop::Ended);
  Panel();
  desktop->CloseAll();
  for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
  EXPECT_EQ(ended.count(), 1);
  EXPECT_EQ(OpenWindow<frmBench>(), nullptr);
}

}  // namespace
}  // namespace hylden
