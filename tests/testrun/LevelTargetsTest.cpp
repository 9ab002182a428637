#include "testrun/LevelTargets.h"

#include <gtest/gtest.h>

#include <limits>

#include "documents/TestDefinition.h"
#include "support/Told.h"

namespace hylden {
namespace {

TestDefinition Method(int method) {
  TestDefinition test;
  test.LevelingMethod = static_cast<LevelingMethod>(method);
  return test;
}

TestDefinition Am(float depth, bool offBetweenFreqs, bool constPeak) {
  TestDefinition test = Method(1);
  test.ModType = Modulation::Am;
  test.AmDepth = depth;
  test.ModOffBetweenFreqs = offBetweenFreqs;
  test.ConstPeak = constPeak;
  return test;
}

TEST(LevelTargets, ModulationDuringLevellingRaisesThePowerTargets) {
  EXPECT_NEAR(PowerCorrection(Am(80, false, false)), 1.2057, 1e-4);
  EXPECT_EQ(PowerCorrection(Am(80, true, false)), 0);
  TestDefinition pulse = Am(80, false, false);
  pulse.ModType = Modulation::Pulse;
  EXPECT_EQ(PowerCorrection(pulse), 0);
}

TEST(LevelTargets, ConstantPeakDropsTheCarrierForAmOnly) {
  EXPECT_NEAR(ConstPeakOffset(Am(80, true, true)), -5.105F, 1e-3);
  EXPECT_EQ(ConstPeakOffset(Am(80, true, false)), 0);
  TestDefinition fm = Am(80, true, true);
  fm.ModType = Modulation::Fm;
  EXPECT_EQ(ConstPeakOffset(fm), 0);
}

TEST(LevelTargets, AnAdjustedTestMovesEveryLevel) {
  TestDefinition test = Method(2);
  test.Extrapolate = true;
  test.ExtrapolateTo = -6;
  const StepTargets targets = *TargetsFor(test, {-10, 120, 40, 39});
  EXPECT_FLOAT_EQ(targets.SigGenCal, -16);
  EXPECT_FLOAT_EQ(targets.TestLevel, 114);
  EXPECT_DOUBLE_EQ(targets.ForwardReference, 34);
  EXPECT_DOUBLE_EQ(targets.PowerTarget, 33);
  test.Extrapolate = false;
  EXPECT_FLOAT_EQ(TargetsFor(test, {-10, 120, 40, 39})->SigGenCal, -10);
}

TEST(LevelTargets, MissingPowerIsToldAlsoWhenTheCorrectionLiftsTheMarker) {
  const TestDefinition forward = Am(100, false, false);  // -999 + 1.76 would pass for a power
  EXPECT_TRUE(FailsWith(TargetsFor(forward, {-10, 120, -999, -999}),
                        "Forward power data not in calibration file.\r\nThis calibration file can't be used for \r\n"
                        "power leveled tests."));
  EXPECT_TRUE(FailsWith(TargetsFor(Method(2), {-10, 120, 40, -999}),
                        "Net power data not in calibration file.\r\nThis calibration file can't be used for \r\n"
                        "Net-power leveled tests."));
  EXPECT_TRUE(TargetsFor(Method(0), {-10, 120, -999, -999}));
  for (const CalibratedLevels& none : {CalibratedLevels{-999, 120}, CalibratedLevels{-10, -999}})
    EXPECT_TRUE(FailsWith(TargetsFor(Method(0), none), "Calibration file gives no level at this frequency."));
}

TEST(LevelTargets, TheCurrentLimitFollowsTheImpedance) {
  TestDefinition test;
  test.EUTCircuitImpedance = 150;
  test.LimitMargin = 3;
  EXPECT_NEAR(*InducedCurrentLimit(test, 120), 120 - 43.5218 + 3, 1e-4);
  test.EUTCircuitImpedance = 0;  // would be no limit at all
  EXPECT_EQ(InducedCurrentLimit(test, 120), std::nullopt);
  test.EUTCircuitImpedance = 150;
  EXPECT_EQ(InducedCurrentLimit(test, -999), std::nullopt);
}

TEST(LevelTargets, AGeneratorThatCannotGoLowEnoughIsTold) {
  EXPECT_TRUE(GeneratorGoesDownTo(-10, -10));
  EXPECT_TRUE(FailsWith(GeneratorGoesDownTo(-10.5F, -10),
                        "Signal generator can't possibly be set low enough to run this test\r\n"
                        "Calibration sig-gen level = -10.5\r\nThe minimum possible sig-gen level is -10"));
  EXPECT_FALSE(GeneratorGoesDownTo(std::numeric_limits<float>::quiet_NaN(), -10));
}

TEST(LevelTargets, AStepBeginsThisFarBelow) {
  const struct {
    const char* name;
    int method;
    float initialOffset;
    bool limitCurrent;
    PreviousStep previous;
    double frequency, expected;
  } cases[] = {{"first by generator", 0, -6, false, {}, 1, 6},
               {"first by power", 1, -6, false, {}, 1, 60},
               {"first by an unknown method", 7, -6, false, {}, 1, 6},
               {"later by an unknown method", 7, -6, false, {1, 2}, 10, 8},
               {"first with current limit", 0, -6, true, {}, 1, 60},
               {"first from deeper", 1, -70, false, {}, 1, 70},
               {"later by generator", 0, -6, false, {1, 2}, 10, 8},
               {"later by power drops with frequency", 2, -6, false, {1, -1}, 10, 25},
               {"later never above", 1, 0, false, {1, -2.9}, 1.05, 0},
               {"later below where it ended", 1, -6, false, {1, -2.9}, 1, 3.1},
               {"a positive offset never starts above", 0, 6, false, {}, 1, 6}};
  for (const auto& c : cases) {
    TestDefinition test = Method(c.method);
    test.InitLevOffset = c.initialOffset;
    test.LimitCurrent = c.limitCurrent;
    EXPECT_NEAR(StartingOffset(test, c.previous, c.frequency), c.expected, 1e-4) << c.name;
  }
}

TEST(LevelTargets, ARampStepClosesOnTheTargetButNotTooFinely) {
  EXPECT_DOUBLE_EQ(RampStep(10, 6), 6);
  EXPECT_DOUBLE_EQ(RampStep(2, 6), 2.1);
  EXPECT_DOUBLE_EQ(RampStep(0, 6), 0.1);
  EXPECT_DOUBLE_EQ(RampStep(5, 0.05), 0.2);
}

TEST(LevelTargets, TheIncrementDefaultsTo6AndIsNeverTooSmallToMove) {
  TestDefinition test;
  EXPECT_EQ(MaximumIncrement(test), 6);
  test.LevelInc = -2;
  EXPECT_EQ(MaximumIncrement(test), 2);
  test.LevelInc = 1e-20F;
  EXPECT_EQ(MaximumIncrement(test), 0.01);
  test.LevelInc = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(MaximumIncrement(test), 6);
}

struct RaiseCase {
  double offset, increment, step, expectedOffset, expectedIncrement;
};
TEST(LevelTargets, TheGeneratorGoesPastItsCalibrationSlowly) {
  const RaiseCase cases[] = {
      {6, 6, 6, 0, 6},            // plain
      {2, 6, 4, -2, 6},           // within 3 dB
      {2, 10, 6, -1, 1},          // to the calibrated level first, then 1 dB
      {0, 6, 6, -1, 1},           //
      {-2.5, 1, 1, -3.5, 1},      // the caller warns
      {-2.9, 1, 0.3, -3.2, 1},    // never more than was asked for
      {-2, 0.5, 1.2, -2.5, 0.5},  // a small increment stays
  };
  for (const RaiseCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.offset << " by " << c.step);
    const Drive drive = Raise({c.offset, c.increment}, c.step);
    EXPECT_NEAR(drive.Offset, c.expectedOffset, 1e-12);
    EXPECT_EQ(drive.MaximumIncrement, c.expectedIncrement);
  }
}

struct NetCase {
  double forward, reverse;
  std::optional<double> net;  // the calibrated forward power is 40 dBm
};
TEST(LevelTargets, ReversePowerIsJudgedWhereTheSensorsSeeMoreThanTheirNoise) {
  const NetCase cases[] = {{40, 30, 39.5424},  {5, 5.02, 5},      {5, 4.9, -11.4277},     {19.9, 25, 19.9},
                           {19.9, 19.9, 19.9}, {20, 19, 13.1318}, {20, 20, std::nullopt}, {42, 43, std::nullopt}};
  for (const NetCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.forward << " and " << c.reverse);
    const auto net = NetPower(c.forward, c.reverse, 40);
    ASSERT_EQ(net.has_value(), c.net.has_value());
    if (net) {
      EXPECT_NEAR(*net, *c.net, 1e-3);
    }
  }
}

TEST(LevelTargets, TheGainDeficitCountsShortfallAndExtraDrive) {
  EXPECT_DOUBLE_EQ(GainDeficit(40, 38, -1.5), 3.5);
  EXPECT_DOUBLE_EQ(GainDeficit(40, 42, -2), 0);
}

}  // namespace
}  // namespace hylden
