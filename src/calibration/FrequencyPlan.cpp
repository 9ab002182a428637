#include "calibration/FrequencyPlan.h"

#include "calibration/CableSetup.h"
#include "documents/CalSetupRecord.h"
#include "documents/EquipRecord.h"
#include "run/PlanText.h"
#include "shell/FormInput.h"

namespace hylden {
namespace {

/// Why a request leaves no frequency; empty where it leaves some.
std::string WhyNone(const FrequencyRequest& request, const Result<std::vector<double>>& plan) {
  const bool byList = request.Type == StepType::List;
  if (byList && request.ListFile.empty()) return kNoListText;
  if (!plan) return kBadListText + FileNameOnly(request.ListFile);
  if (!plan->empty() && request.StopMHz > request.StartMHz) return {};
  return byList ? kNothingOfListText : WhyNoSweep(request.Type, request.StartMHz, request.StopMHz, request.Step);
}

}  // namespace

FrequencyRequest RequestOf(const CalSetupRecord& setup, const EquipRecord& equipment) {
  return {setup.StepType, setup.StartFreq,
          setup.StopFreq, setup.Steps(StepType::Log) ? setup.LogStep : setup.LinearStep,
          setup.ListFile, {equipment.HasIfiAmplifier(), equipment.IfiBandSwitch}};
}

FrequencyRequest RequestOf(const CableSetup& setup) {
  return {setup.StepType, setup.StartFreq, setup.StopFreq,
          setup.Steps(StepType::Log) ? setup.LogStep : setup.LinearStep, setup.ListFile};
}

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

RunPlan RunPlanOf(const std::vector<double>& plan, const CalSetupRecord& setup) {
  return {static_cast<int>(plan.size()), setup.StartFreq, setup.StopFreq, setup.Dwell};
}

RunPlan RunPlanOf(const std::vector<double>& plan, const CableSetup& setup, double settlingSeconds) {
  return {static_cast<int>(plan.size()), plan.empty() ? 0 : plan.front(), plan.empty() ? 0 : plan.back(), setup.Dwell,
          (setup.Dwell + settlingSeconds) * static_cast<double>(plan.size()) / 60};
}

std::string CalibrationPlanText(const FormEntries& entries, CalSetupRecord setup, const EquipRecord& equipment) {
  if (TakeEntries(entries, setup, EntryTaker::Refuses::Text)) return kNoNumberPlanText;
  FrequencyRequest request = RequestOf(setup, equipment);
  const auto plan = PlanFrequencies(request);
  const std::string why = WhyNone(request, plan);
  return why.empty() ? PlanText(RunPlanOf(*plan, setup), setup.Dwell == 0) : why;
}

std::string CablePlanText(const FormEntries& entries, CableSetup setup, double settlingSeconds) {
  if (TakeEntries(entries, setup, EntryTaker::Refuses::Text)) return kNoNumberPlanText;
  FrequencyRequest request = RequestOf(setup);
  const auto plan = PlanFrequencies(request);
  const std::string why = WhyNone(request, plan);
  return why.empty() ? PlanText(RunPlanOf(*plan, setup, settlingSeconds), setup.Dwell == 0) + " a pass" : why;
}

}  // namespace hylden
