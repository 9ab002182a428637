#include "bench/RfPath.h"

#include <gtest/gtest.h>

#include <cmath>

namespace hylden {
namespace {

/// An ideal coupling device without pad, cables and gain ripple: generator level = forward power.
BenchConfig Ideal() {
  BenchConfig config;
  config.SaturationDbm = 100;
  config.CouplerLossDb = config.PadDb = 0;
  config.AmplifierGain = config.DriveCable = config.Cable = FrequencyTable{{1, 0}};
  config.CouplingLoss = FrequencyTable{{1, 9.54}};
  return config;
}

GeneratorState Am(double levelDbm, double depthPercent) {
  return {.RfOn = true,
          .FreqMHz = 10,
          .LevelDbm = levelDbm,
          .Modulation = BenchModulation::Am,
          .AmDepthPercent = depthPercent};
}

TEST(RfPath, TwentySevenDbmAtAnIdealCouplingDeviceIsTenVoltsOpenCircuit) {
  const BenchConfig config = Ideal();
  const CalibrationReading reading = RfPath(config).CalibrationPort(10, 27);
  EXPECT_NEAR(reading.MeterDbuv, 124.44, 0.02);
  EXPECT_NEAR(reading.TestLevelDbuv, 139.95, 0.02);  // 15.5 dB, where the exact ratio of 6 is 15.56
}

TEST(Compression, LosesOneDbThreeDbBelowSaturation) {
  EXPECT_NEAR(Compressed(41, 43), 40, 0.01);
  EXPECT_NEAR(Compressed(-30, 43), -30, 1e-6);
  EXPECT_LE(Compressed(90, 43), 43);
  EXPECT_NEAR(Compressed(90, 43), 43, 0.01);
}

TEST(Modulation, AmRaisesPeakAndAverageAsItsDepthSays) {
  for (double depth : {0.0, 30.0, 50.0, 80.0, 100.0}) {
    const Signal signal = Amplified(Am(0, depth), 10, 100);
    const double m = depth / 100;
    EXPECT_NEAR(signal.Carrier, 10, 1e-6) << depth;
    EXPECT_NEAR(signal.Peak, 10 + 20 * std::log10(1 + m), 1e-6) << depth;
    EXPECT_NEAR(signal.Average, 10 + 10 * std::log10(1 + m * m / 2), 1e-6) << depth;
  }
}

TEST(Modulation, PeaksThatSaturateGiveWay) {
  const Signal signal = Amplified(Am(0, 80), 40, 43);
  EXPECT_LT(signal.Peak, 43);
  EXPECT_LT(signal.Average, 40 + 1.206);
  EXPECT_LT(signal.Carrier, 40);
}

TEST(Modulation, APulseKeepsItsLevelAndAveragesByItsDutyCycle) {
  const Signal signal = Amplified(
      {.RfOn = true, .LevelDbm = 5, .Modulation = BenchModulation::Pulse, .PulseFreqKHz = 0.2, .PulseWidthMs = 0.5}, 0,
      100);
  EXPECT_DOUBLE_EQ(signal.Carrier, 5);
  EXPECT_DOUBLE_EQ(signal.Peak, 5);
  EXPECT_NEAR(signal.Average, 5 - 10, 1e-9);
}

TEST(ReturnLoss, FollowsTheLoadAndThePad) {
  const struct {
    double load, source, pad, expected;
  } rows[] = {{150, 150, 0, 3.52},  {150, 150, 6, 15.52}, {30, 150, 0, 7.04},
              {1500, 150, 0, 0.54}, {50, 50, 0, 40},      {150, 50, 0, 6.02}};
  for (const auto& row : rows)
    EXPECT_NEAR(ReturnLossDb(row.load, row.source, row.pad), row.expected, 0.01) << row.load << " " << row.source;
}

TEST(RfPath, ReversePowerStaysBelowForwardPowerWhateverTheProductIs) {
  BenchConfig config;
  config.PadDb = 0;
  config.ReverseCoupling = config.ForwardCoupling;
  for (MeterAt place : {MeterAt::Port, MeterAt::Probe})
    for (double freq = 0.15; freq < 230; freq *= 1.03) {
      const PathFactors factors = RfPath(config).At(freq, {.Meter = place});
      const PathLevels levels = LevelsOf(factors, {.RfOn = true, .FreqMHz = freq, .LevelDbm = -20});
      EXPECT_LT(levels.ReverseDbm, levels.ForwardDbm.Average) << freq;
      EXPECT_LT(levels.ReversePortDbm, levels.ForwardPortDbm) << freq;
    }
}

TEST(RfPath, TheInducedCurrentIsTheTestLevelOverSourceAndProductImpedance) {
  EXPECT_NEAR(InducedCurrent(140, 150, 150), 90.458, 0.001);
  BenchConfig config = Ideal();
  config.ProductOhm = FrequencyTable{{1, 30}};
  config.Probe = FrequencyTable{{1, 12}};
  const PathLevels levels =
      LevelsOf(RfPath(config).At(10, {.Meter = MeterAt::Probe}), {.RfOn = true, .FreqMHz = 10, .LevelDbm = 27});
  EXPECT_NEAR(levels.InducedDbua, levels.TestLevelDbuv.Carrier - 20 * std::log10(180), 1e-9);
  EXPECT_NEAR(levels.MeterDbuv.Carrier, levels.InducedDbua - 12, 1e-9);
}

TEST(FrequencyTable, HoldsItsEndsAndJumpsAtAPair) {
  const FrequencyTable table{{1, 2}, {10, 4}, {10, 8}, {20, 10}};
  for (const auto& [freq, expected] :
       {std::pair{0.5, 2.0}, {1, 2}, {5.5, 3}, {9.999999, 4}, {10, 8}, {15, 9}, {99, 10}})
    EXPECT_NEAR(table.At(freq), expected, 1e-5) << freq;
}

}  // namespace
}  // namespace hylden
