#include "documents/TestSetup.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "documents/RoundTrip.h"
#include "support/ReadLines.h"
#include "support/TestShell.h"
#include "text/ExistingPath.h"

namespace hylden {
namespace {

TestDefinition AmSweep() {
  TestDefinition test;
  test.CalInfoFile = "/cal/CDN, 10 V.hyinfo";
  test.StartFreq = 0.15;
  test.StopFreq = 80;
  test.FreqSweep = true;
  test.StepType = StepType::Log;
  test.LinearStep = 0.5;
  test.LogStep = 1;
  test.SweepDwell = 2;
  test.ListFile = "/lists/x.lst";
  test.DiscreteDwell = 3;
  test.ModType = Modulation::Am;
  test.AmDepth = 80;
  test.AmModFreq = 1;
  test.FmDev = 10;
  test.FmModFreq = 0.4F;
  test.PulseWidth = 1;
  test.PulsePeriod = 4.6F;
  test.InitLevOffset = -6;
  test.LevelInc = 1.25F;
  test.InterDwell = 0.2F;
  test.ExtrapolateTo = -3;
  test.LimitMargin = 2;
  test.EUTCircuitImpedance = 150;
  test.ModOffBetweenFreqs = true;
  return test;
}

class TestSetupTest : public testing::Test {
 protected:
  std::string Summary() { return setup.StringPrintTestSetup(); }

  TestShell t;
  CalInfo calInfo{t.shell};
  TestSetup setup{t.shell, calInfo};
};

TEST_F(TestSetupTest, KeepsEveryFieldInItsPlaceInTheFile) {
  setup.Definition = AmSweep();
  ASSERT_TRUE(setup.SaveDef(t.directory.File("a.tst")));
  EXPECT_EQ(t.directory.Read("a.tst"),
            "/cal/CDN, 10 V.hyinfo\r\n .15\r\n 80\r\nTrue\r\n 1\r\n .5\r\n 1\r\n 2\r\nFalse\r\n/lists/x.lst\r\n 3\r\n"
            " 1\r\n 80\r\n 1\r\n 10\r\n .4\r\n 1\r\n 4.6\r\nFalse\r\n 0\r\n-6\r\n 1.25\r\n .2\r\n 0\r\nFalse\r\n-3\r\n"
            "False\r\nFalse\r\n 2\r\n 150\r\nTrue\r\nFalse\r\n\r\n\r\n\r\n\r\n\r\n");
  TestSetup other(t.shell, calInfo);
  ExpectEveryFieldSurvives(t.directory, setup, other, &TestSetup::Definition);
  EXPECT_EQ(setup.TestFileName, t.directory.File("first"));
}

/// The file of AmSweep with one line replaced; lines count from 1.
std::string FileWithLine(const TempDir& directory, int number, const std::string& text) {
  std::vector<std::string> lines = ReadLines(directory.File("a.tst"));
  lines.at(static_cast<std::size_t>(number) - 1) = text;
  return directory.Write("changed.tst", JoinLines(lines) + "whatever follows\r\n");
}

TEST_F(TestSetupTest, ConvertsEachLineToItsType) {
  setup.Definition = AmSweep();
  ASSERT_TRUE(setup.SaveDef(t.directory.File("a.tst")));
  TestSetup other(t.shell, calInfo);
  ASSERT_TRUE(other.LoadDef(FileWithLine(t.directory, 31, "")));
  EXPECT_FALSE(other.Definition.ModOffBetweenFreqs);
  ASSERT_TRUE(other.LoadDef(FileWithLine(t.directory, 32, "-1")));
  EXPECT_TRUE(other.Definition.UseAMdepth);
  ASSERT_TRUE(other.LoadDef(FileWithLine(t.directory, 2, "  +1.5E-1  ")));
  EXPECT_EQ(other.Definition.StartFreq, 0.15);
  std::vector<std::string> lines = ReadLines(t.directory.File("a.tst"));
  lines.resize(32);
  ASSERT_TRUE(other.LoadDef(t.directory.Write("cut.tst", JoinLines(lines))));
  EXPECT_EQ(other.Definition.EUTCircuitImpedance, AmSweep().EUTCircuitImpedance);
  ASSERT_TRUE(other.LoadDef(FileWithLine(t.directory, 33, "kept")));
  EXPECT_EQ(other.Definition.Spare1, "kept");
}

TEST_F(TestSetupTest, LeavesNothingHalfLoadedBehindABadLine) {
  setup.Definition = AmSweep();
  ASSERT_TRUE(setup.SaveDef(t.directory.File("a.tst")));
  const std::string before = setup.TestFileName;
  setup.Definition.StartFreq = 7;
  setup.Definition.EUTCircuitImpedance = 7;
  const std::pair<int, const char*> rows[] = {{3, ""},           {4, "yes"}, {9, ""},    {13, "1E39"},
                                              {5, "3000000000"}, {26, "- "}, {3, "80,5"}};
  for (const auto& [line, text] : rows) {
    EXPECT_FALSE(setup.LoadDef(FileWithLine(t.directory, line, text))) << line;
    EXPECT_TRUE(t.dialogs.LastText().ends_with("\rTestSetup.LoadDef\r" + t.directory.File("changed.tst")));
    EXPECT_EQ(setup.Definition.StartFreq, 7) << line;
    EXPECT_EQ(setup.Definition.EUTCircuitImpedance, 7) << line;
  }
  EXPECT_FALSE(setup.LoadDef(t.directory.Write("short.tst", "x\r\n 1\r\n")));
  EXPECT_EQ(setup.Definition.StartFreq, 7);
  EXPECT_FALSE(setup.LoadDef(t.directory.File("missing.tst")));
  EXPECT_FALSE(setup.SaveDef(t.directory.Path()));
  EXPECT_TRUE(t.dialogs.LastText().ends_with("\rTestSetup.SaveDef\r" + t.directory.Path()));
  EXPECT_EQ(setup.TestFileName, before);
}

TEST_F(TestSetupTest, FilesBesideTheDefinitionAreFound) {
  const std::string info = t.directory.Write("lab/x.hyinfo", "");
  const std::string list = t.directory.Write("lab/lists/x.lst", "10\r\n");
  setup.Definition = AmSweep();
  setup.Definition.CalInfoFile = "X.hyinfo";
  setup.Definition.ListFile = "lists\\x.lst";
  ASSERT_TRUE(setup.SaveDef(t.directory.File("lab/a.tst")));
  const std::string written = t.directory.Read("lab/a.tst");
  ASSERT_TRUE(setup.LoadDef(t.directory.File("lab/a.tst")));
  EXPECT_EQ(ExistingPath(setup.Definition.CalInfoFile), info);
  EXPECT_EQ(ExistingPath(setup.Definition.ListFile), list);
  ASSERT_TRUE(setup.SaveDef(t.directory.File("lab/b.tst")));
  EXPECT_EQ(t.directory.Read("lab/b.tst"), written) << "the set can still be moved";
  ASSERT_TRUE(setup.SaveDef(t.directory.File("c.tst")));
  TestSetup other(t.shell, calInfo);
  ASSERT_TRUE(other.LoadDef(t.directory.File("c.tst")));
  EXPECT_EQ(ExistingPath(other.Definition.CalInfoFile), info) << "from elsewhere it needs the whole path";
}

TEST_F(TestSetupTest, LogsEveryLoad) {
  WorkingDirectory here(t.directory.Path());
  t.shell.settings.Store().SaveSettingInt("System", "LogToFile", 1);
  ASSERT_TRUE(setup.SaveDef("a.tst"));
  ASSERT_TRUE(setup.LoadDef("a.tst"));
  setup.LoadDef("missing.tst");
  EXPECT_EQ(t.directory.Read("runlog.hyl"),
            "01/05/26 09:00:00 - Test file saved: a.tst\r\n01/05/26 09:00:00 - Test file: a.tst\r\n");
}

TEST_F(TestSetupTest, KnowsAReadOnlyFile) {
  EXPECT_FALSE(setup.TestFileReadOnly());
  ASSERT_TRUE(setup.SaveDef(t.directory.File("a.tst")));
  EXPECT_FALSE(setup.TestFileReadOnly());
  std::filesystem::permissions(setup.TestFileName, std::filesystem::perms::owner_read);
  EXPECT_TRUE(setup.TestFileReadOnly());
  EXPECT_FALSE(setup.SaveDef(setup.TestFileName));
  setup.TestFileName = t.directory.File("gone.tst");
  EXPECT_FALSE(setup.TestFileReadOnly());
}

TEST_F(TestSetupTest, SummarisesTheTest) {
  setup.Definition = AmSweep();
  calInfo.Record = {"CDN calibration", "Amp", "CDN-M2", "10v", "0.15 - 80", CouplingMethod::Clamp150Ohm};
  EXPECT_EQ(Summary(),
            "                 Test Run Parameters\r\n"
            "\r\n"
            "       Cal Info File: /cal/CDN, 10 V.hyinfo\r\n"
            "         Description: CDN calibration\r\n"
            "     Coupling Device: CDN-M2\r\n"
            "           Amplifier: Amp\r\n"
            "          Test Level: 10v\r\n"
            "          Freq Range: 0.15 - 80.0\r\n"
            "          Sweep Type: Log, step size 1.00%\r\n"
            "               Dwell: 2.0 secs\r\n"
            "          Modulation: AM 1.0 kHz 80.0%\r\n"
            "Mod off between freqs.\r\n"
            "Initial Level Offset: -6.0dB\r\n"
            " Max Level Increment: 1.3dB\r\n"
            "  Intermediate Dwell: 0.2 secs\r\n"
            "     Leveling Method: Signal Generator values\r\n");
}

TEST_F(TestSetupTest, ShowsALineOfTheSummaryWhereItsFieldAsksForIt) {
  struct Row {
    const char* line;
    std::function<void(TestDefinition&)> change;
  };
  const Row rows[] = {
      {" Levels in calibration file adjusted down by -3.0dB", [](auto& d) { d.Extrapolate = true; }},
      {"          Sweep Type: Linear, step size 0.5 MHz", [](auto& d) { d.StepType = StepType::Linear; }},
      {"       Discrete List: /lists/x.lst\r\n               Dwell: 3.0 secs", [](auto& d) { d.FreqList = true; }},
      {"          Modulation: AM 1.0 kHz 80.0%, Constant Peak", [](auto& d) { d.ConstPeak = true; }},
      {"          Modulation: FM 0.4 kHz Freq, 10.0 kHz deviation", [](auto& d) { d.ModType = Modulation::Fm; }},
      {"          Modulation: Pulse 4.6mS period, 1.0mS width", [](auto& d) { d.ModType = Modulation::Pulse; }},
      {"Mod off between freqs, using AM depth.", [](auto& d) { d.UseAMdepth = true; }},
      {"     Leveling Method: Forward Power", [](auto& d) { d.LevelingMethod = LevelingMethod::ForwardPower; }},
      {"     Leveling Method: Net Power", [](auto& d) { d.LevelingMethod = LevelingMethod::NetPower; }},
      {" Probe feedback used during test but not used to limit induced level.\r\n   Circuit Impedance: 150.0 ohms",
       [](auto& d) { d.MonitorProbe = true; }},
      {" Probe feedback used during test to limit induced level 2.0dB relative to test level.",
       [](auto& d) { d.MonitorProbe = d.LimitCurrent = true; }},
  };
  for (const Row& row : rows) {
    setup.Definition = AmSweep();
    EXPECT_EQ(Summary().find("\r\n" + std::string(row.line) + "\r\n"), std::string::npos) << row.line;
    row.change(setup.Definition);
    EXPECT_NE(Summary().find("\r\n" + std::string(row.line) + "\r\n"), std::string::npos) << Summary();
  }
  setup.Definition = TestDefinition{};
  for (const char* absent : {"Sweep Type", "               Dwell", "Modulation", "Mod off", "Probe", "Discrete"})
    EXPECT_EQ(Summary().find(absent), std::string::npos) << absent;
}

TEST_F(TestSetupTest, PrintsThePageThatTheTextHas) {
  setup.Definition = AmSweep();
  setup.Definition.UseAMdepth = true;
  setup.PrintTestSetup(setup.Definition);
  const std::vector<std::string> lines = t.printer.Lines();
  const auto at = std::find(lines.begin(), lines.end(), "Modulation off between frequencies");
  ASSERT_NE(at, lines.end());
  EXPECT_EQ(at[1], "Use AM Depth to turn off modulation between freqs");
  EXPECT_EQ(lines.front(), "                 Test Run Parameters");
  EXPECT_EQ(lines.back(), "     Leveling Method: Signal Generator values");

  t.printer.failure = ErrorNumber::DeviceIoError;
  setup.PrintTestSetup(setup.Definition);
  EXPECT_TRUE(t.dialogs.WasShownContaining("\rTestSetup.PrintTestSetup\r"));
}

}  // namespace
}  // namespace hylden
