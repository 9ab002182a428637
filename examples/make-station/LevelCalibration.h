#pragma once

#include <string>
#include <vector>

#include "bench/RfPath.h"

namespace hylden {

/// A level calibration of the simulated path, without noise and without instruments.
struct CalibrationRequest {
  double TestLevelVolts = 10;
  double StartMHz = 0.15, StopMHz = 230;
  double StepPercent = 1;
  bool Ifi = false;
  double BandSwitchMHz = 215;  ///< of an IFI pair: visited on both bands
};

/// The lines of the data file, in its format, at rising frequencies.
std::vector<std::string> CalibrationLines(const RfPath& path, const CalibrationRequest& request);

}  // namespace hylden
