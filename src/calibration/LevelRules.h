#pragma once

#include <optional>

namespace hylden {

class InterpClass;
struct CalSetupRecord;

/// Width of the band above the target in which a calibrated level has to lie, dB.
inline constexpr double kToleranceDb = 0.5;

/// Whether the level is calibrated: above the target and below the upper edge of the tolerance band.
bool InTolerance(double levelDbuv, double targetDbuv, double toleranceDb);

/// Signal-generator change for the next try at one frequency, in dB. Below the target it closes two thirds of the
/// distance to the upper edge of the tolerance band, at most 10 dB, and is 0.1 dB where that is less than 0.2; at or
/// above the target it aims at the middle of the band.
/// @param levelDbuv   level at the coupling device now, dBuV
/// @param targetDbuv  wanted level, dBuV
/// @param toleranceDb width of the band above the target, dB
double NextLevelStep(double levelDbuv, double targetDbuv, double toleranceDb);

/// How far the forward power may still rise, dB; -999 where one of the two is nothing.
double ForwardHeadroom(double limitWatts, double forwardWatts);

/// The wanted level, dBuV: of the setup's test level curve, interpolated over log frequency, or its flat level. Nothing
/// outside the curve, and where it gives no level above 0 V.
std::optional<double> TargetDbuv(const CalSetupRecord& setup, InterpClass& testLevels, double frequencyMHz);

/// Watches over the tries at one frequency: a level that swings from one side of the band to the other again and
/// again, or creeps without end, will never settle.
class Convergence {
 public:
  static constexpr int kMostTurns = 200;
  static constexpr int kMostTries = 100'000;

  /// @param stepDb  the change for the next try
  /// @return false when it has gone on too long, or the step is no number
  bool GoesOn(double stepDb);

 private:
  int tries_ = 0, turns_ = 0;
  double lastStepDb_ = 0;
};

}  // namespace hylden
