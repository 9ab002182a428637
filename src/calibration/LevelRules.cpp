#include "calibration/LevelRules.h"

#include <cmath>

#include "documents/CalSetupRecord.h"
#include "measure/Conversions.h"
#include "measure/InterpClass.h"

namespace hylden {

bool InTolerance(double levelDbuv, double targetDbuv, double toleranceDb) {
  return levelDbuv > targetDbuv && levelDbuv < targetDbuv + toleranceDb;
}

double NextLevelStep(double levelDbuv, double targetDbuv, double toleranceDb) {
  constexpr double kShare = 1.5, kSmallDb = 0.2, kLeastDb = 0.1, kMostDb = 10;
  if (levelDbuv >= targetDbuv) return toleranceDb / 2 + targetDbuv - levelDbuv;
  const double step = (targetDbuv + toleranceDb - levelDbuv) / kShare;
  if (step < kSmallDb) return kLeastDb;
  return step > kMostDb ? kMostDb : step;
}

double ForwardHeadroom(double limitWatts, double forwardWatts) {
  return Conversions::RatioToDb(limitWatts, forwardWatts, 10);
}

std::optional<double> TargetDbuv(const CalSetupRecord& setup, InterpClass& testLevels, double frequencyMHz) {
  if (!setup.HasLevelFile()) return Conversions::VoltsToDbuv(double{setup.CalLevel});
  const Result<float> volts = testLevels.InterpVal(frequencyMHz, FreqScale::Log);
  // Between 0 MHz and the next point there is no logarithmic scale, and no level.
  return volts && *volts > 0 ? std::optional(Conversions::VoltsToDbuv(double{*volts})) : std::nullopt;
}

bool Convergence::GoesOn(double stepDb) {
  if (!std::isfinite(stepDb)) return false;
  if (stepDb * lastStepDb_ < 0) ++turns_;
  lastStepDb_ = stepDb;
  return ++tries_ < kMostTries && turns_ < kMostTurns;
}

}  // namespace hylden
