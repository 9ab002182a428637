// The demo station's files agree with one another and with the bench.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "BenchRig.h"
#include "documents/CalInfo.h"
#include "documents/EquipRecord.h"
#include "documents/TestDefinition.h"
#include "measure/InterpClass.h"
#include "support/ReadLines.h"
#include "text/Numbers.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

const std::filesystem::path kStation = HYLDEN_SOURCE_DIR "/examples/station";

std::string File(const std::string& name) {
  return (kStation / name).string();
}

/// The instruments of definition files, with the addresses that they hold.
BenchEquipment Equipment(const std::string& sigGen, const std::string& meter = {}, const std::string& powerMeter = {}) {
  BenchEquipment equipment;
  LoadRecord(File(sigGen), equipment.SigGen.emplace());
  equipment.SigGenAddress = equipment.SigGen->Address;
  if (meter.empty()) return equipment;
  LoadRecord(File(meter), equipment.Meter.emplace());
  equipment.MeterAddress = equipment.Meter->Address;
  LoadRecord(File(powerMeter), equipment.PowerMeter.emplace());
  equipment.PowerMeterAddress = equipment.PowerMeter->Address;
  equipment.SensorBandSwitchMHz = equipment.PowerMeter->Bandswitch;
  return equipment;
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
    std::istringstream fields(line);
    CalLine point{};
    char comma = 0;
    fields >> point.freq >> comma >> point.level >> comma >> point.test >> comma >> point.forward >> comma >>
        point.reverse >> comma;
    EXPECT_TRUE(fields && comma == ',') << line;
    points.push_back(point);
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
    std::ifstream stream(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(stream)), {});
    const auto lineFeeds = std::count(bytes.begin(), bytes.end(), '\n');
    std::ptrdiff_t pairs = 0;
    for (auto at = bytes.find("\r\n"); at != std::string::npos; at = bytes.find("\r\n", at + 2)) ++pairs;
    EXPECT_GT(pairs, 0) << path;
    EXPECT_EQ(pairs, lineFeeds) << path;
    ASSERT_FALSE(bytes.empty()) << path;
    EXPECT_EQ(bytes.back(), '\n') << path;
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

TEST(Station, TheScpiStationUnderstandsTheProgramsBytes) {
  BenchRig rig(Equipment("scpi.sg", "analyser.mtr", "two-channel.pm"), StationBench());
  for (const char* command : {"*CLS\r\n", "FREQ 27.0 MHZ\r\n", "POW -12.3 DBM\r\n", "AM:INT:FREQ 1.0 KHZ\r\n",
                              "AM:DEPT 80.0 PCT\r\n", "AM:STAT ON\r\n", "MOD:STAT OFF\r\n", "OUTP ON\r\n"})
    rig.Send(18, command);
  EXPECT_TRUE(rig.bench.State().Generator.RfOn);
  EXPECT_EQ(rig.bench.State().Generator.FreqMHz, 27);
  EXPECT_EQ(rig.bench.State().Generator.LevelDbm, -12.3);
  EXPECT_EQ(rig.bench.State().Generator.Modulation, BenchModulation::None);
  rig.clock.Advance(50);

  for (const char* command : {"IP\r\n", "CF 27.0 MZ\r\n", "RL 126.0 DBUV\r\n", "TS\r\n"}) rig.Send(13, command);
  for (const char* command : {"CHA\r\n", "FREQ 27.0 MHZ\r\n", "CHB\r\n", "FREQ 27.0 MHZ\r\n", "TRGA\r\n"})
    rig.Send(14, command);
  rig.clock.Advance(200);
  rig.Send(13, "MKA?\r\n");
  const std::string level = rig.Read(13, 10);
  rig.Send(14, "READA?\r\n");
  const std::string power = rig.Read(14, 10);
  EXPECT_EQ(level.substr(0, 6), "MKA 12") << level;
  EXPECT_EQ(level.substr(level.size() - 7), " DBUV\r\n");
  EXPECT_EQ(power.substr(0, 4), "A: -") << power;
  const CalibrationReading expected = rig.bench.Path().CalibrationPort(27, -12.3);
  EXPECT_NEAR(LeadingNumber(std::string_view(level).substr(4)), expected.MeterDbuv, 0.3);
  EXPECT_NEAR(LeadingNumber(std::string_view(power).substr(3)), expected.ForwardDbm - 40, 0.3);
  EXPECT_EQ(rig.bench.Bus().UnknownCount(), 0);
}

TEST(Station, TheOlderGeneratorIsSwitchedOffByItsMinimumLevel) {
  BenchRig rig(Equipment("two-letter.sg"), StationBench());
  for (const char* command : {"\r", "FR 27.0 MZ\r", "AP -12.3 DM\r", "R3\r", "AP -140.0 DM\r"}) rig.Send(18, command);
  EXPECT_EQ(rig.bench.Bus().UnknownCount(), 0);
  EXPECT_TRUE(rig.bench.State().Generator.RfOn);
  EXPECT_LT(rig.bench.State().TestLevelDbuv, 20);
}

}  // namespace
}  // namespace hylden
