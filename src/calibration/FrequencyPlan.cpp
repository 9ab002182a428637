#include "calibration/FrequencyPlan.h"

namespace hylden {

std::vector<double> PlanFrequencies(Shell& shell, FrequencyRequest& request) {
  ReadFreq reader(shell);
  if (request.Type == StepType::List && (request.StartMHz == 0 || request.StopMHz == 0)) {
    std::vector<double> list;
    if (reader.FileTolist(request.ListFile, list) < 1) return {};
    if (request.StartMHz == 0) request.StartMHz = list.front();
    if (request.StopMHz == 0) request.StopMHz = list.back();
  }
  std::vector<double> plan;
  reader.BuildFreqPlan(request.Type, request.StartMHz, request.StopMHz, request.Step, plan, request.ListFile,
                       request.Band);
  return plan;
}

}  // namespace hylden
