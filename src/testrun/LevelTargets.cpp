#include "testrun/LevelTargets.h"

#include <algorithm>
#include <cmath>

#include "documents/TestDefinition.h"
#include "documents/clsCalFile.h"
#include "instruments/SigGen.h"
#include "text/Numbers.h"

namespace hylden {

namespace {

constexpr double kDefaultIncrement = 6;
constexpr double kLeastIncrement = 0.01;  // an increment that no level resolves would never reach the target
constexpr double kFirstDrop = 60;
constexpr double kPastTarget = 0.1;
constexpr double kLeastStep = 0.1;
constexpr double kSmallStep = 0.2;
constexpr double kSlowIncrement = 1;

/// Modulation depth as a ratio; 0 unless the test is amplitude modulated.
double AmDepthRatio(const TestDefinition& test) {
  return test.ModType == Modulation::Am ? double{test.AmDepth} / 100 : 0;
}

/// dB added to every calibrated level.
double LevelAdjustment(const TestDefinition& test) {
  return test.Extrapolate ? test.ExtrapolateTo : 0;
}

std::string MissingText(const TestDefinition& test, const CalibratedLevels& levels) {
  if (IsMissing(levels.SigGenLevel) || IsMissing(levels.TestLevel))
    return "Calibration file gives no level at this frequency.";
  if (test.LevelsBy(LevelingMethod::ForwardPower) && IsMissing(levels.FwdPwr))
    return "Forward power data not in calibration file.\r\nThis calibration file can't be used for \r\n"
           "power leveled tests.";
  if (test.LevelsBy(LevelingMethod::NetPower) && IsMissing(levels.NetPwr))
    return "Net power data not in calibration file.\r\nThis calibration file can't be used for \r\n"
           "Net-power leveled tests.";
  return {};
}

}  // namespace

double PowerCorrection(const TestDefinition& test) {
  const double depth = test.ModOffBetweenFreqs ? 0 : AmDepthRatio(test);
  return 10 * std::log10(1 + depth * depth / 2) + LevelAdjustment(test);
}

float ConstPeakOffset(const TestDefinition& test) {
  if (!test.ConstPeak) return 0;
  return static_cast<float>(-20 * std::log10(1 + AmDepthRatio(test)));
}

double MaximumIncrement(const TestDefinition& test) {
  const double increment = std::abs(double{test.LevelInc});
  return increment > 0 ? std::max(increment, kLeastIncrement) : kDefaultIncrement;
}

bool LimitsCurrent(const TestDefinition& test) {
  return test.LimitCurrent && test.MonitorProbe;
}

CalibratedLevels LookUpLevels(clsCalFile& calibration, const TestDefinition& test, double frequencyMHz) {
  CalibratedLevels levels;
  levels.SigGenLevel = calibration.GetSigGen(frequencyMHz);
  levels.TestLevel = calibration.GetTestLevel(frequencyMHz);
  if (test.LevelsByPower()) levels.FwdPwr = calibration.GetFwdPwr(frequencyMHz);
  if (test.LevelsBy(LevelingMethod::NetPower)) levels.NetPwr = calibration.GetNetPwr(frequencyMHz);
  return levels;
}

Result<StepTargets> TargetsFor(const TestDefinition& test, const CalibratedLevels& levels) {
  if (const std::string missing = MissingText(test, levels); !missing.empty()) return Because(missing);
  StepTargets targets;
  const double adjustment = LevelAdjustment(test);
  targets.SigGenCal = static_cast<float>(double{levels.SigGenLevel} + adjustment);
  targets.TestLevel = static_cast<float>(double{levels.TestLevel} + adjustment);
  targets.ForwardReference = double{levels.FwdPwr} + PowerCorrection(test);
  targets.PowerTarget =
      double{test.LevelsBy(LevelingMethod::NetPower) ? levels.NetPwr : levels.FwdPwr} + PowerCorrection(test);
  targets.InducedLimit = InducedCurrentLimit(test, levels.TestLevel).value_or(kNoValue);
  targets.ConstantPeakOffset = ConstPeakOffset(test);
  return targets;
}

std::optional<double> InducedCurrentLimit(const TestDefinition& test, float calibratedTestLevelDbuv) {
  if (!(test.EUTCircuitImpedance > 0) || IsMissing(calibratedTestLevelDbuv)) return std::nullopt;
  const double limit = double{calibratedTestLevelDbuv} - 20 * std::log10(double{test.EUTCircuitImpedance}) +
                       double{test.LimitMargin} + LevelAdjustment(test);
  return std::isfinite(limit) ? std::optional(limit) : std::nullopt;
}

Done GeneratorGoesDownTo(float sigGenCalDbm, float generatorMinimumDbm) {
  if (sigGenCalDbm >= generatorMinimumDbm) return {};
  return Because("Signal generator can't possibly be set low enough to run this test\r\nCalibration sig-gen level = " +
                 ShortestText(sigGenCalDbm) + "\r\nThe minimum possible sig-gen level is " +
                 ShortestText(generatorMinimumDbm));
}

double StartingOffset(const TestDefinition& test, const PreviousStep& previous, double frequencyMHz) {
  const double drop = std::abs(double{test.InitLevOffset});
  if (previous.Freq <= 0) {
    const bool farBelow = test.LimitCurrent || test.LevelsByPower();
    return farBelow ? std::max(drop, kFirstDrop) : drop;
  }
  const double slope = test.LevelsByPower() ? 20 * std::log10(frequencyMHz / previous.Freq) : 0;
  return std::max(0.0, previous.Offset + drop + slope);
}

double RampStep(double headroomDb, double maximumIncrementDb) {
  const double step = std::min(headroomDb + kPastTarget, maximumIncrementDb);
  return step < kLeastStep ? kSmallStep : step;
}

Drive Raise(Drive drive, double stepDb) {
  if (drive.Offset - stepDb < -kMostDriveDb) {
    drive.Offset = std::min(drive.Offset, 0.0);
    drive.MaximumIncrement = std::min(drive.MaximumIncrement, kSlowIncrement);
    stepDb = std::min(stepDb, drive.MaximumIncrement);
  }
  drive.Offset -= stepDb;
  return drive;
}

std::optional<double> NetPower(double forwardDbm, double reverseDbm, double forwardReferenceDbm) {
  using namespace Conversions;
  if (reverseDbm < forwardDbm) return WattsToDbm(DbmToWatts(forwardDbm) - DbmToWatts(reverseDbm));
  return forwardDbm < forwardReferenceDbm - kReverseJudgedDb ? std::optional(forwardDbm) : std::nullopt;
}

double GainDeficit(double forwardReferenceDbm, double forwardDbm, double offsetDb) {
  return (forwardReferenceDbm - forwardDbm) - offsetDb;
}

}  // namespace hylden
