#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "documents/CalSetup.h"
#include "documents/TestSetup.h"
#include "support/Refusals.h"
#include "support/SameRecord.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

using Kind = EntryFailure::Kind;
using Entries = TestDefinitionEntries;

constexpr const char* kRange = "0.15 - 230";

Entries GoodEntries() {
  TestDefinition test;
  test.CalInfoFile = "cal.hyinfo";
  test.StartFreq = 0.15;
  test.StopFreq = 80;
  test.FreqSweep = true;
  test.StepType = 1;
  test.LogStep = 1;
  test.ListFile = "x.lst";
  return EntriesOf(test);
}

TEST(TestValidationTest, ABadEntryIsTakenOrTheWrongBoxIsShown) {
  constexpr auto kNumber = Kind::NotANumber, kOutside = Kind::OutOfRange;
  constexpr Refusal<Entries> refusals[] = {
      {[](auto& e) { e.StartFreq = "0,15"; }, "txtStartFreq", 0, kNumber},
      {[](auto& e) { e.StopFreq = ""; }, "txtStopFreq", 0, kNumber},
      {[](auto& e) { e.LinearStep = "."; }, "txtLinearStep", 0, kNumber},
      {[](auto& e) { e.LogStep = "1%"; }, "txtLogStep", 0, kNumber},
      {[](auto& e) { e.SweepDwell = "-"; }, "txtSweepDwell", 0, kNumber},
      {[](auto& e) { e.DiscreteDwell = "x"; }, "txtDiscreteDwell", 0, kNumber},
      {[](auto& e) { e.AmDepth = "80,5"; }, "txtAmDepth", 1, kNumber},
      {[](auto& e) { e.AmModFreq = "x"; }, "txtAmModFreq", 1, kNumber},
      {[](auto& e) { e.FmDev = "x"; }, "txtFmDev", 1, kNumber},
      {[](auto& e) { e.FmModFreq = "x"; }, "txtFmModFreq", 1, kNumber},
      {[](auto& e) { e.PulseWidth = "x"; }, "txtPulseWidth", 1, kNumber},
      {[](auto& e) { e.PulsePeriod = "x"; }, "txtPulsePeriod", 1, kNumber},
      {[](auto& e) { e.InitLevOffset = "x"; }, "txtInitLevOffset", 3, kNumber},
      {[](auto& e) { e.LevelInc = "x"; }, "txtLevelInc", 3, kNumber},
      {[](auto& e) { e.ExtrapolateTo = "x"; }, "txtExtrapolateTo", 2, kNumber},
      {[](auto& e) { e.InterDwell = "x"; }, "txtInterDwell", 3, kNumber},
      {[](auto& e) { e.LimitMargin = "x"; }, "txtLimitMargin", 3, kNumber},
      {[](auto& e) { e.LimitMargin = e.AmDepth = "x"; }, "txtAmDepth", 1, kNumber},
      {[](auto& e) { e.MonitorProbe = true, e.EUTCircuitImpedance = "x"; }, "txtEUTCircuitImpedance", 3, kNumber},
      {[](auto& e) { e.StartFreq = "0"; }, "txtStartFreq", 0, kOutside},
      {[](auto& e) { e.StopFreq = ".15"; }, "txtStopFreq", 0, kOutside},
      {[](auto& e) { e.StartFreq = "300", e.StopFreq = "400"; }, "txtStartFreq", 0, kOutside},
      {[](auto& e) { e.LinStep = true, e.LogStepChosen = false, e.LinearStep = "0"; }, "txtLinearStep", 0, kOutside},
      {[](auto& e) { e.LogStep = "-1"; }, "txtLogStep", 0, kOutside},
      {[](auto& e) { e.SweepDwell = "-1"; }, "txtSweepDwell", 0, kOutside},
      {[](auto& e) { e.FreqList = true, e.DiscreteDwell = "-1"; }, "txtDiscreteDwell", 0, kOutside},
      {[](auto& e) { e.ModType = 1, e.AmDepth = "0", e.AmModFreq = "1"; }, "txtAmDepth", 1, kOutside},
      {[](auto& e) { e.ModType = 1, e.AmDepth = "100.5", e.AmModFreq = "1"; }, "txtAmDepth", 1, kOutside},
      {[](auto& e) { e.ModType = 1, e.AmDepth = "80", e.AmModFreq = "0"; }, "txtAmModFreq", 1, kOutside},
      {[](auto& e) { e.ModType = 2, e.FmDev = "0", e.FmModFreq = "1"; }, "txtFmDev", 1, kOutside},
      {[](auto& e) { e.ModType = 2, e.FmDev = "1", e.FmModFreq = "0"; }, "txtFmModFreq", 1, kOutside},
      {[](auto& e) { e.ModType = 3, e.PulsePeriod = "0", e.PulseWidth = "0"; }, "txtPulsePeriod", 1, kOutside},
      {[](auto& e) { e.ModType = 3, e.PulsePeriod = "1", e.PulseWidth = "0"; }, "txtPulseWidth", 1, kOutside},
      {[](auto& e) { e.FmDev = "1E39"; }, "txtFmDev", 1, kOutside},
      {[](auto& e) { e.InitLevOffset = "-6"; }, "txtLevelInc", 3, kOutside},
      {[](auto& e) { e.Extrapolate = true; }, "txtExtrapolateTo", 2, kOutside},
      {[](auto& e) { e.InterDwell = "-.1"; }, "txtInterDwell", 3, kOutside},
      {[](auto& e) { e.MonitorProbe = true, e.EUTCircuitImpedance = "-1"; }, "txtEUTCircuitImpedance", 3, kOutside},
  };
  TestDefinition test;
  ExpectRefused(refusals, GoodEntries(), [&](Entries& e) { return ValidateTestDefinition(e, kRange, test).Failure; });
}

TEST(TestValidationTest, AMissingChoiceGivesTheWrongMessage) {
  struct Row {
    std::function<void(Entries&)> change;
    const char* range;
    int tab;
    const char* text;
  };
  const char* noRange = "No start/stop frequencies in calibration file.\r\nTry checking calibration file data.";
  const Row rows[] = {
      {[](Entries&) {}, "", 2, noRange},
      {[](Entries&) {}, "0.15 to 80", 2, noRange},
      {[](Entries&) {}, "low - high", 2, noRange},
      {[](Entries&) {}, "80 - 0.15", 2, noRange},
      {[](Entries&) {}, "0,15 - 80", 2, noRange},
      {[](Entries&) {}, "0.15 - 79,5", 2, noRange},
      {[](Entries& e) { e.CalFile = ""; }, kRange, 2, "No calibration setup file specified!"},
      {[](Entries& e) { e.FreqSweep = false; }, kRange, 0,
       "Either a swept frequency test or \r\na discrete frequency test must be specified"},
      {[](Entries& e) { e.FreqList = true, e.ListFile = ""; }, kRange, 0, "No frequency list file specified"},
  };
  for (const Row& row : rows) {
    Entries entries = GoodEntries();
    row.change(entries);
    TestDefinition test;
    const TestValidation validation = ValidateTestDefinition(entries, row.range, test);
    ASSERT_TRUE(validation.Failure) << row.text;
    EXPECT_EQ(validation.Failure->Reason, Kind::Message);
    EXPECT_EQ(validation.Failure->Text, row.text);
    EXPECT_EQ(validation.Failure->Tab, row.tab);
  }
}

TEST(TestValidationTest, PulsesThatThePowerMeterAveragesAreLevelledByPower) {
  for (const int method : {0, 1, 2})
    for (const int modulation : {0, 1, 2, 3})
      for (const bool offBetween : {false, true}) {
        SCOPED_TRACE(testing::Message() << method << " " << modulation << " " << offBetween);
        Entries entries = GoodEntries();
        entries.LevelingMethod = method;
        entries.ModType = modulation;
        entries.AmDepth = entries.AmModFreq = entries.FmDev = entries.FmModFreq = "1";
        entries.PulseWidth = entries.PulsePeriod = "1";
        entries.ModOffBetweenFreqs = offBetween;
        TestDefinition test;
        const auto failure = ValidateTestDefinition(entries, kRange, test).Failure;
        ASSERT_EQ(failure.has_value(), method > 0 && modulation == 3 && !offBetween);
        if (!failure) continue;
        EXPECT_EQ(failure->Control, "chkModOffBetweenFreqs");
        EXPECT_EQ(failure->Tab, 1);
        EXPECT_TRUE(failure->Text.starts_with("The power meter reads the mean of a pulsed signal"));
      }
}

TEST(TestValidationTest, ATestLeavesTheCalibratedRange) {
  Entries entries = GoodEntries();
  entries.StartFreq = ".1";
  entries.StopFreq = "400";
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
  EXPECT_EQ(entries.StartFreq, "0.15");
  EXPECT_EQ(entries.StopFreq, "230");

  // The minus of an exponent is no separator.
  entries.StartFreq = "0.01";
  EXPECT_FALSE(ValidateTestDefinition(entries, "3.33333333333333E-02 - 80", test).Failure);
  EXPECT_DOUBLE_EQ(test.StartFreq, 0.0333333333333333);
}

TEST(TestValidationTest, AnEntryIsStoredDifferently) {
  Entries entries = GoodEntries();
  entries.InitLevOffset = "6";
  entries.LevelInc = "-2";
  entries.LevelingMethod = 7;
  entries.ModType = 9;
  entries.RealTimeLevel = true;
  entries.FreqList = true;
  entries.DiscreteDwell = "1000";
  entries.EUTCircuitImpedance = "not asked for";
  entries.LimitMargin = "-3";
  TestDefinition test;
  test.EUTCircuitImpedance = 150;
  test.Spare3 = "old";
  ASSERT_FALSE(ValidateTestDefinition(entries, kRange, test).Failure);
  EXPECT_EQ(test.InitLevOffset, -6);
  EXPECT_EQ(test.LevelInc, 2);
  EXPECT_EQ(test.LevelingMethod, 0);
  EXPECT_EQ(test.ModType, 0);
  EXPECT_EQ(test.LevelingMode, 1);
  EXPECT_EQ(test.DiscreteDwell, 1000);
  EXPECT_EQ(test.EUTCircuitImpedance, 150);
  EXPECT_EQ(test.LimitMargin, -3);
  EXPECT_EQ(test.Spare3, "");
}

TEST(TestValidationTest, TheEdgeOfARangeIsRefused) {
  const std::function<void(Entries&)> changes[] = {
      [](Entries& e) { e.ModType = 1, e.AmDepth = "100", e.AmModFreq = "0.001"; },
      [](Entries& e) { e.ModType = 3, e.PulsePeriod = "1", e.PulseWidth = "5"; },  // wider than its period
      [](Entries& e) { e.StopFreq = "230"; },
      [](Entries& e) { e.MonitorProbe = true, e.EUTCircuitImpedance = "0"; },
      [](Entries& e) { e.LinStep = e.LogStepChosen = false; },
  };
  for (const auto& change : changes) {
    Entries entries = GoodEntries();
    change(entries);
    TestDefinition test;
    const TestValidation validation = ValidateTestDefinition(entries, kRange, test);
    EXPECT_FALSE(validation.Failure) << validation.Failure->Control;
    EXPECT_TRUE(validation.Notices.empty());
  }
}

TEST(TestValidationTest, ConstantPeakOutlivesModulationOff) {
  for (bool modOff : {false, true}) {
    Entries entries = GoodEntries();
    entries.ConstPeak = true;
    entries.ModOffBetweenFreqs = modOff;
    TestDefinition test;
    ASSERT_FALSE(ValidateTestDefinition(entries, kRange, test).Failure);
    EXPECT_EQ(test.ConstPeak, modOff);
    EXPECT_EQ(test.ModOffBetweenFreqs, modOff);
  }
  Entries entries;
  entries.ConstPeak = true;
  ConstPeakClicked(entries);
  EXPECT_TRUE(entries.ModOffBetweenFreqs);
  entries.ModOffBetweenFreqs = false;
  ModOffBetweenFreqsClicked(entries);
  EXPECT_FALSE(entries.ConstPeak);
}

TEST(TestValidationTest, WhatWasReadBeforeAFailureIsLostOrWhatFollowsIsTaken) {
  Entries entries = GoodEntries();
  entries.StopFreq = "70";
  entries.SweepDwell = "-1";
  entries.ListFile = "new.lst";
  TestDefinition test;
  test.ListFile = "old.lst";
  ASSERT_TRUE(ValidateTestDefinition(entries, kRange, test).Failure);
  EXPECT_EQ(test.StopFreq, 70);
  EXPECT_EQ(test.SweepDwell, -1);
  EXPECT_TRUE(test.FreqSweep);
  EXPECT_EQ(test.ListFile, "old.lst");
}

TEST(TestValidationTest, AnUntouchedFormChangesTheDefinition) {
  TestDefinition test;
  Entries entries = GoodEntries();
  entries.ModType = 1, entries.AmDepth = "33.3", entries.AmModFreq = "0.4";
  entries.ModOffBetweenFreqs = entries.UseAMdepth = true;
  ASSERT_FALSE(ValidateTestDefinition(entries, kRange, test).Failure);
  TestDefinition again = test;
  Entries shown = EntriesOf(test);
  ASSERT_FALSE(ValidateTestDefinition(shown, kRange, again).Failure);
  EXPECT_TRUE(SameRecord(again, test));
}

TEST(TestValidationTest, AControlIsEnabledWrongly) {
  struct Row {
    const char* name;
    std::function<void(Entries&)> change;
    EnabledControls expected;
  };
  const Row rows[] = {
      {"none", [](Entries&) {}, {}},
      {"AM", [](Entries& e) { e.ModType = 1; }, {.ModOffBetweenFreqs = true, .AmControls = true}},
      {"AM, off between",
       [](Entries& e) { e.ModType = 1, e.ModOffBetweenFreqs = true; },
       {.ModOffBetweenFreqs = true, .AmControls = true, .UseAMdepth = true}},
      {"FM, off between",
       [](Entries& e) { e.ModType = 2, e.ModOffBetweenFreqs = true; },
       {.ModOffBetweenFreqs = true, .FmControls = true}},
      {"pulse", [](Entries& e) { e.ModType = 3; }, {.ModOffBetweenFreqs = true, .PulseControls = true}},
      {"limit without probe", [](Entries& e) { e.LimitCurrent = true; }, {}},
      {"probe", [](Entries& e) { e.MonitorProbe = true; }, {.ProbeControls = true}},
      {"probe with limit",
       [](Entries& e) { e.MonitorProbe = e.LimitCurrent = true; },
       {.ProbeControls = true, .LimitMargin = true}},
  };
  for (const Row& row : rows) {
    Entries entries;
    row.change(entries);
    EXPECT_EQ(EnabledControlsFor(entries), row.expected) << row.name;
  }
}

TEST(TestValidationTest, ATestStartsWithoutWhatItNeeds) {
  TestDefinition test;
  test.MonitorProbe = true;
  test.LevelingMethod = static_cast<int>(LevelingMethod::NetPower);
  EquipRecord station;
  const auto expect = [&](const char* text, int tab) {
    const auto failure = CheckStart(test, station);
    ASSERT_TRUE(failure) << text;
    EXPECT_EQ(failure->Text, text);
    EXPECT_EQ(failure->EquipmentTab, tab);
  };
  const char* dual = "A dual-channel power meter must be selected\r\nfor a net-power type test.";
  expect("A signal generator must be selected", 0);
  station.SigGenFile = "x";
  expect("A meter device must be selected for\r\nmonitoring the induced level.", 0);
  station.MeterFile = "x";
  expect("No cable loss file has been selected", 1);
  station.CableLossFile = "x";
  expect("A power meter must be selected for this test", 0);
  station.PwrMtrFile = "x";
  expect("No forward coupler port file has been selected", 1);
  station.FwdPortFile = "x";
  expect(dual, 0);
  station.AmpConfiguration = static_cast<int>(AmpConfig::DualSplit);
  expect(dual, 0);
  station.AmpConfiguration = static_cast<int>(AmpConfig::DualFwdRev);
  expect("No reverse coupler port file has been selected", 1);
  station.RevPortFile = "x";
  EXPECT_FALSE(CheckStart(test, station));

  test.LevelingMethod = static_cast<int>(LevelingMethod::ForwardPower);
  station.RevPortFile = "";
  station.AmpConfiguration = static_cast<int>(AmpConfig::Single);
  EXPECT_FALSE(CheckStart(test, station));
  test.LevelingMethod = static_cast<int>(LevelingMethod::SigGen);
  test.MonitorProbe = false;
  EquipRecord generatorOnly;
  generatorOnly.SigGenFile = "x";
  EXPECT_FALSE(CheckStart(test, generatorOnly));
}

TEST(TestValidationTest, ARunStartsWithABandSwitchThatTheAmplifierDoesNotHave) {
  TestDefinition test;
  CalSetupRecord setup;
  EquipRecord station;
  station.SigGenFile = station.MeterFile = station.CableLossFile = "x";
  for (const bool ifi : {false, true})
    for (const double bandSwitch : {0.0, 199.9, 200.0, 230.0, 230.1, std::nan("")}) {
      SCOPED_TRACE(testing::Message() << ifi << ": " << bandSwitch);
      station.AmplifierType = ifi ? 1 : 0;
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
