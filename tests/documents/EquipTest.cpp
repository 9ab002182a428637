#include "documents/Equip.h"

#include <gtest/gtest.h>

#include "documents/CalSetup.h"
#include "documents/TestSetup.h"
#include "instruments/Instruments.h"
#include "support/FormTable.h"
#include "support/SameRecord.h"
#include "support/SampleDocuments.h"
#include "support/TestShell.h"

namespace hylden {
namespace {

EquipRecord Station() {
  return RecordOf<EquipRecord>(kEquipFile);
}

class EquipTest : public testing::Test {
 protected:
  std::optional<EntryFailure> Apply(const FormEntries& entries) { return equip.TakeEntries(entries); }

  TestShell t;
  Instruments instruments{t.shell};
  Equip equip{t.shell, instruments};
};

TEST_F(EquipTest, LoadsOlderAndForeignFiles) {
  // 17 lines, the last without an end, other line ends, blanks, and a name in Windows-1252.
  t.directory.Write("Old.EQP", "gen\xE9.sg\n18 \nm\n13\np\n 5\n2\n0.5\ncable.los\n\n\n\n\n1\ntrue\n0\n 215 ");
  ASSERT_TRUE(equip.LoadDef(t.directory.File("old.eqp")));
  EXPECT_EQ(equip.Record.SigGenFile, "gen\xC3\xA9.sg");
  EXPECT_TRUE(equip.Record.IfiPower);
  EXPECT_EQ(equip.Record.IfiBandSwitch, 215);
}

TEST_F(EquipTest, StartAsksForTheDefinitionsThatTheRunNeeds) {
  equip.Record = Station();
  EXPECT_FALSE(instruments.meter.LoadFile("missing.mtr"));
  EXPECT_FALSE(instruments.pm.LoadFile("missing.pm"));
  TestDefinition test;
  CalSetupRecord setup;
  EXPECT_FALSE(CheckStart(test, equip));
  test.MonitorProbe = true;
  EXPECT_EQ(CheckStart(test, equip).value().Text, "The meter definition could not be loaded:\r\n/lab/meter.mtr");
  EXPECT_EQ(CheckStation(setup, equip).value().Text, "The meter definition could not be loaded:\r\n/lab/meter.mtr");
  test.MonitorProbe = false;
  test.LevelingMethod = LevelingMethod::ForwardPower;
  EXPECT_EQ(CheckStart(test, equip).value().Text, "The power meter definition could not be loaded:\r\n/lab/power.pm");
  instruments.meter.PutDefinition({});
  EXPECT_FALSE(CheckStation(setup, equip));
  setup.RecordFwdPwr = 1;
  EXPECT_EQ(CheckStation(setup, equip).value().Text,
            "The power meter definition could not be loaded:\r\n/lab/power.pm");
}

TEST_F(EquipTest, NamesFileEntryAndRangeOfAStationThatCannotBeUsed) {
  const std::pair<std::function<void(EquipRecord&)>, const char*> rows[] = {
      {[](EquipRecord& r) { r.SigGenAddress = 31; }, "address of the signal generator, 31, is not from 0 to 30"},
      {[](EquipRecord& r) { r.MeterAddress = -1; }, "address of the meter, -1, is not from 0 to 30"},
      {[](EquipRecord& r) { r.PwrMtrAddress = 99; }, "address of the power meter, 99, is not from 0 to 30"},
      {[](EquipRecord& r) { r.IfiBandSwitch = 80.5; },
       "band switch of the IFI amplifier, 80.5, is not from 200 to 230 MHz"},
  };
  for (const auto& [spoil, told] : rows) {
    equip.Record = Station();
    spoil(equip.Record);
    const auto failure = Apply(equip.Entries());
    ASSERT_TRUE(failure) << told;
    EXPECT_EQ(BadEntryText(*failure, equip.Record, "/lab/a.eqp"),
              "The equipment file holds an entry that can't be used:\r\n/lab/a.eqp\r\nThe " + std::string(told));
  }
}

TEST_F(EquipTest, TakesWholeAddressesAndTheBandSwitchWithinTheirRanges) {
  constexpr Refusal<EquipRecord> refusals[] = {{{}, "txtSigGenAddr", "31"},       {{}, "txtSigGenAddr", "-1"},
                                               {{}, "txtSigGenAddr", "1E9"},      {{}, "txtMeterAddr", "1.5"},
                                               {{}, "txtMeterAddr", "31"},        {{}, "txtPwrMtrAddr", "-1"},
                                               {{}, "txtPwrMtrAddr", "31"},       {{}, "txtIfiBandSwitch", "0"},
                                               {{}, "txtIfiBandSwitch", "199.9"}, {{}, "txtIfiBandSwitch", "230.1"}};
  const auto take = [&](const FormEntries& entries) {
    equip.Record = Station();
    const auto failure = Apply(entries);
    EXPECT_TRUE(failure);
    EXPECT_EQ(equip.Record.SigGenAddress, 18);
    EXPECT_EQ(equip.Record.MeterAddress, 13);
    EXPECT_EQ(equip.Record.PwrMtrAddress, 5);
    EXPECT_TRUE(equip.Record.Is(AmpConfig::DualSplit)) << "what follows a failure is not taken";
    return failure;
  };
  EquipRecord other = Station();
  other.AmpConfiguration = AmpConfig::DualFwdRev;
  ExpectRefused(refusals, other, take);
  EXPECT_EQ(ExpectNumbersWanted(other, take), 4U);
  const std::pair<const char*, const char*> rows[] = {{"0", "200"}, {" 30 ", "230"}, {"2.0", "215"}};
  for (const auto& [address, bandSwitch] : rows) {
    FormEntries entries = EntriesShowing(Station());
    entries["txtSigGenAddr"] = entries["txtMeterAddr"] = entries["txtPwrMtrAddr"] = address;
    entries["txtIfiBandSwitch"] = bandSwitch;
    EXPECT_FALSE(Apply(entries));
    const EquipRecord& r = equip.Record;
    for (const int taken : {r.SigGenAddress, r.MeterAddress, r.PwrMtrAddress}) EXPECT_EQ(taken, std::stoi(address));
    for (const double taken : {r.IfiBandSwitch, r.PmBandSwitch}) EXPECT_EQ(taken, std::stod(bandSwitch));
  }
}

TEST_F(EquipTest, AnAddressWithoutAFileAndTheBandSwitchOfAGenericAmplifierAreNotLookedAt) {
  equip.Record.PmBandSwitch = 100;
  FormEntries entries = equip.Entries();
  EXPECT_EQ(entries["txtSigGenAddr"], "");
  entries["txtIfiBandSwitch"] = "not asked for";
  entries["lblProbeFile"] = "new.prb";
  EXPECT_FALSE(Apply(entries));
  EXPECT_EQ(equip.Record.PmBandSwitch, 100);
  EXPECT_EQ(equip.Record.ProbeFile, "new.prb");
}

TEST_F(EquipTest, KeepsTheRecordOfAnUntouchedForm) {
  equip.Record = Station();
  equip.Record.PmBandSwitch = equip.Record.IfiBandSwitch;
  for (const bool oddCodes : {false, true}) {
    if (oddCodes) equip.Record.AmpConfiguration = static_cast<AmpConfig>(7);
    if (oddCodes) equip.Record.AmplifierType = static_cast<AmpType>(9);
    const EquipRecord before = equip.Record;
    EXPECT_FALSE(Apply(equip.Entries()));
    EXPECT_TRUE(SameRecord(equip.Record, before));
  }
}

}  // namespace
}  // namespace hylden
