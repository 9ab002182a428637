#pragma once

#include <string>
#include <vector>

#include "measure/ReadFreq.h"

namespace hylden {

/// What a calibration is to visit: MHz, and percent for a logarithmic step.
struct FrequencyRequest {
  StepType Type = StepType::Linear;
  double StartMHz = 0, StopMHz = 0;
  double Step = 0;
  std::string ListFile = {};
  BandSwitch Band = {};
};

/// Plans the frequencies of a calibration. Of a list, the first or last frequency stands in for a start or stop of 0,
/// also in the request. The plan is empty where the request leaves no frequency.
Result<std::vector<double>> PlanFrequencies(FrequencyRequest& request);

}  // namespace hylden
