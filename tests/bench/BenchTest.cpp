#include "bench/Bench.h"

#include <gtest/gtest.h>

#include "bench/BareBench.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

TEST(Bench, TellsOfEveryChangeAndOfNothingElse) {
  BareBench rig;
  std::vector<BenchState> seen;
  rig.bench.OnChange([&](const BenchState& state) { seen.push_back(state); });
  for (const char* command : {"FR 10.0 MZ", "AP -12.0 DM", "AP -12.0 DM", "R1", "R1", "bad", "AM 80.0 PC", "R0"})
    rig.Send(18, command);
  ASSERT_EQ(seen.size(), 5u);
  EXPECT_FALSE(seen[1].Generator.RfOn);
  EXPECT_TRUE(IsMissing(seen[1].TestLevelDbuv));
  EXPECT_NEAR(seen[2].TestLevelDbuv, rig.bench.Path().CalibrationPort(10, -12).TestLevelDbuv, 1e-9);
  EXPECT_FALSE(seen[4].Generator.RfOn);
}

TEST(BenchFile, ErrorNamesTheLineAndTheFault) {
  const std::pair<const char*, const char*> rows[] = {
      {"\n# a comment\nnoise = 1\n", "line 3: unknown key noise"},
      {"noise_db = much\n", "line 1: noise_db must be a number from 0 to 10"},
      {"noise_db = -1\n", "line 1: noise_db must be a number from 0 to 10"},
      {"noise_db = 1\nnoise_db = 2\n", "line 2: noise_db is given twice"},
      {"seed = 1.5\n", "line 1: seed must be a whole number"},
      {"meter_at = wall\n", "line 1: meter_at must be one of port probe generator cable"},
      {"amplifier.protection = on\n", "line 1: amplifier.protection must be yes or no"},
      {"just words\n", "line 1: expected key = value, or [table]"},
      {"[gain]\n1 2\n", "line 1: unknown table gain"},
      {"[amplifier.gain\n", "line 1: a table's name stands between [ and ]"},
      {"amplifier.gain = 4\n", "line 1: amplifier.gain is a table: write [amplifier.gain] and a line for each point"},
      {"[amplifier.gain]\n1 45\n0.5 45\n", "line 3: the frequencies of amplifier.gain must rise"},
      {"[amplifier.gain]\n1\n", "line 2: a point of amplifier.gain is a frequency and a value"},
      {"[product.ohm]\n1 -5\n", "line 2: the value of product.ohm must be a number from 0.1 to 1000000"},
      {"[amplifier.gain]\n[product.ohm]\n1 5\n", "line 2: the table amplifier.gain has no points"},
      {"[amplifier.gain]\n", "line 1: the table amplifier.gain has no points"},
      {"fault = late meter 3\n", "line 1: fault needs the delay in ms as its last word"},
      {"fault = break meter 3\n", "line 1: fault kind must be one of fail late garbage silent absent protection"},
      {"fault = fail meter 0\n", "line 1: fault must be a number from 1 to 1000000000"}};
  for (const auto& [text, error] : rows) EXPECT_EQ(ParseBenchFile(text).Error, error);
  EXPECT_EQ(LoadBenchFile("no-such-bench.txt").Error.rfind("no-such-bench.txt: ", 0), 0u);
}

TEST(BenchFileText, ReadsBackAsTheConfigurationItWasWrittenFrom) {
  BenchConfig config;
  config.NoiseDb = 0.25, config.Seed = 42, config.Meter = MeterAt::Cable, config.Protection = true;
  config.MeterAnswer = "A = {level}";
  config.Detector = Detector::Average;
  config.ProductOhm = FrequencyTable{{1, 30}, {2, 40}};
  config.Faults = {{FaultKind::Late, BenchRole::PowerMeter, 3, 15000}, {FaultKind::Absent, BenchRole::IfiHigh, 7}};
  const std::string text = BenchFileText(config);
  const BenchFile file = ParseBenchFile(text);
  ASSERT_TRUE(file.Ok()) << file.Error;
  EXPECT_EQ(BenchFileText(file.Config), text);
  EXPECT_EQ(file.Config.Meter, MeterAt::Cable);
  EXPECT_EQ(file.Config.Faults[0].LateMs, 15000);
  EXPECT_EQ(file.Config.ProductOhm.Points().size(), 2u);
}

TEST(BenchFile, EveryKeyTableAndRoleHasItsPlaceInTheDocumentation) {
  const std::string documented = ReadTextFile(HYLDEN_SOURCE_DIR "/docs/formats/bench.md");
  for (const std::string role : kBenchRoles) EXPECT_NE(documented.find("`" + role + "`"), std::string::npos) << role;
  LineReader lines(BenchFileText(BenchConfig()));
  while (!lines.AtEnd()) {
    const std::string line = lines.ReadLine(), key = line.substr(0, line.find(" = "));
    if (line.starts_with('[') || (key != line && !line.starts_with('#'))) {
      const std::string name = key.starts_with('[') ? key.substr(1, key.find(']') - 1) : key;
      EXPECT_NE(documented.find("`" + name + "`"), std::string::npos) << name;
    }
  }
}

}  // namespace
}  // namespace hylden
