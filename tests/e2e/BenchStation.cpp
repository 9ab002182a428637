#include "BenchStation.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/TestStation.h"

namespace hylden {

namespace {

BenchConfig ConfigOf(const std::function<void(BenchConfig&)>& adjust) {
  BenchConfig config = LoadBenchFile("bench.txt").Config;
  if (adjust) adjust(config);
  return config;
}

}  // namespace

BenchStation::BenchStation(const std::string& equipmentFile, const std::function<void(BenchConfig&)>& adjust)
    : atStation(HYLDEN_SOURCE_DIR "/examples/station"),
      bench(clock, ConfigOf(adjust)),
      driver(bench.Driver()),
      machine(driver, clock) {
  EXPECT_TRUE(station.LoadEquipment(equipmentFile) && station.Apply());
  EXPECT_TRUE(documents.calSetup.LoadDef("cdn-10v.csu"));
}

void BenchStation::ForgetShutdownTexts() {
  Redefine(instruments.meter, [](auto& d) { d.Shutdown = ""; });
  Redefine(instruments.pm, [](auto& d) { d.Shutdown = ""; });
}

void BenchStation::Load(const std::string& testFile) {
  ASSERT_TRUE(documents.testSetup.LoadDef(testFile));
  ASSERT_TRUE(documents.calInfo.LoadDef(Test().CalInfoFile));
  ASSERT_TRUE(calibration_.LoadFile(Test().CalInfoFile));
  if (Test().MonitorProbe) bench.Connect(MeterAt::Probe);
}

void BenchStation::Run() {
  ASSERT_FALSE(CheckStart(Test(), documents.equip.Record));
  ASSERT_EQ(engine.Prepare(), RunReadiness::Ready) << machine.dialogs.LastText();
  engine.RunCdiTest();
}

double BenchStation::TargetDbuv(double frequencyMHz) {
  return double{calibration_.GetTestLevel(frequencyMHz)} + (Test().Extrapolate ? Test().ExtrapolateTo : 0);
}

void BenchStation::Calibrate(const std::string& recordPath) {
  ASSERT_FALSE(CheckStation(Setup(), documents.equip.Record));
  ASSERT_TRUE(level.Prepare()) << machine.dialogs.LastText();
  if (!recordPath.empty()) machine.dialogs.AnswerSave(recordPath);
  level.Run();
}

void BenchStation::DirectPass() {
  bench.Connect(MeterAt::Generator);
  cable.DirectPass(calibrationDisplay);
}

void BenchStation::InsertPass() {
  bench.Connect(MeterAt::Cable);
  cable.InsertPass(calibrationDisplay);
}

int BenchStation::Asked(const std::string& title) const {
  const auto& messages = machine.dialogs.messages;
  return static_cast<int>(
      std::count_if(messages.begin(), messages.end(), [&](const Message& message) { return message.title == title; }));
}

bool BenchStation::AnyRemote() {
  const int addresses[] = {18, 13, 14, 9, 10};
  return std::any_of(std::begin(addresses), std::end(addresses), [&](int a) { return bench.Bus().IsRemote(a); });
}

}  // namespace hylden
