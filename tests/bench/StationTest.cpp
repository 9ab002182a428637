// The demo station's files agree with one another and with the bench.

#include <gtest/gtest.h>

#include <filesystem>

#include "bench/Bench.h"
#include "documents/CalInfo.h"
#include "documents/EquipRecord.h"
#include "documents/TestDefinition.h"
#include "measure/InterpClass.h"
#include "support/ReadLines.h"
#include "text/Numbers.h"
#include "text/RecordFile.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

const std::filesystem::path kStation = HYLDEN_SOURCE_DIR "/examples/station";

std::string File(const std::string& name) {
  return (kStation / name).string();
}

std::vector<std::filesystem::path> FilesOf(const std::string& extension) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(kStation))
    if (extension.empty() || entry.path().extension() == extension) files.push_back(entry.path());
  EXPECT_FALSE(files.empty()) << extension;
  return files;
}

struct CalLine {
  double freq, level, test, forward, reverse;
};

std::vector<CalLine> Record(const std::string& name) {
  std::vector<CalLine> points;
  for (const std::string& line : ReadLines(File(name))) {
    CalLine& p = points.emplace_back();
    EXPECT_TRUE(ReadNumbers(line, {&p.freq, &p.level, &p.test, &p.forward, &p.reverse})) << line;
  }
  return points;
}

BenchConfig StationBench() {
  const BenchFile file = LoadBenchFile(File("bench.txt"));
  EXPECT_TRUE(file.Ok()) << file.Error;
  return file.Config;
}

TEST(Station, EveryFileEndsItsLinesWithCrLf) {
  for (const auto& path : FilesOf("")) {
    std::string text;
    for (const std::string& line : ReadLines(path.string())) text += line + "\r\n";
    EXPECT_EQ(ReadTextFile(path.string()), text) << path;
  }
}

TEST(Station, BenchFilesAreTheDefaultsWithTheStationsAnswers) {
  BenchConfig expected;
  expected.MeterAnswer = "MKA {level} DBUV";
  expected.PowerMeterAnswer = "{channel}: {level} dBm";
  EXPECT_EQ(BenchFileText(StationBench()), BenchFileText(expected)) << "run scripts/make-station.sh";
  expected.Meter = MeterAt::Probe;
  EXPECT_EQ(BenchFileText(LoadBenchFile(File("bench-product.txt")).Config), BenchFileText(expected));
}

TEST(Station, FactorTablesAreTheBenchsOwn) {
  const BenchConfig bench = StationBench();
  const std::pair<const char*, const FrequencyTable*> kTables[] = {{"meter-cable.los", &bench.Cable},
                                                                   {"forward.fac", &bench.ForwardCoupling},
                                                                   {"reverse.fac", &bench.ReverseCoupling},
                                                                   {"monitor.prb", &bench.Probe}};
  for (const auto& [name, table] : kTables) {
    int points = 0;
    for (const std::string& line : ReadLines(File(name))) {
      const ParsedFactorLine point = ParseFactorLine(line);
      if (!point.Ok) continue;
      ++points;
      EXPECT_NEAR(static_cast<double>(point.Value), table->At(point.Freq), 0.001) << name << " " << point.Freq;
    }
    EXPECT_GT(points, 50) << name;
  }
}

TEST(Station, ReplayingTheRecordsGivesTenVoltsAtEveryPoint) {
  const BenchConfig bench = StationBench();
  const RfPath path(bench);
  for (const auto& [name, ifi] : {std::pair{"cdn-10v.cal", false}, {"ifi-10v.cal", true}}) {
    const auto record = Record(name);
    ASSERT_GE(record.size(), 739u);
    EXPECT_EQ(record.front().freq, 0.15);
    EXPECT_EQ(record.back().freq, 230);
    for (const CalLine& point : record) {
      const Amplifier amplifier = !ifi                ? Amplifier::Generic
                                  : point.freq <= 215 ? Amplifier::IfiLow
                                                      : Amplifier::IfiHigh;
      const CalibrationReading reading = path.CalibrationPort(point.freq, point.level, amplifier);
      EXPECT_NEAR(reading.TestLevelDbuv, 140.25, 0.06) << name << " " << point.freq;
      EXPECT_NEAR(reading.ForwardDbm, point.forward, 0.06) << name << " " << point.freq;
      EXPECT_NEAR(reading.ReverseDbm, point.reverse, 0.06) << name << " " << point.freq;
      EXPECT_EQ(point.test, 140) << name << " " << point.freq;
    }
  }
}

TEST(Station, TestsAndEquipmentNameFilesThatAreThere) {
  const auto there = [](const std::string& name) { return name.empty() || std::filesystem::exists(kStation / name); };
  for (const auto& path : FilesOf(".tst")) {
    TestDefinition test;
    LoadRecord(path.string(), test);
    EXPECT_TRUE(there(test.CalInfoFile) && there(test.ListFile)) << path;
    CalInfoRec info;
    LoadRecord(File(test.CalInfoFile), info);
    const auto dash = info.FreqRange.find(" - ");
    EXPECT_GE(test.StartFreq, ToDouble(info.FreqRange.substr(0, dash))) << path;
    EXPECT_LE(test.StopFreq, ToDouble(info.FreqRange.substr(dash + 3))) << path;
  }
  for (const auto& path : FilesOf(".eqp")) {
    EquipRecord e;
    LoadRecord(path.string(), e);
    for (const auto& name : {e.SigGenFile, e.MeterFile, e.PwrMtrFile, e.CableLossFile, e.FwdPortFile, e.RevPortFile,
                             e.MaxPowerFile, e.ProbeFile})
      EXPECT_TRUE(!name.empty() && there(name)) << path << " " << name;
  }
}

}  // namespace
}  // namespace hylden
