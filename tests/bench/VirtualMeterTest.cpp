#include "bench/VirtualMeter.h"

#include <gtest/gtest.h>

#include "bench/BareBench.h"
#include "measure/Conversions.h"

namespace hylden {
namespace {

constexpr double kFreq = 10, kLevel = -30;  // far from compression

double AtPort() {
  const BenchConfig config = Noiseless();
  return RfPath(config).CalibrationPort(kFreq, kLevel).MeterDbuv;
}

/// A station whose meter has this type and these units, tuned to the signal.
BareBench Tuned(MeterType type, std::int32_t units, BenchConfig config = Noiseless()) {
  BenchEquipment station = SmallStation();
  station.Meter->Type = static_cast<std::int32_t>(type);
  station.Meter->Units = units;
  return BareBench(station, config);
}

TEST(VirtualMeter, AnswersInItsDefinitionsUnits) {
  for (std::int32_t units = 0; units <= 4; ++units) {
    BareBench rig = Tuned(MeterType::RfMeter, units);
    rig.Drive(kFreq, kLevel);
    const auto dbuv = Conversions::MeterReadingToDbuv(units, rig.MeterReading());
    EXPECT_NEAR(*dbuv, AtPort(), 0.001) << "units " << units;
  }
}

TEST(VirtualMeter, AnAnalyserSeesOnlyWhatItIsTunedTo) {
  BareBench rig;
  rig.Drive(kFreq, kLevel);
  rig.Send(13, "CF 10.5 MZ");
  EXPECT_LT(rig.MeterReading(), 60);
  rig.Send(13, "CF 10.005 MZ");
  EXPECT_NEAR(rig.MeterReading(), AtPort(), 0.001);
}

TEST(VirtualMeter, IsClippedAboveAndBlindFarBelowItsReferenceLevel) {
  BareBench rig;
  rig.Drive(kFreq, kLevel);
  rig.Send(13, "CF 10.0 MZ");
  rig.Send(13, "RL 90.0 DB");
  EXPECT_DOUBLE_EQ(rig.MeterReading(), 90);
  rig.Send(13, "RL 126.0 DB");
  EXPECT_NEAR(rig.MeterReading(), AtPort(), 0.001);
  rig.Send(18, "R0");
  rig.clock.Advance(50);
  EXPECT_NEAR(rig.MeterReading(), 46, 0.001);
}

TEST(VirtualMeter, AScopesRangeIsVoltsPerDivision) {
  BareBench rig = Tuned(MeterType::Scope, 0);
  rig.Drive(kFreq, kLevel);
  // The program commands the wanted level less 6.8 dB as volts: the screen then ends about 2 dB above that level.
  rig.Send(13, "RL " + std::to_string(Conversions::DbuvToVolts(100 - 6.8)) + " DB");
  EXPECT_NEAR(Conversions::VoltsToDbuv(rig.MeterReading()), 102.2, 0.1);
}

TEST(VirtualMeter, ReadsAModulatedSignalAsItsTypeDoes) {
  for (const auto& [type, expectedDb] :
       {std::pair{MeterType::SpecAn, 0.0}, {MeterType::Scope, 5.105}, {MeterType::RfMeter, 1.206}}) {
    BareBench rig = Tuned(type, 1);
    rig.Send(13, "CF 10.0 MZ");
    rig.Drive(kFreq, kLevel);
    const double unmodulated = rig.MeterReading();
    rig.Send(18, "AM 80.0 PC"), rig.Send(18, "M1");
    rig.clock.Advance(50);
    EXPECT_NEAR(rig.MeterReading() - unmodulated, expectedDb, 0.002) << static_cast<int>(type);
  }
}

TEST(VirtualMeter, ShowsTheWorldAtTheEndOfItsCapture) {
  BareBench rig = Tuned(MeterType::RfMeter, 1);
  rig.Drive(kFreq, kLevel);
  const double before = rig.MeterReading();
  rig.Send(13, "TS");
  rig.Drive(kFreq, kLevel - 10);
  rig.Send(13, "MK");
  EXPECT_NEAR(std::stod(rig.Read(13)), before, 0.001) << "a read before the capture is over gives the former value";
  rig.clock.Advance(400);
  rig.Drive(kFreq, kLevel - 30);
  rig.Send(13, "MK");
  EXPECT_NEAR(std::stod(rig.Read(13)), before - 10, 0.05) << "what changes after the capture does not count";
}

TEST(VirtualMeter, AReadingBeforeTheGeneratorHasSettledShowsTheFormerLevel) {
  BenchEquipment station = SmallStation();
  station.Meter->Trigger = "";
  station.Meter->Type = static_cast<std::int32_t>(MeterType::RfMeter);
  BareBench rig(station);
  rig.Drive(kFreq, kLevel);
  rig.Send(18, "AP -40.0 DM");
  rig.clock.Advance(19);
  rig.Send(13, "MK");
  EXPECT_NEAR(std::stod(rig.Read(13)), AtPort(), 0.001);
  rig.clock.Advance(1);
  rig.Send(13, "MK");
  EXPECT_NEAR(std::stod(rig.Read(13)), AtPort() - 10, 0.05);
}

TEST(VirtualMeter, TalksWheneverAddressedWhenItHasNoReadCommand) {
  BenchEquipment station = SmallStation();
  station.Meter->Read = station.Meter->Trigger = "";
  station.Meter->EndOfString = 2;
  station.Meter->Type = static_cast<std::int32_t>(MeterType::RfMeter);
  BenchConfig config = Noiseless();
  config.MeterAnswer = "VALUE {level} DBUV AT {freq} ({level:e})";
  BareBench rig(station, config);
  EXPECT_EQ(rig.Read(13, 10), "VALUE 50.000 DBUV AT 0.000 (+5.00000E+01)\r\n");
}

TEST(ReadingNoise, IsTheSameForASeedAndHasTheGivenSpread) {
  ReadingNoise first(0.5, 7), second(0.5, 7), other(0.5, 8);
  double sum = 0, squares = 0;
  bool differs = false;
  for (int i = 0; i < 20000; ++i) {
    const double value = first.Next();
    ASSERT_EQ(value, second.Next());
    differs = differs || value != other.Next();
    sum += value, squares += value * value;
  }
  EXPECT_TRUE(differs);
  EXPECT_NEAR(sum / 20000, 0, 0.02);
  EXPECT_NEAR(std::sqrt(squares / 20000), 0.5, 0.02);
}

}  // namespace
}  // namespace hylden
