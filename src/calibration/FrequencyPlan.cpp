#include "calibration/FrequencyPlan.h"

namespace hylden {

std::optional<std::vector<double>> PlanFrequencies(Shell& shell, FrequencyRequest& request) {
  ReadFreq reader(shell);
  if (request.Type == StepType::List) {
    std::vector<double> list;
    if (reader.FileTolist(request.ListFile, list) < 0) return std::nullopt;
    if (request.StartMHz == 0 && !list.empty()) request.StartMHz = list.front();
    if (request.StopMHz == 0 && !list.empty()) request.StopMHz = list.back();
  }
  std::vector<double> plan;
  reader.BuildFreqPlan(request.Type, request.StartMHz, request.StopMHz, request.Step, plan, request.ListFile,
                       request.Band);
  return plan;
}

}  // namespace hylden
