#include "app/StartUp.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "app/Station.h"
#include "shell/RecentFiles.h"
#include "support/TestShell.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

const std::string kEquipLog = "equip file loaded from command line", kTestLog = "test file loaded from command line";

struct LineCase {
  const char* text;
  const char* equipFile;
  const char* testFile;
  std::vector<std::string> log;
  bool ok = true;
};

TEST(CommandLine, PiecesMeanWhatTheOperatorTyped) {
  const LineCase cases[] = {
      {"", "", "", {}},
      {R"("/e:My station.eqp" "/t:x.tst")", "My station.eqp", "x.tst", {kEquipLog, kTestLog}},
      {R"("/t: x.tst ")", "", " x.tst ", {kTestLog}},
      {"/e:a.eqp", "a.eqp", "", {kEquipLog}},
      {"/e:", "", "", {kEquipLog}},
      {"/e:a.eqp /t:x.tst", "a.eqp /t:x.tst", "", {kEquipLog}},
      {R"("/e:a" "/e:b")", "b", "", {kEquipLog, kEquipLog}},
      {R"("-x" "abc")", "", "", {}},
      {R"("/E:a.eqp")", "", "", {}, false},
      {R"("/e:a" "/x:abc" "/t:b")", "a", "", {kEquipLog}, false},
  };
  for (const LineCase& c : cases) {
    SCOPED_TRACE(c.text);
    const CommandLine line = ParseCommandLine(c.text);
    EXPECT_EQ(line.EquipFile, c.equipFile);
    EXPECT_EQ(line.TestFile, c.testFile);
    EXPECT_EQ(line.LogLines, c.log);
    EXPECT_EQ(line.Ok, c.ok);
  }
}

TEST(JoinArguments, GivesBackTheQuotesThatTheShellRemoved) {
  const std::string quoted = R"("/e:My station.eqp" "/t:x.tst")";
  EXPECT_EQ(JoinArguments({"/e:My station.eqp", "/t:x.tst"}), quoted);
  EXPECT_EQ(JoinArguments({quoted}), quoted);
  EXPECT_EQ(JoinArguments({}), "");
}

TEST(AsSwitch, AFileOpensAsWhatItIs) {
  const std::pair<const char*, const char*> cases[] = {
      {"My station.eqp", "/e:My station.eqp"},
      {"radio.RUN", "/r:radio.RUN"},
      {"/lab/AM.TST", "/t:/lab/AM.TST"},
      {"/e:a.eqp", "/e:a.eqp"},
      {"/t:x.eqp", "/t:x.eqp"},
      {"notes.txt", "notes.txt"},
      {"", ""},
  };
  for (const auto& [argument, expected] : cases) EXPECT_EQ(AsSwitch(argument), expected);
}

TEST(ArgumentFaults, TellsWhatCanNotBeOpened) {
  const TempDir directory;
  const std::string there = directory.Write("a.TST", ""), missing = directory.File("b.tst");
  const std::pair<std::string, std::string> cases[] = {
      {there, ""},
      {missing, "no such file: " + missing + "\n"},
      {"notes.txt", "not a kind of file that it opens: notes.txt\n"},
      {"--equipment", "unknown option: --equipment\n"},
      {"/e:none.eqp", ""},
      {"/x:none", ""},
      {R"("/e:My station.eqp")", ""},
      {"", ""},
  };
  for (const auto& [argument, fault] : cases) EXPECT_EQ(ArgumentFaults({argument}), fault);
}

class StartUpTest : public testing::Test {
 protected:
  StartUpTest() {
    SigGenDefinition generator;
    SaveRecord(t.directory.File("gen.sg"), generator);
    EquipRecord equipment;
    equipment.SigGenFile = t.directory.File("gen.sg");
    equipment.SigGenAddress = 18;
    SaveRecord("lab.eqp", equipment);
    SaveRecord("ring.hyinfo", CalInfoRec());
    TestDefinition test;
    test.CalInfoFile = "ring.hyinfo";
    SaveRecord("x.tst", test);
  }

  TestShell t;
  WorkingDirectory here{t.directory.Path()};
  Station station{t.shell};
  using Texts = std::vector<std::string>;
};

TEST_F(StartUpTest, GoesFromStationToTest) {
  EXPECT_EQ(StartUp(station, R"("/e:lab.eqp" "/t:x.tst")"), Opening::TestDefinition);
  EXPECT_EQ(t.dialogs.Texts(), Texts());
  EXPECT_EQ(station.documents.equip.EquipFileName, "lab.eqp");
  EXPECT_EQ(station.instruments.sigGen.Address(), 18);
  EXPECT_EQ(RecentFiles(t.shell.settings, datakind::kEquip).List(), Texts{t.directory.File("lab.eqp")});
  EXPECT_EQ(RecentFiles(t.shell.settings, datakind::kTestSetups).List(), Texts{t.directory.File("x.tst")});
}

TEST_F(StartUpTest, DefaultStationIsLoadedAndLogged) {
  t.shell.settings.Store().SaveSettingInt("System", "LogToFile", 1);
  t.shell.settings.SaveDefaultEquipFile("lab.eqp");
  EXPECT_EQ(StartUp(station, "/e:"), Opening::MainMenu);
  EXPECT_EQ(station.instruments.sigGen.Address(), 18);
  const std::string log = t.directory.Read("runlog.hyl");
  EXPECT_NE(log.find("equip file loaded from command line"), std::string::npos);
  EXPECT_NE(log.find("default equipment file loaded"), std::string::npos);
}

TEST_F(StartUpTest, WrongPieceLoadsNothingNotEvenTheDefault) {
  t.shell.settings.SaveDefaultEquipFile("lab.eqp");
  EXPECT_EQ(StartUp(station, R"("/e:lab.eqp" "/x:abc")"), Opening::MainMenu);
  EXPECT_EQ(station.documents.equip.EquipFileName, "");
  EXPECT_EQ(t.dialogs.Texts(), Texts{R"(Command line error, ("/e:lab.eqp" "/x:abc"))"});
  t.dialogs.Clear();
  t.shell.settings.SaveDefaultEquipFile("");
  EXPECT_EQ(StartUp(station, ""), Opening::MainMenu);
  EXPECT_EQ(t.dialogs.Texts(), Texts()) << "no station at all is no error";
}

TEST_F(StartUpTest, FailureIsToldAndStartUpGoesOnAsFarAsItCan) {
  const struct {
    const char* missing;
    const char* told;
    Opening opening;
  } rows[] = {{"x.tst", "Error loading test setup file: x.tst", Opening::MainMenu},
              {"lab.eqp", "Error loading equipment file lab.eqp", Opening::TestDefinition},
              {"ring.hyinfo", "Error loading calinfo file: ring.hyinfo", Opening::MainMenu}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.missing);
    const std::string bytes = t.directory.Read(row.missing);
    std::filesystem::remove(row.missing);
    t.dialogs.Clear();
    EXPECT_EQ(StartUp(station, R"("/e:lab.eqp" "/t:x.tst")"), row.opening);
    EXPECT_EQ(t.dialogs.messages.size(), 2U) << "why, and what it means for the start";
    EXPECT_EQ(t.dialogs.LastText(), row.told);
    t.directory.Write(row.missing, bytes);
  }
}

/// What goes from the equipment to the drivers.
class StationTest : public StartUpTest {
 protected:
  Instruments& instruments = station.instruments;
  Equip& equip = station.documents.equip;
};

TEST_F(StationTest, TheEquipmentsAddressesAndBandSwitchRule) {
  PowerMeterDefinition powerMeter;
  powerMeter.Bandswitch = 100;
  SaveRecord("power.pm", powerMeter);
  ASSERT_TRUE(station.LoadEquipment("lab.eqp"));
  equip.Record.PwrMtrFile = "power.pm";
  equip.Record.PwrMtrAddress = 5;
  equip.Record.IfiBandSwitch = 220;
  EXPECT_TRUE(station.Apply());
  EXPECT_EQ(instruments.sigGen.Address(), 18);
  EXPECT_EQ(instruments.pm.Address(), 5);
  EXPECT_EQ(instruments.pm.Bandswitch(), 100);
  equip.Record.AmplifierType = AmpType::Ifi;
  EXPECT_TRUE(station.Apply());
  EXPECT_EQ(instruments.pm.Bandswitch(), 220) << "an IFI amplifier's band switch rules";
}

TEST_F(StationTest, AMissingDefinitionLeavesNobodyElses) {
  SigGenDefinition former;
  former.InstrumentName = "Former";
  instruments.sigGen.PutDefinition(former);
  instruments.meter.PutDefinition({});
  equip.Record.SigGenFile = t.directory.File("missing.sg");
  EXPECT_FALSE(station.LoadDefinitions());
  EXPECT_EQ(t.dialogs.messages.size(), 1U);
  EXPECT_EQ(instruments.sigGen.InstrumentName(), "");
  EXPECT_FALSE(instruments.meter.HasDefinition()) << "the station has no meter";
  EXPECT_EQ(CheckStart(TestDefinition{}, equip)->Text,
            "The signal generator definition could not be loaded:\r\n" + equip.Record.SigGenFile);
}

TEST_F(StationTest, AnEntryThatCantBeUsedIsToldWithItsFile) {
  ASSERT_TRUE(station.LoadEquipment("lab.eqp"));
  equip.Record.SigGenAddress = 31;
  EXPECT_FALSE(station.Apply());
  EXPECT_EQ(t.dialogs.Texts(), Texts{"The equipment file holds an entry that can't be used:\r\nlab.eqp\r\n"
                                     "The address of the signal generator, 31, is not from 0 to 30"});
}

}  // namespace
}  // namespace hylden
