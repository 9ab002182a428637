#include "documents/CalSetup.h"

#include <gtest/gtest.h>

#include <functional>

#include "documents/RoundTrip.h"
#include "support/ReadLines.h"
#include "support/Refusals.h"
#include "support/SameRecord.h"
#include "support/TestShell.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

using Kind = EntryFailure::Kind;
using Entries = CalSetupEntries;

CalSetupRecord TenVolts() {
  CalSetupRecord setup;
  setup.StartFreq = 0.15;
  setup.StopFreq = 80;
  setup.StepType = 1;
  setup.LinearStep = 0.5;
  setup.LogStep = 1;
  setup.ListFile = "/lists/x.lst";
  setup.CalLevel = 10;
  setup.LimitFile = "/levels/y.lev";
  setup.MaxLevel = 7;
  setup.MaxStep = 3.25F;
  setup.InitLevel = -30;
  setup.RecordFwdPwr = 1;
  setup.FwdPwrLimit = 25;
  setup.Dwell = 0.3;
  setup.DeviceDescription = "CDN M2, no. 4711";
  setup.AmpUsed = "25 W";
  setup.SetupDescription = "10 V";
  setup.UserDefinedFactor = 0.1F;
  return setup;
}

class CalSetupTest : public testing::Test {
 protected:
  TestShell t;
  CalSetup setup{t.shell};
};

TEST_F(CalSetupTest, AFieldIsLostOrMovedInTheFile) {
  setup.Record = TenVolts();
  ASSERT_TRUE(setup.SaveDef(t.directory.File("a.csu")));
  EXPECT_EQ(t.directory.Read("a.csu"),
            " .15 \r\n 80 \r\n 1 \r\n .5 \r\n 1 \r\n/lists/x.lst\r\n 0 \r\n 10 \r\n/levels/y.lev\r\n 7 \r\n 3.25 \r\n"
            "-30 \r\n 1 \r\n 0 \r\n 0 \r\n 25 \r\n 0 \r\n .3 \r\nCDN M2, no. 4711\r\n25 W\r\n 0 \r\n10 V\r\n .1 \r\n"
            "\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n");
  CalSetup other(t.shell);
  ExpectEveryFieldSurvives(t.directory, setup, other, &CalSetup::Record);
}

TEST_F(CalSetupTest, TheDemoSetupComesBackChanged) {
  const std::string demo = ReadTextFile(HYLDEN_SOURCE_DIR "/examples/station/cdn-10v.csu");
  t.directory.Write("stepped.lev", "0.15 10\r\n80 10\r\n");
  ASSERT_TRUE(setup.LoadDef(t.directory.Write("cdn-10v.csu", demo)));
  ASSERT_TRUE(setup.SaveDef(t.directory.File("again.csu")));
  EXPECT_EQ(t.directory.Read("again.csu"), demo);
}

TEST_F(CalSetupTest, ALevelFileBesideTheSetupIsFound) {
  const std::string levels = t.directory.Write("lab/y.lev", "0.15 10\r\n80 10\r\n");
  setup.Record = TenVolts();
  setup.Record.LimitFile = "y.lev";
  ASSERT_TRUE(setup.SaveDef(t.directory.File("lab/a.csu")));
  ASSERT_TRUE(setup.LoadDef(t.directory.File("lab/a.csu")));
  EXPECT_EQ(setup.Record.LimitFile, levels);
}

TEST_F(CalSetupTest, AShortFileOrABadLineStaysHalfLoaded) {
  setup.Record = TenVolts();
  ASSERT_TRUE(setup.SaveDef(t.directory.File("a.csu")));
  std::vector<std::string> lines = ReadLines(t.directory.File("a.csu"));
  lines.resize(23);
  CalSetup other(t.shell);
  EXPECT_TRUE(other.LoadDef(t.directory.Write("23.csu", JoinLines(lines))));

  lines.resize(22);
  lines[0] = "1";
  other.Record.UserDefinedFactor = 5;
  const std::string path = t.directory.Write("22.csu", JoinLines(lines));
  EXPECT_FALSE(other.LoadDef(path));
  EXPECT_EQ(t.dialogs.LastText(), "Error # 62\rInput past end of file\rCalSetup.LoadDef\r" + path);
  EXPECT_EQ(other.Record.StartFreq, setup.Record.StartFreq);
  EXPECT_EQ(other.Record.UserDefinedFactor, 5);

  lines[7] = "ten";
  EXPECT_FALSE(other.LoadDef(t.directory.Write("bad.csu", JoinLines(lines))));
  EXPECT_FALSE(other.SaveDef(t.directory.File("no/such.csu")));
  EXPECT_TRUE(t.dialogs.WasShownContaining("CalSetup.SaveDef"));
}

TEST_F(CalSetupTest, TheFormOpensWithOtherThanItsDefaults) {
  setup.SetOpeningDefaults(Entries().InitLevel, 0.2);
  EXPECT_EQ(setup.Record.StartFreq, 0.15);
  EXPECT_EQ(setup.Record.StopFreq, 80);
  EXPECT_EQ(setup.Record.InitLevel, -60);
  EXPECT_EQ(setup.Record.Dwell, 0.2);
  setup.Record = TenVolts();
  setup.SetOpeningDefaults("-60", 0.2);
  EXPECT_TRUE(SameRecord(setup.Record, TenVolts()));
}

TEST_F(CalSetupTest, ShowingAndTakingASetupChangesIt) {
  setup.Record = TenVolts();
  setup.Record.CouplingMethod = 3;
  setup.Record.UserDefinedFactor = 9.5;
  Entries entries;
  EXPECT_TRUE(setup.SetupToForm(entries).empty());
  EXPECT_EQ(entries.FinalDwell, "0.3");
  EXPECT_EQ(entries.UserDefCF, "9.5");
  CalSetup other(t.shell);
  other.Record = setup.Record;
  other.Record.UserDefinedFactor = 0;
  EXPECT_FALSE(other.FormToSetup(entries, true));
  EXPECT_TRUE(SameRecord(other.Record, setup.Record));
  EXPECT_EQ(other.CouplingFactor(), 9.5);
}

TEST_F(CalSetupTest, ACodeWithoutAnOptionChangesTheOptions) {
  setup.Record = TenVolts();
  setup.Record.StepType = 3;
  setup.Record.LimitType = -1;
  setup.Record.CouplingMethod = 4;
  Entries entries;
  entries.StepType = 2;
  entries.LimitType = 1;
  entries.CouplingMethod = 3;
  EXPECT_EQ(setup.SetupToForm(entries),
            (std::vector<std::string>{"Error in Calsetup file, \r\nBad value for frequency step type",
                                      "Error in Calsetup file, \r\nBad value for limit type",
                                      "Error in Calsetup file, \r\nBad value for coupling method"}));
  EXPECT_EQ(entries.StepType, 2);
  EXPECT_EQ(entries.LimitType, 1);
  EXPECT_EQ(entries.CouplingMethod, 3);
}

TEST_F(CalSetupTest, AListDoesNotSetTheRange) {
  EXPECT_TRUE(setup.LoadFreqList(t.directory.Write("x.lst", "10\r\n20\r\n45.5\r\n")));
  EXPECT_EQ(setup.Record.StartFreq, 10);
  EXPECT_EQ(setup.Record.StopFreq, 45.5);
  EXPECT_FALSE(setup.LoadFreqList(t.directory.Write("y.lst", "Freq\r\n")));
  EXPECT_EQ(t.dialogs.LastText(), "Bad data in frequency list file");
  EXPECT_EQ(setup.Record.StopFreq, 45.5);
}

TEST(CalSetupValidation, ABadEntryIsTakenOrTheWrongBoxIsShown) {
  constexpr auto kNumber = Kind::NotANumber, kOutside = Kind::OutOfRange, kMessage = Kind::Message;
  constexpr Refusal<Entries> refusals[] = {
      {[](auto& e) { e.StartFreq = "0,15"; }, "txtStartFreq", 0, kNumber},
      {[](auto& e) { e.StopFreq = ""; }, "txtStopFreq", 0, kNumber},
      {[](auto& e) { e.StepType = 0, e.LinearStep = "x"; }, "txtLinearStep", 0, kNumber},
      {[](auto& e) { e.LogStep = "1%"; }, "txtLogStep", 0, kNumber},
      {[](auto& e) { e.CalLevel = "10v"; }, "txtCalLevel", 1, kNumber},
      {[](auto& e) { e.MaxLevel = "-1,5"; }, "txtMaxLev", 1, kNumber},
      {[](auto& e) { e.MaxStep = "x"; }, "txtMaxStep", 1, kNumber},
      {[](auto& e) { e.InitLevel = "x"; }, "txtInitLev", 1, kNumber},
      {[](auto& e) { e.RecordFwdPwr = e.LimitFwdPwr = true, e.FwdPwrLimit = ""; }, "txtFwdPwrLimit", 1, kNumber},
      {[](auto& e) { e.FinalDwell = "x"; }, "txtFinalDwell", 1, kNumber},
      {[](auto& e) { e.CouplingMethod = 3, e.UserDefCF = "x"; }, "txtUserDefCF", 2, kNumber},
      {[](auto& e) { e.StartFreq = "0", e.FinalDwell = "x"; }, "txtFinalDwell", 1, kNumber},
      {[](auto& e) { e.StartFreq = "0"; }, "txtStartFreq", 0, kOutside},
      {[](auto& e) { e.StopFreq = "0.15"; }, "txtStopFreq", 0, kOutside},
      {[](auto& e) { e.LogStep = "0"; }, "txtLogStep", 0, kOutside},
      {[](auto& e) { e.StepType = 0, e.LinearStep = "-1"; }, "txtLinearStep", 0, kOutside},
      {[](auto& e) { e.StepType = 2, e.ListFile = ""; }, "lblListFile", 0, kMessage},
      {[](auto& e) { e.LimitType = 1, e.LimitFile = ""; }, "lblLimitFile", 1, kMessage},
      {[](auto& e) { e.CalLevel = "0"; }, "txtCalLevel", 1, kOutside},
      {[](auto& e) { e.InitLevel = "7"; }, "txtInitLev", 1, kOutside},
      {[](auto& e) { e.MaxLevel = "1e39"; }, "txtMaxLev", 1, kOutside},
      {[](auto& e) { e.MaxStep = "0"; }, "txtMaxStep", 1, kOutside},
      {[](auto& e) { e.RecordFwdPwr = e.LimitFwdPwr = true, e.FwdPwrLimit = "0"; }, "txtFwdPwrLimit", 1, kOutside},
      {[](auto& e) { e.FinalDwell = "-1"; }, "txtFinalDwell", 1, kOutside},
  };
  ExpectRefused(refusals, EntriesOf(TenVolts()).Entries, [](Entries& entries) {
    CalSetupRecord setup;
    EXPECT_FALSE(ValidateCalSetup(entries, false, setup)) << "closing the form refuses nothing";
    return ValidateCalSetup(entries, true, setup);
  });
}

TEST(CalSetupValidation, AHiddenBoxIsCheckedOrAGoodEntryRefused) {
  Entries entries = EntriesOf(TenVolts()).Entries;
  entries.LinearStep = entries.FwdPwrLimit = entries.UserDefCF = "x";
  entries.FinalDwell = "0";
  CalSetupRecord setup;
  setup.UserDefinedFactor = 4;
  EXPECT_FALSE(ValidateCalSetup(entries, true, setup));
  EXPECT_EQ(setup.Dwell, 0);
  EXPECT_EQ(setup.UserDefinedFactor, 4);

  entries.StepType = 2;
  entries.LimitType = 1;
  entries.LogStep = entries.CalLevel = "x";
  EXPECT_FALSE(ValidateCalSetup(entries, true, setup));
  EXPECT_EQ(setup.ListFile, "/lists/x.lst");
  EXPECT_EQ(setup.LimitFile, "/levels/y.lev");
  EXPECT_TRUE(setup.HasLevelFile());
}

TEST(CalSetupValidation, AFailureStoresWhatComesBehindIt) {
  Entries entries = EntriesOf(TenVolts()).Entries;
  entries.CalLevel = "0";
  entries.MaxLevel = "1";
  CalSetupRecord setup;
  EXPECT_TRUE(ValidateCalSetup(entries, true, setup));
  EXPECT_EQ(setup.StopFreq, 80);
  EXPECT_EQ(setup.CalLevel, 0);
  EXPECT_EQ(setup.MaxLevel, 0);
}

TEST(CalSetupValidation, ClosingTheFormLosesWhatWasTyped) {
  Entries entries = EntriesOf(TenVolts()).Entries;
  entries.StartFreq = "-5";
  entries.StopFreq = "no number";
  entries.MaxLevel = "1e39";
  entries.StepType = Entries::kNoChoice;
  entries.CouplingMethod = 3;
  entries.UserDefCF = "11";
  entries.AmpUsed = "another";
  CalSetupRecord setup = TenVolts();
  EXPECT_FALSE(ValidateCalSetup(entries, false, setup));
  EXPECT_EQ(setup.StartFreq, -5);
  EXPECT_EQ(setup.StopFreq, 80);
  EXPECT_EQ(setup.MaxLevel, 7);
  EXPECT_EQ(setup.StepType, 1);
  EXPECT_EQ(setup.AmpUsed, "another");
  EXPECT_EQ(setup.UserDefinedFactor, 11);
}

TEST(CalSetupControls, ATickLeavesAnImpossibleCombination) {
  Entries entries;
  entries.LimitFwdPwr = true;
  LimitFwdPwrClicked(entries);
  EXPECT_TRUE(entries.RecordFwdPwr);
  entries.RecordFwdPwr = false;
  entries.RecordRevPwr = true;
  RecordFwdPwrClicked(entries);
  EXPECT_FALSE(entries.RecordRevPwr || entries.LimitFwdPwr);
  entries.RecordRevPwr = true;
  RecordRevPwrClicked(entries);
  EXPECT_TRUE(entries.RecordFwdPwr);
  RecordFwdPwrClicked(entries);
  EXPECT_TRUE(entries.RecordRevPwr);
  ListFileChanged(entries);
  EXPECT_EQ(entries.StepType, 2);

  CalSetupRecord fromFile = TenVolts();
  fromFile.RecordFwdPwr = 0;
  fromFile.LimitFwdPwr = 1;
  EXPECT_TRUE(EntriesOf(fromFile).Entries.RecordFwdPwr);
}

TEST(CalSetupControls, ABoxThatIsNotUsedCanBeTypedInto) {
  Entries entries;
  EXPECT_EQ(EnabledControlsFor(entries), (EnabledCalControls{.LinearStep = true, .CalLevel = true}));
  entries.StepType = 1;
  entries.LimitType = 1;
  entries.LimitFwdPwr = true;
  EXPECT_EQ(EnabledControlsFor(entries), (EnabledCalControls{.LogStep = true, .LimitFile = true, .FwdPwrLimit = true}));
  entries.StepType = 2;
  entries.CouplingMethod = 3;
  EXPECT_TRUE(EnabledControlsFor(entries).ListFile);
  EXPECT_TRUE(EnabledControlsFor(entries).UserDefCF);
}

TEST(CheckStation, ACalibrationStartsWithoutWhatItNeeds) {
  EquipRecord all;
  all.SigGenFile = all.MeterFile = all.PwrMtrFile = "x";
  all.CableLossFile = all.FwdPortFile = all.RevPortFile = "x";
  all.AmpConfiguration = 1;
  CalSetupRecord plain = TenVolts(), forward = plain, both = plain;
  plain.RecordFwdPwr = 0;
  both.RecordRevPwr = 1;
  for (const CalSetupRecord& setup : {plain, forward, both}) EXPECT_FALSE(CheckStation(setup, all));

  const struct {
    const CalSetupRecord& setup;
    std::function<void(EquipRecord&)> change;
    const char* text;
    int tab;
  } cases[] = {
      {plain, [](EquipRecord& e) { e.MeterFile = ""; }, "The signal generator and meter must both be selected", 0},
      {both, [](EquipRecord& e) { e.SigGenFile = e.PwrMtrFile = ""; },
       "The signal generator and meter must both be selected", 0},
      {forward, [](EquipRecord& e) { e.PwrMtrFile = e.FwdPortFile = ""; },
       "The power meter must be selected for this calibration", 0},
      {forward, [](EquipRecord& e) { e.FwdPortFile = e.CableLossFile = ""; },
       "No forward coupler port file has been selected", 1},
      {both, [](EquipRecord& e) { e.AmpConfiguration = 2, e.RevPortFile = ""; },
       "Power Meter must be dual channel for this calibration", 0},
      {both, [](EquipRecord& e) { e.RevPortFile = e.CableLossFile = ""; },
       "No reverse coupler port file has been selected", 1},
      {plain, [](EquipRecord& e) { e.CableLossFile = e.PwrMtrFile = ""; }, "No cable loss file has been selected", 1},
  };
  for (const auto& c : cases) {
    EquipRecord equipment = all;
    c.change(equipment);
    const auto failure = CheckStation(c.setup, equipment);
    ASSERT_TRUE(failure) << c.text;
    EXPECT_EQ(failure->Text, c.text);
    EXPECT_EQ(failure->EquipmentTab, c.tab) << c.text;
  }
}

TEST(CouplingFactor, AMethodHasAnotherFactor) {
  const double factors[] = {15.5, 6, 0, 9.25};
  for (int method = 0; method < 4; ++method) EXPECT_EQ(CouplingFactorDb(method, 9.25F), factors[method]) << method;
}

TEST(CalInfoOfSetup, TheRecordTellsAnotherCalibration) {
  CalSetupRecord setup = TenVolts();
  setup.CalLevel = 3;
  CalInfoRec info = CalInfoOf(setup);
  EXPECT_EQ(info.TestLevel, "3v");
  EXPECT_EQ(info.FreqRange, "0.15 - 80");
  EXPECT_EQ(info.DeviceDescription, "CDN M2, no. 4711");
  setup.LimitType = 1;
  EXPECT_EQ(CalInfoOf(setup).TestLevel, "/levels/y.lev");
  EXPECT_EQ(info.SetupDescription, "10 V");
  setup.CouplingMethod = 3;
  setup.UserDefinedFactor = 9.1F;
  EXPECT_EQ(CalInfoOf(setup).SetupDescription, "10 V, coupling factor 9.1 dB");
  setup.SetupDescription = "";
  EXPECT_EQ(CalInfoOf(setup).SetupDescription, "coupling factor 9.1 dB");
}

}  // namespace
}  // namespace hylden
