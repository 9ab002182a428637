// The bench panel among the program's windows, on the demo station.

#include "bench/qt/frmBench.h"

#include <filesystem>

#include "bench/BenchTexts.h"
#include "desktop/DemoWindows.h"
#include "documents/qt/frmEquipment.h"
#include "instruments/Instruments.h"
#include "shell/qt/WorkingForm.h"
#include "shell/qt/frmHelp.h"
#include "support/SilentRun.h"
#include "testrun/qt/frmRunTest.h"
#include "text/Pattern.h"

namespace hylden {
namespace {

class BenchPanel : public DemoWindowsTest {
 protected:
  void SetUp() override {
    m.LoadTest("substitution-am.tst");
    m.Start();
  }
  frmBench& Panel() {
    if (!OpenWindow<frmBench>()) m.desktop->ShowBenchPanel();
    OpenWindow<frmBench>()->Refresh();
    return *OpenWindow<frmBench>();
  }
  std::string Text(const char* label) { return TextOf(Panel(), label); }
  /// The demo station's generator, by its own commands.
  void Drive(double freqMHz, double levelDbm) {
    SigGen& generator = m.instruments.sigGen;
    ASSERT_TRUE(generator.InitSigGen(freqMHz, static_cast<float>(levelDbm)));
    ASSERT_TRUE(generator.RfOn());
  }
};

TEST_F(BenchPanel, ExistsAndIsAnnouncedOnlyWhereTheBenchDrivesTheProgram) {
  EXPECT_TRUE(Find<QLabel>(m.desktop->Menu(), "lblBench").isVisible());
  EXPECT_TRUE(Find<QAbstractButton>(m.desktop->Menu(), "cmdBench").isVisible());
  m.station.bench = nullptr;
  m.Start();
  EXPECT_FALSE(Find<QAbstractButton>(m.desktop->Menu(), "cmdBench").isVisible());
  EXPECT_EQ(m.desktop->Menu().findChild<QLabel*>("lblBench"), nullptr);
  m.desktop->ShowBenchPanel();
  EXPECT_EQ(OpenWindow<frmBench>(), nullptr);
}

TEST_F(BenchPanel, TheRunLogSaysOfEveryRunThatItIsSimulated) {
  m.directory.Write("Hylden.ini", "[System]\r\nLogToFile=1\r\n");
  const WorkingDirectory inDirectory(m.directory.Path());
  SilentRun run;
  ASSERT_TRUE(m.shell.ClaimInstruments(run));
  m.shell.ReleaseInstruments();
  EXPECT_EQ(m.directory.Read("runlog.hyl"), "01/05/26 09:00:00 - SIMULATED BENCH: no instrument is driven\r\n");
}

TEST_F(BenchPanel, OpensOnceFromTheMenuAndFromTheNoticeOfEveryForm) {
  Press(m.desktop->Menu(), "cmdBench");
  ASSERT_EQ(OpenWindows<frmBench>().size(), 1u);
  EXPECT_TRUE(Find<QLabel>(Panel(), "lblBench").isVisible());
  frmEquipment& form = *m.desktop->OpenEquipment(&m.desktop->Menu());
  EXPECT_TRUE(Find<QLabel>(form, "lblBench").isVisible());
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
  m.desktop->OpenTestRun(&m.desktop->Menu());
  frmRunTest& run = *OpenWindow<frmRunTest>();
  EXPECT_LE(Panel().minimumSizeHint().width() + run.minimumSizeHint().width(), 1024);
  EXPECT_LE(Panel().height(), 700);
  EXPECT_LE(Panel().minimumSizeHint().height(), Panel().height()) << "nothing is cut off";
}

TEST_F(BenchPanel, ShowsInstrumentsAndProduct) {
  m.bench.Connect(MeterAt::Probe);
  EXPECT_EQ(Text("lblRf"), "RF off");
  EXPECT_EQ(Text("lblProduct"), "Without RF");
  EXPECT_EQ(Text("lblTestLevel"), "--");
  EXPECT_EQ(Text("lblMeterReading"), "nothing yet");
  EXPECT_EQ(Text("lblLastDisturbance"), "never so far");
  Drive(12.5, -10);
  const BenchState& state = m.bench.State();
  EXPECT_EQ(Text("lblRf"), "RF ON");
  EXPECT_EQ(Text("lblFreq"), "12.5 MHz");
  EXPECT_EQ(Text("lblLevel"), "-10.0 dBm");
  EXPECT_EQ(Text("lblProduct"), "DISTURBED");
  EXPECT_EQ(Text("lblThreshold"), "138.0 dBuV peak");
  EXPECT_THAT(Text("lblMargin"), testing::EndsWith("above the threshold"));
  EXPECT_EQ(Text("lblTestLevel"), Format(state.TestLevelDbuv, "0.0") + " dBuV");
  EXPECT_EQ(Text("lblTestLevelVolts"), Format(Conversions::DbuvToVolts(state.TestLevelDbuv), "0.00#") + " V");
  EXPECT_EQ(Text("lblForwardWatts"), Format(Conversions::DbmToWatts(state.ForwardDbm), "0.00#") + " W");
  EXPECT_EQ(Text("lblReverse"), Format(state.ReverseDbm, "0.0") + " dBm");
  EXPECT_EQ(Text("lblCurrent"), Format(state.InducedDbua, "0.0") + " dBuA");
}

TEST_F(BenchPanel, SurvivesAnotherStationAndFollowsIt) {
  Drive(12.5, -20);
  EXPECT_EQ(Text("lblRf"), "RF ON");
  m.bench.Equip(BenchEquipment{});
  EXPECT_EQ(Text("lblRf"), "RF off");
  EXPECT_EQ(Text("lblGenerator"), "not on the bus");
  for (const char* figure : {"lblFreq", "lblThreshold"}) EXPECT_EQ(Text(figure), "--");
  m.station.EquipBench();
  EXPECT_THAT(Text("lblGenerator"), testing::StartsWith("Address 18"));
}

TEST_F(BenchPanel, CablesTheMeterAndShowsHowItIsCabled) {
  const std::pair<const char*, MeterAt> places[] = {{"optProbe", MeterAt::Probe},
                                                    {"optGenerator", MeterAt::Generator},
                                                    {"optCable", MeterAt::Cable},
                                                    {"optPort", MeterAt::Port}};
  for (const auto& [button, place] : places) {
    QTest::mouseClick(&Find<QRadioButton>(Panel(), button), Qt::LeftButton);
    EXPECT_EQ(m.Cabled(), place) << button;
    EXPECT_EQ(Text("lblCabling"), CablingText(place));
  }
  for (const auto& [button, place] : places) {
    m.bench.Connect(place);
    EXPECT_TRUE(Find<QRadioButton>(Panel(), button).isChecked()) << button;
  }
}

TEST_F(BenchPanel, RunsCableTheBenchUnlessTheOperatorDoes) {
  m.bench.Connect(MeterAt::Cable);
  m.desktop->OpenTestRun(&m.desktop->Menu());
  EXPECT_EQ(m.Cabled(), MeterAt::Probe) << "the panel was never opened";
  OpenWindow<frmRunTest>()->close();
  m.desktop->OpenCalibrationRun(&m.desktop->Menu());
  EXPECT_EQ(m.Cabled(), MeterAt::Port);
  OpenWindow<WorkingForm>()->close();
  Find<QCheckBox>(Panel(), "chkCables").click();
  Press(Panel(), "cmdClose");
  m.desktop->OpenTestRun(&m.desktop->Menu());
  EXPECT_EQ(m.Cabled(), MeterAt::Port) << "the choice stands when the panel is closed";
}

TEST_F(BenchPanel, EscapeClosesItButHaltsARun) {
  m.desktop->OpenTestRun(&m.desktop->Menu());
  QTest::keyClick(&Find<QRadioButton>(Panel(), "optPort"), Qt::Key_Escape);
  EXPECT_EQ(OpenWindow<frmBench>(), nullptr) << "the run has not begun";
  QSignalSpy halts(m.desktop.get(), &Desktop::EscapePressed);
  SilentRun run;
  ASSERT_TRUE(m.shell.ClaimInstruments(run));
  QTest::keyClick(&Panel(), Qt::Key_Escape);
  m.shell.ReleaseInstruments();
  EXPECT_EQ(halts.count(), 1);
  EXPECT_EQ(OpenWindows<frmBench>().size(), 1u);
}

TEST_F(BenchPanel, CablesBesideAModalForm) {
  frmEquipment& form = *m.desktop->OpenEquipment(&m.desktop->Menu(), 0, true);
  Choose(form, "mnuBench");
  const auto click = [this](const char* button) {
    ClickOnScreen(Panel(), button);
    return m.Cabled();
  };
  EXPECT_EQ(click("optCable"), MeterAt::Cable);
  form.close();
  QCoreApplication::processEvents();
  EXPECT_EQ(click("optProbe"), MeterAt::Probe) << "the form is gone";
  m.desktop->OpenEquipment(&m.desktop->Menu(), 0, true);
  EXPECT_EQ(click("optGenerator"), MeterAt::Generator) << "the panel was there before the form";
}

TEST_F(BenchPanel, F1OpensItsChapterOfTheManual) {
  std::filesystem::copy_file(HYLDEN_SOURCE_DIR "/help/hylden.md", m.directory.File("hylden.hlp"));
  m.desktop->Start("");
  QTest::keyClick(&Panel(), Qt::Key_F1);
  ASSERT_EQ(OpenWindows<frmHelp>().size(), 1u);
  const QTextCursor place = Find<QTextBrowser>(*OpenWindow<frmHelp>(), "txtHelp").textCursor();
  EXPECT_EQ(place.block().text().toStdString(), "The bench panel");
}

}  // namespace
}  // namespace hylden
