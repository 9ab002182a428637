#include "documents/CalSetup.h"

#include <gtest/gtest.h>

#include <functional>

#include "support/FormTable.h"
#include "support/SameRecord.h"
#include "support/SampleDocuments.h"
#include "support/TempDir.h"
#include "support/Told.h"

namespace hylden {
namespace {

using Kind = EntryFailure::Kind;

CalSetupRecord TenVolts() {
  CalSetupRecord setup = RecordOf<CalSetupRecord>(kCalSetupFile);
  setup.CouplingMethod = CouplingMethod::Clamp150Ohm;
  setup.RecordRevPwr = 0;
  setup.Reserved1 = 0;
  return setup;
}

class CalSetupTest : public testing::Test {
 protected:
  TempDir directory;
  CalSetup setup;
};

TEST_F(CalSetupTest, OpensTheFormWithItsDefaults) {
  setup.SetOpeningDefaults(0.2);
  EXPECT_EQ(setup.Record.StartFreq, 0.15);
  EXPECT_EQ(setup.Record.StopFreq, 80);
  EXPECT_EQ(setup.Record.InitLevel, -60);
  EXPECT_EQ(setup.Record.Dwell, 0.2);
  setup.Record = TenVolts();
  setup.SetOpeningDefaults(0.2);
  EXPECT_TRUE(SameRecord(setup.Record, TenVolts()));
}

TEST_F(CalSetupTest, LeavesTheOptionsForACodeThatNoneStandsFor) {
  CalSetupRecord odd = TenVolts(), before = odd;
  odd.StepType = static_cast<StepType>(3);
  odd.LimitType = static_cast<LimitType>(-1);
  odd.CouplingMethod = static_cast<CouplingMethod>(4);
  before.StepType = StepType::List;
  before.LimitType = LimitType::File;
  before.CouplingMethod = CouplingMethod::UserDefined;
  const FormEntries shown = EntriesShowing(before);
  const CalSetupShown now = EntriesOf(odd, &shown);
  EXPECT_EQ(now.Messages, (std::vector<std::string>{"Error in Calsetup file, \r\nBad value for frequency step type",
                                                    "Error in Calsetup file, \r\nBad value for limit type",
                                                    "Error in Calsetup file, \r\nBad value for coupling method"}));
  EXPECT_EQ(now.Entries, shown);
}

TEST_F(CalSetupTest, SetsTheRangeFromAList) {
  EXPECT_TRUE(setup.LoadFreqList(directory.Write("x.lst", "10\r\n20\r\n45.5\r\n")));
  EXPECT_EQ(setup.Record.StartFreq, 10);
  EXPECT_EQ(setup.Record.StopFreq, 45.5);
  EXPECT_TRUE(FailsWith(setup.LoadFreqList(directory.Write("y.lst", "Freq\r\n")), "Bad data in frequency list file"));
  EXPECT_EQ(setup.Record.StopFreq, 45.5);
}

std::optional<EntryFailure> Take(const FormEntries& entries, CalSetupRecord& setup) {
  return ValidateCalSetup(entries, true, setup);
}

std::optional<EntryFailure> Validate(const FormEntries& entries) {
  CalSetupRecord setup;
  EXPECT_FALSE(ValidateCalSetup(entries, false, setup)) << "closing the form refuses nothing";
  return Take(entries, setup);
}

void Limited(CalSetupRecord& setup) {
  setup.RecordFwdPwr = setup.LimitFwdPwr = 1;
}
void OwnFactor(CalSetupRecord& setup) {
  setup.CouplingMethod = CouplingMethod::UserDefined;
  setup.UserDefinedFactor = 9.5;
}
void Linear(CalSetupRecord& setup) {
  setup.StepType = StepType::Linear;
}
void Lists(CalSetupRecord& setup) {
  setup.StepType = StepType::List;
  setup.LimitType = LimitType::File;
}

TEST(CalSetupValidation, RefusesABadEntryAtItsBox) {
  constexpr auto kMessage = Kind::Message;
  constexpr Refusal<CalSetupRecord> refusals[] = {
      {{}, "txtStartFreq", "0"},
      {{}, "txtStopFreq", "0.15"},
      {{}, "txtLogStep", "0"},
      {Linear, "txtLinearStep", "-1"},
      {Lists, "lblListFile", "", kMessage},
      {Lists, "lblLimitFile", "", kMessage},
      {{}, "txtCalLevel", "0"},
      {{}, "txtInitLev", "7"},
      {{}, "txtMaxLev", "1e39"},
      {{}, "txtMaxStep", "0"},
      {Limited, "txtFwdPwrLimit", "0"},
      {{}, "txtFinalDwell", "-1"},
  };
  ExpectRefused(refusals, TenVolts(), Validate);
  FormEntries entries = EntriesShowing(TenVolts());
  entries["txtStartFreq"] = "0";
  entries["txtFinalDwell"] = "x";
  EXPECT_EQ(Validate(entries)->Control, "txtFinalDwell") << "what is no number is told before any range";
}

TEST(CalSetupValidation, AnEntryDoesNotComeBackOrIsNoNumber) {
  for (const auto change : {+[](CalSetupRecord&) {}, Limited, OwnFactor, Linear, Lists}) {
    CalSetupRecord setup = TenVolts();
    change(setup);
    EXPECT_GE(ExpectNumbersWanted(setup, Validate), 6U);
    // What is not in use is neither shown wrongly nor taken.
    if (!setup.Steps(StepType::Linear)) setup.LinearStep = 0;
    if (!setup.Steps(StepType::Log)) setup.LogStep = 0;
    if (!setup.Steps(StepType::List)) setup.ListFile = "";
    setup.HasLevelFile() ? void(setup.CalLevel = 0) : setup.LimitFile.clear();
    if (!setup.LimitsForward()) setup.FwdPwrLimit = 0;
    if (!setup.HasOwnFactor()) setup.UserDefinedFactor = 0;
    ExpectComesBack(setup, Take);
  }
}

TEST(CalSetupValidation, TakesGoodEntriesWithoutLookingAtHiddenBoxes) {
  FormEntries entries = EntriesShowing(TenVolts());
  entries["txtLinearStep"] = entries["txtFwdPwrLimit"] = entries["txtUserDefCF"] = "x";
  entries["txtFinalDwell"] = "0";
  CalSetupRecord setup;
  setup.UserDefinedFactor = 4;
  EXPECT_FALSE(Take(entries, setup));
  EXPECT_EQ(setup.Dwell, 0);
  EXPECT_EQ(setup.UserDefinedFactor, 4);
}

TEST(CalSetupValidation, StoresNothingBehindAFailure) {
  FormEntries entries = EntriesShowing(TenVolts());
  entries["txtCalLevel"] = "0";
  CalSetupRecord setup;
  EXPECT_TRUE(Take(entries, setup));
  EXPECT_EQ(setup.StopFreq, 80);
  EXPECT_EQ(setup.MaxLevel, 0);
}

TEST(CalSetupValidation, KeepsWhatWasTypedWhenTheFormCloses) {
  CalSetupRecord setup = TenVolts();
  OwnFactor(setup);
  FormEntries entries = EntriesShowing(setup);
  entries["txtStartFreq"] = "-5";
  entries["txtStopFreq"] = "no number";
  entries["txtMaxLev"] = "1e39";
  entries["txtUserDefCF"] = "11";
  entries["txtAmpUsed"] = "another";
  entries.Tick("optLogStep", false);
  EXPECT_FALSE(ValidateCalSetup(entries, false, setup));
  EXPECT_EQ(setup.StartFreq, -5);
  EXPECT_EQ(setup.StopFreq, 80);
  EXPECT_EQ(setup.MaxLevel, 7);
  EXPECT_EQ(setup.StepType, StepType::Log);
  EXPECT_EQ(setup.AmpUsed, "another");
  EXPECT_EQ(setup.UserDefinedFactor, 11);
}

TEST(CalSetupControls, LeavesNoImpossibleCombinationBehindATick) {
  constexpr const char *kForward = "chkRecordFP", *kReverse = "chkRecordRP", *kLimit = "chkLimitFwdPwr";
  CalSetupRecord setup;
  setup.LimitFwdPwr = 1;
  EXPECT_TRUE(EntriesOf(setup).Entries.IsTicked(kForward));
  FormEntries entries = EntriesShowing(setup);
  LimitFwdPwrClicked(entries);
  EXPECT_TRUE(entries.IsTicked(kForward));
  entries.Tick(kForward, false);
  entries.Tick(kReverse);
  RecordFwdPwrClicked(entries);
  EXPECT_FALSE(entries.IsTicked(kReverse) || entries.IsTicked(kLimit));
  entries.Tick(kReverse);
  RecordRevPwrClicked(entries);
  EXPECT_TRUE(entries.IsTicked(kForward));
  RecordFwdPwrClicked(entries);
  EXPECT_TRUE(entries.IsTicked(kReverse));
}

TEST(CalSetupControls, EnablesOnlyTheBoxesInUse) {
  const std::pair<void (*)(CalSetupRecord&), const char*> rows[] = {
      {Linear, "txtLinearStep txtCalLevel"},
      {[](auto& s) { s.StepType = StepType::Log, s.LimitType = LimitType::File; }, "txtLogStep lblLimitFile"},
      {Lists, "lblListFile lblLimitFile"},
      {Limited, "txtLogStep txtCalLevel txtFwdPwrLimit"},
      {OwnFactor, "txtLogStep txtCalLevel txtUserDefCF"}};
  for (const auto& [change, inUse] : rows) {
    CalSetupRecord setup = TenVolts();
    change(setup);
    for (const auto& [name, used] : UsedWith(EntriesShowing(setup), CalSetupRecord())) {
      if (name.ends_with("Unit")) continue;
      EXPECT_EQ(used, std::string(inUse).find(name) != std::string::npos) << name << ", " << inUse;
    }
  }
}

TEST(CheckStation, StartsNoCalibrationWithoutWhatItNeeds) {
  CalSetupRecord plain, forward, both;
  forward.RecordFwdPwr = both.RecordFwdPwr = both.RecordRevPwr = 1;
  // What is missing first, and what mends it.
  const std::tuple<const char*, int, void (*)(EquipRecord&)> rows[] = {
      {"The signal generator and meter must both be selected", 0, [](auto& e) { e.SigGenFile = "x"; }},
      {"The signal generator and meter must both be selected", 0, [](auto& e) { e.MeterFile = "x"; }},
      {"The power meter must be selected for this calibration", 0, [](auto& e) { e.PwrMtrFile = "x"; }},
      {"No forward coupler port file has been selected", 1, [](auto& e) { e.FwdPortFile = "x"; }},
      {"Power Meter must be dual channel for this calibration", 0,
       [](auto& e) { e.AmpConfiguration = AmpConfig::DualSplit; }},
      {"Power Meter must be dual channel for this calibration", 0,
       [](auto& e) { e.AmpConfiguration = AmpConfig::DualFwdRev; }},
      {"No reverse coupler port file has been selected", 1, [](auto& e) { e.RevPortFile = "x"; }},
      {"No cable loss file has been selected", 1, [](auto& e) { e.CableLossFile = "x"; }},
  };
  EquipRecord station;
  for (const auto& [text, tab, mend] : rows) {
    const auto failure = CheckStation(both, station);
    ASSERT_TRUE(failure) << text;
    EXPECT_EQ(failure->Text, text);
    EXPECT_EQ(failure->EquipmentTab, tab);
    EquipRecord cabled = station;
    cabled.CableLossFile = "x";
    EXPECT_EQ(!CheckStation(plain, cabled), !station.MeterFile.empty()) << text;
    EXPECT_EQ(!CheckStation(forward, cabled), !station.FwdPortFile.empty()) << text;
    mend(station);
  }
  for (const CalSetupRecord& setup : {plain, forward, both}) EXPECT_FALSE(CheckStation(setup, station));
}

TEST(CouplingFactor, KnowsTheFactorOfEachMethod) {
  const double factors[] = {15.5, 6, 0, 9.25, 0};
  for (int code = 0; code < 5; ++code)
    EXPECT_EQ(CouplingFactorDb(static_cast<CouplingMethod>(code), 9.25F), factors[code]) << code;
}

TEST(CalInfoOfSetup, DescribesTheCalibrationInItsRecord) {
  CalSetupRecord setup = TenVolts();
  setup.CalLevel = 3;
  CalInfoRec info = CalInfoOf(setup);
  EXPECT_EQ(info.TestLevel, "3v");
  EXPECT_EQ(info.FreqRange, "0.15 - 80");
  EXPECT_EQ(info.DeviceDescription, "CDN M2, no. 4711");
  setup.LimitType = LimitType::File;
  EXPECT_EQ(CalInfoOf(setup).TestLevel, "/levels/y.lev");
  EXPECT_EQ(info.SetupDescription, "10 V");
  setup.CouplingMethod = CouplingMethod::UserDefined;
  setup.UserDefinedFactor = 9.1F;
  EXPECT_EQ(CalInfoOf(setup).SetupDescription, "10 V, coupling factor 9.1 dB");
  setup.SetupDescription = "";
  EXPECT_EQ(CalInfoOf(setup).SetupDescription, "coupling factor 9.1 dB");
}

}  // namespace
}  // namespace hylden
