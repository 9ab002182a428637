#pragma once

#include <string>
#include <vector>

#include "measure/ReadFreq.h"
#include "run/RunDisplay.h"

namespace hylden {

/// What a calibration is to visit: MHz, and percent for a logarithmic step.
struct FrequencyRequest {
  StepType Type = StepType::Linear;
  double StartMHz = 0, StopMHz = 0;
  double Step = 0;
  std::string ListFile = {};
  BandSwitch Band = {};
};

struct CableSetup;
struct CalSetupRecord;
struct EquipRecord;
class FormEntries;

/// What the setups ask for.
FrequencyRequest RequestOf(const CalSetupRecord& setup, const EquipRecord& equipment);
FrequencyRequest RequestOf(const CableSetup& setup);

/// Plans the frequencies of a calibration. Of a list, the first or last frequency stands in for a start or stop of 0,
/// also in the request. The plan is empty where the request leaves no frequency.
Result<std::vector<double>> PlanFrequencies(FrequencyRequest& request);

/// What a display is told of the plan of a level calibration, and of a pass of an insertion loss.
/// @param settlingSeconds  of the meter
RunPlan RunPlanOf(const std::vector<double>& plan, const CalSetupRecord& setup);
RunPlan RunPlanOf(const std::vector<double>& plan, const CableSetup& setup, double settlingSeconds);

/// What the entries of a form define: how many frequencies and how long they take, or why there are none.
/// @param setup  the record behind the form
std::string CalibrationPlanText(const FormEntries& entries, CalSetupRecord setup, const EquipRecord& equipment);
std::string CablePlanText(const FormEntries& entries, CableSetup setup, double settlingSeconds);

}  // namespace hylden
