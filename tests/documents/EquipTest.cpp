#include "documents/Equip.h"

#include <gtest/gtest.h>

#include "documents/CalSetup.h"
#include "documents/RoundTrip.h"
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

TEST_F(EquipTest, KeepsEveryFieldInItsPlaceInTheFile) {
  equip.Record = Station();
  ASSERT_EQ(equip.SaveDef(t.directory.File("a.eqp")), 1);
  EXPECT_EQ(t.directory.Read("a.eqp"),
            "C:\\lab, one\\gen.sg\r\n 18\r\n/lab/meter.mtr\r\n 13\r\n/lab/power.pm\r\n 5\r\n 2\r\n .5\r\ncable.los\r\n"
            "\r\n\r\n\r\n\r\n 1\r\nTrue\r\nFalse\r\n 215\r\n"
            "\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\n");
  Equip other(t.shell, instruments);
  ExpectEveryFieldSurvives(t.directory, equip, other, &Equip::Record);
}

TEST_F(EquipTest, LoadsOlderAndForeignFiles) {
  equip.Record = Station();
  ASSERT_EQ(equip.SaveDef(t.directory.File("a.eqp")), 1);
  std::string bytes = t.directory.Read("a.eqp");
  Equip other(t.shell, instruments);
  EXPECT_EQ(other.LoadDef(t.directory.Write("short.eqp", bytes.substr(0, bytes.size() - 20))), 1);
  EXPECT_TRUE(SameRecord(other.Record, equip.Record));

  // 17 lines, the last without an end, other line ends, blanks, and a name in Windows-1252.
  std::string old = "gen\xE9.sg\n18 \nm\n13\np\n 5\n2\n0.5\ncable.los\n\n\n\n\n1\ntrue\n0\n 215 ";
  EXPECT_EQ(other.LoadDef(t.directory.Write("Old.EQP", old)), 1);
  EXPECT_EQ(other.Record.SigGenFile, "gen\xC3\xA9.sg");
  EXPECT_TRUE(other.Record.IfiPower);
  EXPECT_EQ(other.LoadDef(t.directory.File("old.eqp")), 1);
}

TEST_F(EquipTest, RefusesABadFile) {
  struct Row {
    const char* name;
    std::string bytes;
    int error;
  };
  const Row rows[] = {
      {"empty", "", 62},
      {"truncated", "new.sg\r\n 7\r\nm.mtr\r\n", 62},
      {"no number", "new.sg\r\n 7\r\nm.mtr\r\nseven\r\n", 13},
      {"empty number", "new.sg\r\n 7\r\nm.mtr\r\n\r\n", 13},
      {"too large a number", "new.sg\r\n 7\r\nm.mtr\r\n 40000\r\n", 6},
      {"binary", std::string("\0\1\2\r\n\xFF\xFE\0\r\n", 9), 13},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    equip.Record = Station();
    const std::string path = t.directory.Write("bad.eqp", row.bytes);
    EXPECT_EQ(equip.LoadDef(path), 0);
    EXPECT_TRUE(t.dialogs.LastText().starts_with("Error # " + std::to_string(row.error) + "\r"))
        << t.dialogs.LastText();
    EXPECT_TRUE(t.dialogs.LastText().ends_with("\rEquip.LoadDef\r" + path));
    EXPECT_TRUE(SameRecord(equip.Record, Station())) << "half a station drives nothing";
  }
  EXPECT_EQ(equip.LoadDef(t.directory.Path()), 0);
  EXPECT_EQ(equip.LoadDef(t.directory.File("missing.eqp")), 0);
  EXPECT_EQ(equip.LoadDef(""), 0);
  EXPECT_EQ(t.dialogs.messages.size(), std::size(rows) + 3);
}

TEST_F(EquipTest, TellsAFailedSave) {
  EXPECT_EQ(equip.SaveDef(t.directory.File("nowhere/a.eqp")), 0);
  EXPECT_TRUE(t.dialogs.LastText().ends_with("\rEquip.SaveDef\r" + t.directory.File("nowhere/a.eqp")));
}

TEST_F(EquipTest, LogsEveryLoad) {
  WorkingDirectory here(t.directory.Path());
  t.shell.settings.Store().SaveSettingInt("System", "LogToFile", 1);
  ASSERT_EQ(equip.SaveDef("a.eqp"), 1);
  ASSERT_EQ(equip.LoadDef("a.eqp"), 1);
  equip.LoadDef("missing.eqp");
  EXPECT_EQ(t.directory.Read("runlog.hyl"),
            "01/05/26 09:00:00 - Equip file saved: a.eqp\r\n01/05/26 09:00:00 - Equip file: a.eqp\r\n");
}

TEST_F(EquipTest, StartAsksForTheDefinitionsThatTheRunNeeds) {
  equip.Record = Station();
  equip.Record.FwdPortFile = "forward.fac";
  instruments.meter.LoadFile("missing.mtr");
  instruments.pm.LoadFile("missing.pm");
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

TEST_F(EquipTest, FilesBesideTheEquipmentFileAreFoundFromAnywhere) {
  t.directory.Write("lab/gen.sg", "");
  t.directory.Write("lab/cable.los", "1 1\r\n2 2\r\n");
  equip.Record.SigGenFile = "gen.sg";
  equip.Record.CableLossFile = "cable.los";
  equip.Record.ProbeFile = "nowhere.prb";
  ASSERT_EQ(equip.SaveDef(t.directory.File("lab/a.eqp")), 1);
  ASSERT_EQ(equip.LoadDef(t.directory.File("lab/a.eqp")), 1);
  EXPECT_EQ(equip.Record.SigGenFile, t.directory.File("lab/gen.sg"));
  EXPECT_EQ(equip.Record.CableLossFile, t.directory.File("lab/cable.los"));
  EXPECT_EQ(equip.Record.ProbeFile, "nowhere.prb");

  // Loaded by a relative path and saved elsewhere, the names hold from anywhere.
  const std::string before = t.directory.Read("lab/a.eqp");
  const std::pair<const char*, const char*> rows[] = {{"lab", "a.eqp"}, {"", "./lab/a.eqp"}, {"", "lab\\a.eqp"}};
  for (const auto& [folder, name] : rows) {
    SCOPED_TRACE(name);
    {
      const WorkingDirectory here(t.directory.File(folder));
      ASSERT_EQ(equip.LoadDef(name), 1);
      ASSERT_EQ(equip.SaveDef(t.directory.File("b.eqp")), 1);
      ASSERT_EQ(equip.SaveDef(t.directory.File("lab/a.eqp")), 1);
      EXPECT_EQ(t.directory.Read("lab/a.eqp"), before) << "the set can still be moved";
    }
    ASSERT_EQ(equip.LoadDef(t.directory.File("b.eqp")), 1);
    EXPECT_EQ(equip.Record.SigGenFile, t.directory.File("lab/gen.sg"));
    EXPECT_EQ(equip.Record.CableLossFile, t.directory.File("lab/cable.los"));
    EXPECT_EQ(equip.Record.ProbeFile, "nowhere.prb");
  }

  // Where the program was started a file of that name still comes first.
  t.directory.Write("here/cable.los", "1 1\r\n2 2\r\n");
  const WorkingDirectory here(t.directory.File("here"));
  ASSERT_EQ(equip.LoadDef(t.directory.File("lab/a.eqp")), 1);
  EXPECT_EQ(equip.Record.CableLossFile, "cable.los");
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

TEST_F(EquipTest, ABadAddressIsTaken) {
  struct Row {
    const char* text;
    std::optional<Kind> failure;
  };
  const Row rows[] = {{"0", {}},
                      {" 30 ", {}},
                      {"31", Kind::OutOfRange},
                      {"-1", Kind::OutOfRange},
                      {"1E9", Kind::OutOfRange},
                      {"30.4", Kind::OutOfRange},
                      {"1.5", Kind::OutOfRange},
                      {"2.0", {}},
                      {"", Kind::NotANumber},
                      {"1,5", Kind::NotANumber},
                      {"x", Kind::NotANumber}};
  equip.Record = Station();
  equip.Record.AmplifierType = AmpType::Generic;
  struct Box {
    const char* control;
    std::int16_t EquipRecord::*address;
  };
  const Box boxes[] = {
      {"txtSigGenAddr", &EquipRecord::SigGenAddress},
      {"txtMeterAddr", &EquipRecord::MeterAddress},
      {"txtPwrMtrAddr", &EquipRecord::PwrMtrAddress},
  };
  for (const Box& box : boxes) {
    for (const Row& row : rows) {
      SCOPED_TRACE(std::string(box.control) + " " + row.text);
      ASSERT_FALSE(Apply(equip.Entries()));
      const int before = equip.Record.*box.address;
      FormEntries entries = equip.Entries();
      entries[box.control] = row.text;
      const auto failure = Apply(entries);
      ASSERT_EQ(failure.has_value(), row.failure.has_value());
      EXPECT_EQ(equip.Record.*box.address, failure ? before : ToInt16(row.text));
      if (!failure) continue;
      EXPECT_EQ(failure->Control, box.control);
      EXPECT_EQ(failure->Reason, *row.failure);
    }
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
