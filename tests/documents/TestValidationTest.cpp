#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "documents/CalSetup.h"
#include "documents/TestSetup.h"
#include "support/FormTable.h"
#include "support/SameRecord.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

using Kind = EntryFailure::Kind;

constexpr const char* kRange = "0.15 - 230";

TestDefinition Good() {
  TestDefinition test;
  test.CalInfoFile = "cal.hyinfo";
  test.StartFreq = 0.15;
  test.StopFreq = 80;
  test.FreqSweep = true;
  test.StepType = StepType::Log;
  test.LogStep = 1;
  test.ListFile = "x.lst";
  return test;
}

FormEntries GoodEntries() {
  return EntriesShowing(Good());
}

std::optional<EntryFailure> Take(FormEntries& entries, TestDefinition& test) {
  return ValidateTestDefinition(entries, kRange, test).Failure;
}

std::optional<EntryFailure> Validate(FormEntries& entries) {
  TestDefinition test;
  return Take(entries, test);
}

void Am(TestDefinition& test) {
  test.ModType = Modulation::Am;
  test.AmDepth = test.AmModFreq = 1;
}
void Fm(TestDefinition& test) {
  test.ModType = Modulation::Fm;
  test.FmDev = test.FmModFreq = 1;
}
void Pulse(TestDefinition& test) {
  test.ModType = Modulation::Pulse;
  test.PulsePeriod = test.PulseWidth = 1;
}
void Probe(TestDefinition& test) {
  test.MonitorProbe = true;
}

TEST(TestValidationTest, RefusesABadEntryAtItsBox) {
  constexpr Refusal<TestDefinition> refusals[] = {
      {{}, "txtStartFreq", "0"},
      {{}, "txtStopFreq", ".15"},
      {[](auto& t) { t.StopFreq = 400; }, "txtStartFreq", "300"},
      {[](auto& t) { t.StepType = StepType::Linear; }, "txtLinearStep", "0"},
      {{}, "txtLogStep", "-1"},
      {{}, "txtSweepDwell", "-1"},
      {[](auto& t) { t.FreqList = true; }, "txtDiscreteDwell", "-1"},
      {Am, "txtAmDepth", "0"},
      {Am, "txtAmDepth", "100.5"},
      {Am, "txtAmModFreq", "0"},
      {Fm, "txtFmDev", "0"},
      {Fm, "txtFmModFreq", "0"},
      {Pulse, "txtPulsePeriod", "0"},
      {Pulse, "txtPulseWidth", "0"},
      {{}, "txtFmDev", "1E39"},
      {[](auto& t) { t.InitLevOffset = -6, t.LevelInc = 1; }, "txtLevelInc", "0"},
      {[](auto& t) { t.Extrapolate = true; }, "txtExtrapolateTo", "0"},
      {{}, "txtInterDwell", "-.1"},
      {Probe, "txtEUTCircuitImpedance", "-1"},
  };
  ExpectRefused(refusals, Good(), Validate);
  FormEntries entries = GoodEntries();
  entries["txtLimitMargin"] = entries["txtAmDepth"] = "x";
  EXPECT_EQ(Validate(entries)->Control, "txtAmDepth") << "in the form's order";
}

TEST(TestValidationTest, TellsTheRangeOfTheBoxThatItRefuses) {
  const struct {
    const char *control, *text, *range;
  } rows[] = {{"txtStartFreq", "x", "above 0, below 80 MHz"},
              {"txtStopFreq", "0.1", "above 0.15 MHz"},
              {"txtAmDepth", "101", "above 0, at most 100 %"},
              {"txtInterDwell", "-1", "at least 0 s"},
              {"txtLimitMargin", "x", ""}};
  for (const auto& row : rows) {
    TestDefinition test = Good();
    Am(test);
    FormEntries entries = EntriesShowing(test);
    entries[row.control] = row.text;
    EXPECT_EQ(Take(entries, test)->Range, row.range) << row.control;
  }
}

TEST(TestValidationTest, AnEntryDoesNotComeBackOrIsNoNumber) {
  for (const auto change : {Am, Fm, Pulse, Probe}) {
    TestDefinition test = Good();
    change(test);
    EXPECT_EQ(ExpectNumbersWanted(test, Validate), test.MonitorProbe ? 18U : 17U);
    ExpectComesBack(test, Take);
  }
}

TEST(TestValidationTest, NamesAMissingChoice) {
  const char* noRange = "No start/stop frequencies in calibration file.\r\nTry checking calibration file data.";
  const std::tuple<std::function<void(FormEntries&)>, const char*, const char*, const char*> rows[] = {
      {[](FormEntries&) {}, "", "lblCalFileName", noRange},
      {[](FormEntries&) {}, "0.15 to 80", "lblCalFileName", noRange},
      {[](FormEntries&) {}, "low - high", "lblCalFileName", noRange},
      {[](FormEntries&) {}, "80 - 0.15", "lblCalFileName", noRange},
      {[](FormEntries&) {}, "0,15 - 80", "lblCalFileName", noRange},
      {[](FormEntries&) {}, "0.15 - 79,5", "lblCalFileName", noRange},
      {[](FormEntries& e) { e["lblCalFileName"] = ""; }, kRange, "lblCalFileName",
       "No calibration setup file specified!"},
      {[](FormEntries& e) { e.Tick("chkFreqSweep", false); }, kRange, "fraSweep",
       "Either a swept frequency test or \r\na discrete frequency test must be specified"},
      {[](FormEntries& e) { e.Tick("chkFreqList"), e["lblListFile"] = ""; }, kRange, "lblListFile",
       "No frequency list file specified"},
  };
  for (const auto& [change, range, control, text] : rows) {
    FormEntries entries = GoodEntries();
    change(entries);
    TestDefinition test;
    const TestValidation validation = ValidateTestDefinition(entries, range, test);
    ASSERT_TRUE(validation.Failure) << text;
    EXPECT_EQ(validation.Failure->Reason, Kind::Message);
    EXPECT_EQ(validation.Failure->Text, text);
    EXPECT_EQ(validation.Failure->Control, control);
  }
}

TEST(TestValidationTest, LevelsNoPulsesByPowerThatTheMeterAverages) {
  for (const auto method : {LevelingMethod::SigGen, LevelingMethod::ForwardPower, LevelingMethod::NetPower})
    for (const auto modulation : {Modulation::None, Modulation::Am, Modulation::Fm, Modulation::Pulse})
      for (const bool offBetween : {false, true}) {
        SCOPED_TRACE(testing::Message() << static_cast<int>(method) << " " << static_cast<int>(modulation) << " "
                                        << offBetween);
        TestDefinition test = Good();
        for (const auto change : {Am, Fm, Pulse}) change(test);
        test.LevelingMethod = method;
        test.ModType = modulation;
        test.ModOffBetweenFreqs = offBetween;
        FormEntries entries = EntriesShowing(test);
        const auto failure = Validate(entries);
        ASSERT_EQ(failure.has_value(),
                  method != LevelingMethod::SigGen && modulation == Modulation::Pulse && !offBetween);
        if (!failure) continue;
        EXPECT_EQ(failure->Control, "chkModOffBetweenFreqs");
        EXPECT_TRUE(failure->Text.starts_with("The power meter reads the mean of a pulsed signal"));
      }
}

TEST(TestValidationTest, KeepsATestInItsCalibratedRange) {
  FormEntries entries = GoodEntries();
  entries["txtStartFreq"] = ".1";
  entries["txtStopFreq"] = "400";
  TestDefinition test;
  const TestValidation validation = ValidateTestDefinition(entries, "0.15-230", test);
  EXPECT_FALSE(validation.Failure);
  EXPECT_EQ(validation.Notices,
            (std::vector<std::string>{"Start frequency specified, 0.1 MHz, is less than the\r\nlowest frequency in the "
                                      "cal file, 0.15 MHz. \r\nTesting will not happen outside the cal file limits.",
                                      "Stop frequency specified, 400 MHz, is greater than the\r\nhighest frequency in "
                                      "the cal file, 230 MHz. \r\nTesting will not happen outside the cal file "
                                      "limits."}));
  EXPECT_EQ(test.StartFreq, 0.15);
  EXPECT_EQ(test.StopFreq, 230);
  EXPECT_EQ(entries["txtStartFreq"], "0.15");
  EXPECT_EQ(entries["txtStopFreq"], "230");

  // The minus of an exponent is no separator.
  entries["txtStartFreq"] = "0.01";
  EXPECT_FALSE(ValidateTestDefinition(entries, "3.33333333333333E-02 - 80", test).Failure);
  EXPECT_DOUBLE_EQ(test.StartFreq, 0.0333333333333333);
}

TEST(TestValidationTest, StoresEveryEntryAsItWasTyped) {
  FormEntries entries = GoodEntries();
  entries["txtInitLevOffset"] = "6";
  entries["txtLevelInc"] = "-2";
  entries.Tick("optSigGenLevel", false);
  entries.Tick("optNoMod", false);
  entries.Tick("optRealTimeLevel");
  entries.Tick("chkFreqList");
  entries["txtDiscreteDwell"] = "1000";
  entries["txtEUTCircuitImpedance"] = "not asked for";
  entries["txtLimitMargin"] = "-3";
  TestDefinition test;
  test.LevelingMethod = static_cast<LevelingMethod>(7);
  test.ModType = static_cast<Modulation>(9);
  test.EUTCircuitImpedance = 150;
  test.Spare3 = "old";
  ASSERT_FALSE(ValidateTestDefinition(entries, kRange, test).Failure);
  TestDefinition expected = Good();
  expected.InitLevOffset = -6;
  expected.LevelInc = 2;
  expected.LevelingMode = LevelingMode::ClosedLoop;
  expected.FreqList = true;
  expected.DiscreteDwell = 1000;
  expected.EUTCircuitImpedance = 150;
  expected.LimitMargin = -3;
  EXPECT_EQ(RecordText(test), RecordText(expected));
}

TEST(TestValidationTest, TakesTheEdgesOfARange) {
  const std::function<void(TestDefinition&)> changes[] = {
      [](auto& t) { t.ModType = Modulation::Am, t.AmDepth = 100, t.AmModFreq = 0.001F; },
      [](auto& t) { t.ModType = Modulation::Pulse, t.PulsePeriod = 1, t.PulseWidth = 5; },  // wider than its period
      [](auto& t) { t.StopFreq = 230; },
      [](auto& t) { t.MonitorProbe = true; },
      [](auto& t) { t.StepType = static_cast<StepType>(5); },
  };
  for (const auto& change : changes) {
    TestDefinition test = Good();
    change(test);
    FormEntries entries = EntriesShowing(test);
    const TestValidation validation = ValidateTestDefinition(entries, kRange, test);
    EXPECT_FALSE(validation.Failure) << validation.Failure->Control;
    EXPECT_TRUE(validation.Notices.empty());
  }
}

TEST(TestValidationTest, DropsConstantPeakWithModulationOff) {
  for (bool modOff : {false, true}) {
    FormEntries entries = GoodEntries();
    entries.Tick("chkConstPeak");
    entries.Tick("chkModOffBetweenFreqs", modOff);
    TestDefinition test;
    ASSERT_FALSE(ValidateTestDefinition(entries, kRange, test).Failure);
    EXPECT_EQ(test.ConstPeak, modOff);
    EXPECT_EQ(test.ModOffBetweenFreqs, modOff);
  }
  FormEntries entries = GoodEntries();
  entries.Tick("chkConstPeak");
  ConstPeakClicked(entries);
  EXPECT_TRUE(entries.IsTicked("chkModOffBetweenFreqs"));
  entries.Tick("chkModOffBetweenFreqs", false);
  ModOffBetweenFreqsClicked(entries);
  EXPECT_FALSE(entries.IsTicked("chkConstPeak"));
}

TEST(TestValidationTest, TakesWhatStandsBeforeAFailureAndNothingBehindIt) {
  FormEntries entries = GoodEntries();
  entries["txtStopFreq"] = "70";
  entries["txtSweepDwell"] = "-1";
  entries["lblListFile"] = "new.lst";
  TestDefinition test;
  test.ListFile = "old.lst";
  ASSERT_TRUE(ValidateTestDefinition(entries, kRange, test).Failure);
  EXPECT_EQ(test.StopFreq, 70);
  EXPECT_EQ(test.SweepDwell, -1);
  EXPECT_TRUE(test.FreqSweep);
  EXPECT_EQ(test.ListFile, "old.lst");
}

TEST(TestValidationTest, EnablesTheControlsInUse) {
  const std::pair<std::function<void(TestDefinition&)>, std::string> rows[] = {
      {[](auto&) {}, ""},
      {Am, "chkModOffBetweenFreqs chkConstPeak txtAmDepth txtAmModFreq"},
      {[](auto& t) { Am(t), t.ModOffBetweenFreqs = true; },
       "chkModOffBetweenFreqs chkConstPeak txtAmDepth txtAmModFreq chkUseAMdepth"},
      {[](auto& t) { Fm(t), t.ModOffBetweenFreqs = true; }, "chkModOffBetweenFreqs txtFmDev txtFmModFreq"},
      {Pulse, "chkModOffBetweenFreqs txtPulsePeriod txtPulseWidth"},
      {[](auto& t) { t.LimitCurrent = true; }, ""},
      {Probe, "chkLimitCurrent txtEUTCircuitImpedance lblImpedanceUnit"},
      {[](auto& t) { Probe(t), t.LimitCurrent = true; },
       "chkLimitCurrent txtEUTCircuitImpedance lblImpedanceUnit txtLimitMargin lblLimitMargin2"},
  };
  for (const auto& [change, inUse] : rows) {
    TestDefinition test = Good();
    change(test);
    for (const auto& [name, used] : UsedWith(EntriesShowing(test), TestDefinition()))
      EXPECT_EQ(used, inUse.find(name) != std::string::npos) << name << ", " << inUse;
  }
}

TEST(TestValidationTest, StartsNoTestWithoutWhatItNeeds) {
  TestDefinition generator, forward, all;
  forward.LevelingMethod = LevelingMethod::ForwardPower;
  all.LevelingMethod = LevelingMethod::NetPower;
  all.MonitorProbe = true;
  const char* dual = "A dual-channel power meter must be selected\r\nfor a net-power type test.";
  // What is missing first, and what mends it.
  const std::tuple<const char*, int, void (*)(EquipRecord&)> rows[] = {
      {"A signal generator must be selected", 0, [](auto& e) { e.SigGenFile = "x"; }},
      {"A meter device must be selected for\r\nmonitoring the induced level.", 0, [](auto& e) { e.MeterFile = "x"; }},
      {"No cable loss file has been selected", 1, [](auto& e) { e.CableLossFile = "x"; }},
      {"A power meter must be selected for this test", 0, [](auto& e) { e.PwrMtrFile = "x"; }},
      {"No forward coupler port file has been selected", 1, [](auto& e) { e.FwdPortFile = "x"; }},
      {dual, 0, [](auto& e) { e.AmpConfiguration = AmpConfig::DualSplit; }},
      {dual, 0, [](auto& e) { e.AmpConfiguration = AmpConfig::DualFwdRev; }},
      {"No reverse coupler port file has been selected", 1, [](auto& e) { e.RevPortFile = "x"; }},
  };
  EquipRecord station;
  for (const auto& [text, tab, mend] : rows) {
    EXPECT_EQ(!CheckStart(generator, station), !station.SigGenFile.empty()) << text;
    EXPECT_EQ(!CheckStart(forward, station), !station.FwdPortFile.empty()) << text;
    const auto failure = CheckStart(all, station);
    ASSERT_TRUE(failure) << text;
    EXPECT_EQ(failure->Text, text);
    EXPECT_EQ(failure->EquipmentTab, tab);
    mend(station);
  }
  EXPECT_FALSE(CheckStart(all, station));
}

TEST(TestValidationTest, StartsNoRunWithABandSwitchThatTheAmplifierLacks) {
  TestDefinition test;
  CalSetupRecord setup;
  EquipRecord station;
  station.SigGenFile = station.MeterFile = station.CableLossFile = "x";
  for (const bool ifi : {false, true})
    for (const double bandSwitch : {0.0, 199.9, 200.0, 230.0, 230.1, std::nan("")}) {
      SCOPED_TRACE(testing::Message() << ifi << ": " << bandSwitch);
      station.AmplifierType = ifi ? AmpType::Ifi : AmpType::Generic;
      station.IfiBandSwitch = bandSwitch;
      const bool good = !ifi || (bandSwitch >= 200 && bandSwitch <= 230);
      EXPECT_EQ(!CheckStart(test, station), good);
      EXPECT_EQ(!CheckStation(setup, station), good);
    }
  station.IfiBandSwitch = 199.9;
  EXPECT_EQ(CheckStart(test, station)->Text,
            "The band switch of the IFI amplifier, 199.9 MHz, is not\r\nfrom 200 to 230 MHz");
  EXPECT_EQ(CheckStart(test, station)->EquipmentTab, 2);
}

}  // namespace
}  // namespace hylden
