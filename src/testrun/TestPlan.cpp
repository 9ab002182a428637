#include "testrun/TestPlan.h"

#include <algorithm>
#include <utility>

#include "documents/TestDefinition.h"
#include "measure/ReadFreq.h"
#include "run/PlanText.h"
#include "shell/FormInput.h"

namespace hylden {
namespace {

constexpr std::size_t kLeastListFrequencies = 2;

/// Why the definition leaves no frequency.
std::string WhyNoSteps(const TestDefinition& test) {
  if (test.FreqSweep)
    return WhyNoSweep(test.StepType, test.StartFreq, test.StopFreq,
                      test.StepType == StepType::Log ? test.LogStep : test.LinearStep);
  return test.FreqList ? kNothingOfListText : "neither a swept nor a discrete frequency test: no frequencies";
}

}  // namespace

TestPlan PlanTest(const TestDefinition& test) {
  TestPlan plan{PlanSweep(test)};
  if (!test.FreqList) return plan;
  auto list = ReadFreq::FileTolist(test.ListFile);
  plan.ListFrequencies = list.map([](const auto& frequencies) { return frequencies.size(); });
  plan.ListUnused = !list || list->size() < kLeastListFrequencies;
  if (!plan.ListUnused) MergeList(plan.Steps, std::move(*list), test);
  return plan;
}

RunPlan RunPlanOf(const std::vector<PlanStep>& steps, const TestDefinition& test) {
  return {.Steps = static_cast<int>(steps.size()),
          .StartMHz = test.StartFreq,
          .StopMHz = test.StopFreq,
          .EstimatedMinutes = EstimateRunSeconds(steps, test) / 60};
}

std::string TestPlanText(const FormEntries& entries, TestDefinition test, const std::string& calFreqRange) {
  if (TakeTyped(entries, calFreqRange, test)) return kNoNumberPlanText;
  if (!(test.StopFreq > test.StartFreq)) return WhyNoSteps(test);
  const TestPlan plan = PlanTest(test);
  if (test.FreqList && test.ListFile.empty()) return kNoListText;
  if (!plan.ListFrequencies) return kBadListText + FileNameOnly(test.ListFile);
  if (plan.Steps.empty()) return WhyNoSteps(test);
  const bool waits = std::any_of(plan.Steps.begin(), plan.Steps.end(), [](const auto& s) { return s.Dwell == 0; });
  const std::string text = PlanText(RunPlanOf(plan.Steps, test), waits);
  return plan.ListUnused ? text + "; the list of one frequency is left out" : text;
}

}  // namespace hylden
