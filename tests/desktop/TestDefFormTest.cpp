#include "desktop/TestDefForm.h"
#include "support/SameRecord.h"

namespace hylden {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Strings = std::vector<std::string>;

constexpr char kNotANumber[] = "Value not a number, re-enter";
constexpr char kOutOfRange[] = "Number outside valid range, re-enter";

TEST_F(TestDefForm, ShowsAndFillsEachFieldByItsControl) {
  TestDefinition other = GoodDefinition(t.directory);
  other.FreqSweep = other.ConstPeak = other.ModOffBetweenFreqs = other.UseAMdepth = false;
  other.Extrapolate = other.LimitCurrent = false;
  other.StepType = StepType::Linear;  // kept only while the sweep is on
  other.ModType = Modulation::Fm, other.LevelingMethod = LevelingMethod::ForwardPower,
  other.LevelingMode = LevelingMode::Substitution;
  TestDefinition third = other;
  third.FreqSweep = true, third.FreqList = false;
  third.ModType = Modulation::Pulse, third.LevelingMethod = LevelingMethod::SigGen,
  third.ModOffBetweenFreqs = third.LimitCurrent = true;
  TestDefinition plain = third;
  plain.ModType = Modulation::None;
  for (const TestDefinition& shown : {GoodDefinition(t.directory), other, third, plain}) {
    t.dialogs.Clear();
    test() = shown;
    Open();
    test() = {};
    EXPECT_TRUE(form().FormToDef());
    EXPECT_TRUE(SameRecord(test(), shown));
    EXPECT_THAT(t.dialogs.Texts(), IsEmpty());
  }
}

TEST_F(TestDefForm, SelectsNothingForACodeThatNoOptionStandsFor) {
  test().StepType = static_cast<StepType>(5), test().ModType = static_cast<Modulation>(9),
  test().LevelingMethod = static_cast<LevelingMethod>(7), test().LevelingMode = static_cast<LevelingMode>(4);
  for (const char* option : {"optLinStep", "optLogStep", "optNoMod", "optAMMod", "optFMMod", "optPulseMod",
                             "optSigGenLevel", "optUseFwdPwr", "optNetPwrLev", "optRealTimeLevel"})
    EXPECT_FALSE(Ticked(option)) << option;
  EXPECT_TRUE(Ticked("optSubstitution"));
  Press("optFMMod");
  Press("optPulseMod");
  EXPECT_FALSE(Ticked("optFMMod"));
}

TEST_F(TestDefForm, ShowsTheCalibrationOfTheTest) {
  EXPECT_EQ(Text("lblCalDescription"), "Setup <b>1</b>");
  EXPECT_EQ(Find<QLabel>("lblCalDescription").textFormat(), Qt::PlainText);
  EXPECT_EQ(Text("lblAmplifier"), "Amp");
  EXPECT_EQ(Text("lblCouplingMethod"), "CDN");
  EXPECT_EQ(Path("lblCalLevel"), "10v");
  EXPECT_EQ(Text("lblCalFreqRange"), "0.15 - 230");
  EXPECT_EQ(Path("lblCalFileName"), test().CalInfoFile);
}

struct BoxCase {
  const char* box;
  int tab;
  std::function<void(TestDefinition&)> prepare;
  Strings outOfRange;
};

class TestDefBox : public TestDefForm, public testing::WithParamInterface<BoxCase> {
 protected:
  void ExpectPrompt(const std::string& typed, const char* prompt) {
    SCOPED_TRACE(typed);
    const BoxCase& c = GetParam();
    Find<QTabWidget>("tabSetup").setCurrentIndex((c.tab + 1) % 4);
    Type(c.box, typed);
    EXPECT_THAT(Told("cmdStart"), ElementsAre(prompt));
    EXPECT_EQ(t.dialogs.messages.back().buttons, MessageButtons::RetryCancel);
    EXPECT_EQ(Tab(), c.tab);
    EXPECT_EQ(form().focusWidget(), &Box(c.box));
    EXPECT_EQ(FromQt(Box(c.box).selectedText()), typed);
    EXPECT_EQ(requests().starts, 0);
  }
};

TEST_P(TestDefBox, StartsNoTestWithABadEntryAndShowsItsBox) {
  const BoxCase& c = GetParam();
  if (c.prepare) c.prepare(test());
  Open();
  for (const char* text : {"", "abc", "1.2.3", "5 V", "0.5,5", "0,15", "1,000", "1e400", "--1"})
    ExpectPrompt(text, kNotANumber);
  for (const std::string& text : c.outOfRange) ExpectPrompt(text, kOutOfRange);
}

const auto kLinear = [](TestDefinition& d) { d.StepType = StepType::Linear; };
const auto kFm = [](TestDefinition& d) { d.ModType = Modulation::Fm; };
const auto kPulse = [](TestDefinition& d) { d.ModType = Modulation::Pulse; };

INSTANTIATE_TEST_SUITE_P(
    Boxes, TestDefBox,
    testing::Values(
        BoxCase{"txtStartFreq", 0, {}, {"0", "-1", "-1e5"}}, BoxCase{"txtStopFreq", 0, {}, {"0.2", "2E-1", "0", "-80"}},
        BoxCase{"txtLinearStep", 0, kLinear, {"0", "-0.1"}}, BoxCase{"txtLogStep", 0, {}, {"0", "-1"}},
        BoxCase{"txtSweepDwell", 0, {}, {"-0.001", "-1000"}}, BoxCase{"txtDiscreteDwell", 0, {}, {"-1"}},
        BoxCase{"txtAmDepth", 1, {}, {"0", "100.5", "-1", "1e39"}}, BoxCase{"txtAmModFreq", 1, {}, {"0", "-1"}},
        BoxCase{"txtFmDev", 1, kFm, {"0", "-1"}}, BoxCase{"txtFmModFreq", 1, kFm, {"0", "-1", "1e39"}},
        BoxCase{"txtPulseWidth", 1, kPulse, {"0", "-1"}}, BoxCase{"txtPulsePeriod", 1, kPulse, {"0", "-1"}},
        BoxCase{"txtExtrapolateTo", 2, {}, {"0", "3"}}, BoxCase{"txtInitLevOffset", 3, {}, {"1e39", "-1e39"}},
        BoxCase{"txtLevelInc", 3, {}, {"0", "1e39"}}, BoxCase{"txtInterDwell", 3, {}, {"-0.1"}},
        BoxCase{"txtLimitMargin", 3, {}, {"1e39"}}, BoxCase{"txtEUTCircuitImpedance", 3, {}, {"-1"}}),
    [](const auto& row) { return std::string(row.param.box); });

TEST_F(TestDefForm, TakesANumberInAnotherSpelling) {
  Type("txtStopFreq", " +8E1 ");
  Type("txtSweepDwell", "1000");
  Type("txtAmDepth", "1d2");
  Type("txtInitLevOffset", "6");
  Type("txtLevelInc", "-2");
  EXPECT_TRUE(form().FormToDef()) << testing::PrintToString(t.dialogs.Texts());
  EXPECT_EQ(test().StopFreq, 80);
  EXPECT_EQ(test().SweepDwell, 1000);
  EXPECT_EQ(test().AmDepth, 100);
  EXPECT_EQ(test().InitLevOffset, -6);
  EXPECT_EQ(test().LevelInc, 2);
}

TEST_F(TestDefForm, TellsPulsesThatThePowerMeterAveragesAtTheirBox) {
  test().ModType = Modulation::Pulse, test().LevelingMethod = LevelingMethod::ForwardPower,
  test().ModOffBetweenFreqs = false;
  Open();
  Find<QTabWidget>("tabSetup").setCurrentIndex(3);
  EXPECT_THAT(Told("cmdStart"), ElementsAre(testing::StartsWith("The power meter reads the mean of a pulsed signal")));
  EXPECT_EQ(Tab(), 1);
  EXPECT_EQ(form().focusWidget(), &Find<QWidget>("chkModOffBetweenFreqs"));
  EXPECT_EQ(requests().starts, 0);
}

TEST_F(TestDefForm, ShowsTheTabOfARefusalWithoutABox) {
  struct Row {
    std::function<void()> change;
    const char* message;
    int tab;
  };
  const Row rows[] = {
      {[&] { documents.calInfo.Record.FreqRange = "80"; },
       "No start/stop frequencies in calibration file.\r\nTry checking calibration file data.", 2},
      {[&] { test().CalInfoFile.clear(); }, "No calibration setup file specified!", 2},
      {[&] { test() = {}, documents.calInfo.Record = {}; }, "No calibration setup file specified!", 2},
      {[&] { test().FreqSweep = test().FreqList = false; },
       "Either a swept frequency test or \r\na discrete frequency test must be specified", 0},
      {[&] { test().ListFile.clear(); }, "No frequency list file specified", 0},
  };
  const TestDefinition good = test();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.message);
    test() = good;
    documents.calInfo.Record.FreqRange = "0.15 - 230";
    row.change();
    Open();
    Find<QTabWidget>("tabSetup").setCurrentIndex(3);
    EXPECT_THAT(Told("cmdStart"), ElementsAre(row.message));
    EXPECT_EQ(t.dialogs.messages.back().buttons, MessageButtons::Ok);
    EXPECT_EQ(Tab(), row.tab);
    EXPECT_EQ(requests().starts, 0);
  }
}

TEST_F(TestDefForm, AnnouncesATestOutsideItsCalibration) {
  Type("txtStartFreq", "0.1");
  Type("txtStopFreq", "1e3");
  EXPECT_THAT(Told("cmdStart"),
              ElementsAre("Start frequency specified, 0.1 MHz, is less than the\r\nlowest frequency in the cal file, "
                          "0.15 MHz. \r\nTesting will not happen outside the cal file limits.",
                          "Stop frequency specified, 1000 MHz, is greater than the\r\nhighest frequency in the cal "
                          "file, 230 MHz. \r\nTesting will not happen outside the cal file limits."));
  EXPECT_EQ(Box("txtStartFreq").text(), "0.15");
  EXPECT_EQ(Box("txtStopFreq").text(), "230");
  EXPECT_EQ(test().StartFreq, 0.15);
  EXPECT_EQ(test().StopFreq, 230);
  EXPECT_EQ(requests().starts, 1);
}

TEST_F(TestDefForm, EnablesTheBoxesOfAModulation) {
  struct Row {
    const char* option;
    bool modOff, am, fm, pulse;
  };
  for (const Row& row : {Row{"optNoMod", false, false, false, false}, Row{"optFMMod", true, false, true, false},
                         Row{"optPulseMod", true, false, false, true}, Row{"optAMMod", true, true, false, false}}) {
    SCOPED_TRACE(row.option);
    Press(row.option);
    EXPECT_EQ(Enabled("chkModOffBetweenFreqs"), row.modOff);
    for (const char* name : {"chkConstPeak", "txtAmDepth", "txtAmModFreq", "chkUseAMdepth"})
      EXPECT_EQ(Enabled(name), row.am) << name;
    for (const char* name : {"txtFmDev", "txtFmModFreq"}) EXPECT_EQ(Enabled(name), row.fm) << name;
    for (const char* name : {"txtPulsePeriod", "txtPulseWidth"}) EXPECT_EQ(Enabled(name), row.pulse) << name;
  }
}

TEST_F(TestDefForm, DropsConstantPeakWithoutModulationOff) {
  Press("chkModOffBetweenFreqs");
  EXPECT_FALSE(Ticked("chkConstPeak"));
  EXPECT_FALSE(Enabled("chkUseAMdepth"));
  Press("chkConstPeak");
  EXPECT_TRUE(Ticked("chkModOffBetweenFreqs"));
  EXPECT_TRUE(Enabled("chkUseAMdepth"));
  Press("chkModOffBetweenFreqs");
  ASSERT_TRUE(form().FormToDef());
  EXPECT_FALSE(test().ConstPeak);
  EXPECT_FALSE(test().ModOffBetweenFreqs);
}

TEST_F(TestDefForm, DropsTheLimitWithTheProbe) {
  const Strings margin{"txtLimitMargin", "lblLimitMargin", "lblLimitMargin2"};
  const auto expect = [&](bool probe, bool limit) {
    EXPECT_EQ(Enabled("chkLimitCurrent"), probe);
    EXPECT_EQ(Enabled("txtEUTCircuitImpedance"), probe);
    for (const std::string& name : margin) EXPECT_EQ(Enabled(name.c_str()), limit) << name;
  };
  expect(true, true);
  Press("chkLimitCurrent");
  expect(true, false);
  Press("chkMonitorProbe");
  expect(false, false);
  Press("chkMonitorProbe");
  Press("chkLimitCurrent");
  expect(true, true);
}

TEST_F(TestDefForm, OpensTheEquipmentPageThatAnIncompleteStationLacks) {
  EquipRecord& equip = documents.equip.Record;
  equip.RevPortFile.clear();
  EXPECT_THAT(Told("cmdStart"), ElementsAre("No reverse coupler port file has been selected"));
  equip.AmpConfiguration = AmpConfig::Single;
  EXPECT_THAT(Told("cmdStart"),
              ElementsAre("A dual-channel power meter must be selected\r\nfor a net-power type test."));
  EXPECT_THAT(requests().equipmentTabs, ElementsAre(1, 0));
  EXPECT_EQ(requests().starts, 0);
  EXPECT_TRUE(form().isVisible());
  Press("optSigGenLevel");
  EXPECT_THAT(Told("cmdStart"), IsEmpty());
  EXPECT_EQ(requests().starts, 1);
}

TEST_F(TestDefForm, HasEachMnemonicOncePerPage) {
  ExpectMnemonicsApart(form());
  EXPECT_LT(form().minimumSizeHint().height(), 700);
}

}  // namespace
}  // namespace hylden
