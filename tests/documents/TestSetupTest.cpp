#include "documents/TestSetup.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "documents/CalSetup.h"
#include "support/ReadLines.h"
#include "support/SampleDocuments.h"
#include "support/TestShell.h"
#include "support/Told.h"

namespace hylden {
namespace {

TestDefinition AmSweep() {
  TestDefinition test = RecordOf<TestDefinition>(kTestFile);
  test.LevelingMethod = LevelingMethod::SigGen;
  test.MonitorProbe = false;
  return test;
}

class TestSetupTest : public testing::Test {
 protected:
  std::string Summary() { return setup.StringPrintTestSetup(); }

  TestShell t;
  CalInfo calInfo;
  TestSetup setup{t.shell, calInfo};
};

TEST_F(TestSetupTest, OlderFilesEndAtTheirFlagsOrBeforeThem) {
  setup.Definition = AmSweep();
  setup.Definition.Spare1 = "kept";
  ASSERT_TRUE(setup.SaveDef(t.directory.File("a.tst")));
  const std::vector<std::string> whole = ReadLines(t.directory.File("a.tst"));
  for (const std::size_t lines : {30U, 31U, 32U, 33U})
    for (const bool emptied : {false, true}) {
      SCOPED_TRACE(testing::Message() << lines << emptied);
      std::vector<std::string> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(lines));
      if (emptied) cut.resize(cut.size() + 7 - (lines - 30));
      ASSERT_TRUE(setup.LoadDef(t.directory.Write("cut.tst", JoinLines(cut))));
      EXPECT_EQ(setup.Definition.EUTCircuitImpedance, 150);
      EXPECT_EQ(setup.Definition.ModOffBetweenFreqs, lines > 30);
      EXPECT_EQ(setup.Definition.Spare1, lines > 32 ? "kept" : "");
    }
  EXPECT_FALSE(setup.LoadDef(t.directory.File("missing.tst")));
  EXPECT_EQ(setup.TestFileName, t.directory.File("cut.tst"));
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
  const std::pair<const char*, std::function<void(TestDefinition&)>> rows[] = {
      {" Levels in calibration file adjusted down by -3.0dB", [](auto& d) { d.Extrapolate = true; }},
      {"          Sweep Type: Linear, step size 0.5 MHz", [](auto& d) { d.StepType = StepType::Linear; }},
      {"       Discrete List: /lists/x.lst\r\n               Dwell: 3.0 secs", [](auto& d) { d.FreqList = true; }},
      {"          Modulation: AM 1.0 kHz 80.0%, Constant Peak", [](auto& d) { d.ConstPeak = true; }},
      {"          Modulation: FM 0.4 kHz Freq, 10.0 kHz deviation", [](auto& d) { d.ModType = Modulation::Fm; }},
      {"          Modulation: Pulse 4.6mS period, 1.5mS width", [](auto& d) { d.ModType = Modulation::Pulse; }},
      {"Mod off between freqs, using AM depth.", [](auto& d) { d.UseAMdepth = true; }},
      {"     Leveling Method: Forward Power", [](auto& d) { d.LevelingMethod = LevelingMethod::ForwardPower; }},
      {"     Leveling Method: Net Power", [](auto& d) { d.LevelingMethod = LevelingMethod::NetPower; }},
      {" Probe feedback used during test but not used to limit induced level.\r\n   Circuit Impedance: 150.0 ohms",
       [](auto& d) { d.MonitorProbe = true; }},
      {" Probe feedback used during test to limit induced level 2.0dB relative to test level.",
       [](auto& d) { d.MonitorProbe = d.LimitCurrent = true; }},
  };
  for (const auto& [line, change] : rows) {
    setup.Definition = AmSweep();
    EXPECT_EQ(Summary().find("\r\n" + std::string(line) + "\r\n"), std::string::npos) << line;
    change(setup.Definition);
    EXPECT_NE(Summary().find("\r\n" + std::string(line) + "\r\n"), std::string::npos) << Summary();
  }
  setup.Definition = TestDefinition{};
  for (const char* absent : {"Sweep Type", "               Dwell", "Modulation", "Mod off", "Probe", "Discrete"})
    EXPECT_EQ(Summary().find(absent), std::string::npos) << absent;
}

TEST_F(TestSetupTest, PrintsThePageThatTheTextHas) {
  setup.Definition = AmSweep();
  setup.Definition.UseAMdepth = true;
  EXPECT_TRUE(setup.PrintTestSetup(setup.Definition));
  const std::vector<std::string> lines = t.printer.Lines();
  const auto at = std::find(lines.begin(), lines.end(), "Modulation off between frequencies");
  ASSERT_NE(at, lines.end());
  EXPECT_EQ(at[1], "Use AM Depth to turn off modulation between freqs");
  EXPECT_EQ(lines.front(), "                 Test Run Parameters");
  EXPECT_EQ(lines.back(), "     Leveling Method: Signal Generator values");

  t.printer.failure = ErrorNumber::DeviceIoError;
  EXPECT_EQ(Told(setup.PrintTestSetup(setup.Definition)),
            std::vector<std::string>{"Error # 57\rDevice I/O error\rTestSetup.PrintTestSetup\r"});
}

TEST_F(TestSetupTest, TemplatesBeginNewDocumentsThatAreCompleteButForTheLabsOwn) {
  std::size_t templates = 0;
  for (const auto& file : std::filesystem::directory_iterator(HYLDEN_SOURCE_DIR "/examples/templates")) {
    SCOPED_TRACE(file.path().string());
    ++templates;
    if (file.path().extension() == ".csu") {
      CalSetup calibration;
      calibration.FileName = "old.csu";
      ASSERT_TRUE(calibration.NewFrom(file.path().string()));
      EXPECT_EQ(calibration.FileName, "");
      EXPECT_FALSE(ValidateCalSetup(EntriesOf(calibration.Record).Entries, true, calibration.Record));
      continue;
    }
    setup.Definition.CalInfoFile = "/lab/own.hyinfo";
    ASSERT_TRUE(setup.NewFrom(file.path().string()));
    EXPECT_EQ(setup.TestFileName, "");
    EXPECT_EQ(setup.Definition.CalInfoFile, "/lab/own.hyinfo");
    FormEntries entries = EntriesShowing(setup.Definition);
    EXPECT_FALSE(ValidateTestDefinition(entries, "0.15 - 230", setup.Definition).Failure);
  }
  EXPECT_GE(templates, 6U);
}

}  // namespace
}  // namespace hylden
