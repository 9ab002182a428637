#include "documents/Equip.h"

#include <gtest/gtest.h>

#include "documents/CalSetup.h"
#include "documents/TestSetup.h"
#include "instruments/Instruments.h"
#include "support/SameRecord.h"
#include "support/TestShell.h"

namespace hylden {
namespace {

using Kind = EntryFailure::Kind;

EquipRecord Station() {
  EquipRecord station;
  station.SigGenFile = "C:\\lab, one\\gen.sg";
  station.SigGenAddress = 18;
  station.MeterFile = "/lab/meter.mtr";
  station.MeterAddress = 13;
  station.PwrMtrFile = "/lab/power.pm";
  station.PwrMtrAddress = 5;
  station.AmpConfiguration = AmpConfig::DualSplit;
  station.PmBandSwitch = 0.5;
  station.CableLossFile = "cable.los";
  station.AmplifierType = AmpType::Ifi;
  station.IfiPower = true;
  station.IfiBandSwitch = 215;
  return station;
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
  equip.Record.FwdPortFile = "forward.fac";
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
  const struct {
    std::function<void(EquipRecord&)> spoil;
    const char* told;
  } rows[] = {
      {[](EquipRecord& r) { r.SigGenAddress = 31; }, "address of the signal generator, 31, is not from 0 to 30"},
      {[](EquipRecord& r) { r.MeterAddress = -1; }, "address of the meter, -1, is not from 0 to 30"},
      {[](EquipRecord& r) { r.PwrMtrAddress = 99; }, "address of the power meter, 99, is not from 0 to 30"},
      {[](EquipRecord& r) { r.IfiBandSwitch = 80.5; },
       "band switch of the IFI amplifier, 80.5, is not from 200 to 230 MHz"},
  };
  for (const auto& row : rows) {
    equip.Record = Station();
    row.spoil(equip.Record);
    const auto failure = Apply(equip.Entries());
    ASSERT_TRUE(failure) << row.told;
    EXPECT_EQ(BadEntryText(*failure, equip.Record, "/lab/a.eqp"),
              "The equipment file holds an entry that can't be used:\r\n/lab/a.eqp\r\nThe " + std::string(row.told));
  }
}

TEST_F(EquipTest, TakesWholeAddressesWithinTheirRange) {
  const struct {
    const char* text;
    std::optional<Kind> failure;
  } rows[] = {{"0", {}},
              {" 30 ", {}},
              {"2.0", {}},
              {"31", Kind::OutOfRange},
              {"-1", Kind::OutOfRange},
              {"1E9", Kind::OutOfRange},
              {"1.5", Kind::OutOfRange},
              {"", Kind::NotANumber},
              {"1,5", Kind::NotANumber},
              {"x", Kind::NotANumber}};
  for (const auto& [box, address] :
       {std::pair{"txtSigGenAddr", &EquipRecord::SigGenAddress}, std::pair{"txtMeterAddr", &EquipRecord::MeterAddress},
        std::pair{"txtPwrMtrAddr", &EquipRecord::PwrMtrAddress}})
    for (const auto& row : rows) {
      SCOPED_TRACE(std::string(box) + " " + row.text);
      equip.Record = Station();
      const int before = equip.Record.*address;
      FormEntries entries = equip.Entries();
      entries[box] = row.text;
      const auto failure = Apply(entries);
      EXPECT_EQ(failure ? std::optional(failure->Reason) : std::nullopt, row.failure);
      EXPECT_EQ(equip.Record.*address, failure ? before : ToInt16(row.text));
      EXPECT_EQ(failure ? failure->Control : box, box);
    }
}

TEST_F(EquipTest, AnInstrumentWithoutAFileNeedsAnAddress) {
  FormEntries entries = equip.Entries();
  EXPECT_EQ(entries["txtSigGenAddr"], "");
  entries["lblProbeFile"] = "new.prb";
  EXPECT_FALSE(Apply(entries));
  EXPECT_EQ(equip.Record.ProbeFile, "new.prb");
}

TEST_F(EquipTest, TakesABandSwitchWithinItsRange) {
  struct Row {
    const char* text;
    std::optional<Kind> failure;
    double stored;
  };
  const Row rows[] = {{"215", {}, 215},
                      {"200", {}, 200},
                      {"230", {}, 230},
                      {"199.9", Kind::OutOfRange, 199.9},
                      {"230.1", Kind::OutOfRange, 230.1},
                      {"two", Kind::NotANumber, 205}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    equip.Record = EquipRecord{};
    equip.Record.IfiBandSwitch = 205;
    equip.Record.PmBandSwitch = 205;
    FormEntries entries = equip.Entries();
    entries.Tick("optGenericAmp", false), entries.Tick("optIFIAmp");
    entries["txtIfiBandSwitch"] = row.text;
    entries.Tick("optSingle", false), entries.Tick("optDualFwdRev");
    const auto failure = Apply(entries);
    ASSERT_EQ(failure.has_value(), row.failure.has_value());
    for (double stored : {equip.Record.IfiBandSwitch, equip.Record.PmBandSwitch}) EXPECT_EQ(stored, row.stored);
    EXPECT_EQ(equip.Record.Is(AmpConfig::DualFwdRev), !failure) << "what follows a failure is not taken";
    if (!failure) continue;
    EXPECT_EQ(failure->Control, "txtIfiBandSwitch");
    EXPECT_EQ(failure->Reason, *row.failure);
  }
}

TEST_F(EquipTest, KeepsTheBandSwitchWithAGenericAmplifier) {
  equip.Record.PmBandSwitch = 100;
  FormEntries entries = equip.Entries();
  entries["txtIfiBandSwitch"] = "not asked for";
  EXPECT_FALSE(Apply(entries));
  EXPECT_EQ(equip.Record.PmBandSwitch, 100);
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
