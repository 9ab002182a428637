#include "calibration/FrequencyPlan.h"

namespace hylden {

Result<std::vector<double>> PlanFrequencies(FrequencyRequest& request) {
  if (request.Type == StepType::List) {
    auto list = ReadFreq::FileTolist(request.ListFile);
    if (!list) return list;
    if (request.StartMHz == 0 && !list->empty()) request.StartMHz = list->front();
    if (request.StopMHz == 0 && !list->empty()) request.StopMHz = list->back();
  }
  return ReadFreq::BuildFreqPlan(request.Type, request.StartMHz, request.StopMHz, request.Step, request.ListFile,
                                 request.Band);
}

}  // namespace hylden
