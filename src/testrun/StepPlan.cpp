#include "testrun/StepPlan.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "documents/TestDefinition.h"
#include "measure/ReadFreq.h"
#include "testrun/LevelTargets.h"
#include "text/Numbers.h"

namespace hylden {

namespace {

std::vector<PlanStep> PlanLinear(const TestDefinition& test) {
  std::vector<PlanStep> steps;
  if (!(test.LinearStep > 0)) return steps;
  const double count = NearestWhole((test.StopFreq - test.StartFreq) / test.LinearStep + 1);
  if (!(count >= 1) || count > static_cast<double>(kMostSteps)) return steps;
  steps.reserve(static_cast<std::size_t>(count));
  for (std::size_t k = 0; k < static_cast<std::size_t>(count); ++k)
    steps.push_back({test.StartFreq + static_cast<double>(k) * test.LinearStep, test.SweepDwell});
  return steps;
}

std::vector<PlanStep> PlanLog(const TestDefinition& test) {
  std::vector<PlanStep> steps;
  if (!(test.LogStep > 0) || !(test.StartFreq > 0) || !std::isfinite(test.StopFreq)) return steps;
  const double ratio = 1 + test.LogStep / 100;
  for (double frequency = test.StartFreq; frequency < test.StopFreq; frequency *= ratio) {
    if (steps.size() + 1 >= kMostSteps) return {};
    steps.push_back({frequency, test.SweepDwell});
  }
  steps.push_back({test.StopFreq, test.SweepDwell});
  return steps;
}

double RampSeconds(const TestDefinition& test) {
  if (test.InitLevOffset == 0) return 0;
  return std::abs(double{test.InitLevOffset} / MaximumIncrement(test) * double{test.InterDwell});
}

}  // namespace

std::vector<PlanStep> PlanSweep(const TestDefinition& test) {
  if (!test.FreqSweep) return {};
  if (test.StepType == static_cast<int>(StepType::Linear)) return PlanLinear(test);
  if (test.StepType == static_cast<int>(StepType::Log)) return PlanLog(test);
  return {};
}

void MergeList(std::vector<PlanStep>& steps, std::vector<double> list, const TestDefinition& test) {
  std::erase_if(list, [&](double f) { return !(f >= test.StartFreq && f <= test.StopFreq); });
  std::sort(list.begin(), list.end());

  std::vector<PlanStep> merged;
  merged.reserve(steps.size() + list.size());
  auto swept = steps.cbegin();
  for (const double frequency : list) {
    for (; swept != steps.cend() && swept->Freq <= frequency; ++swept) merged.push_back(*swept);
    merged.push_back({frequency, test.DiscreteDwell});
  }
  merged.insert(merged.end(), swept, steps.cend());
  steps = std::move(merged);
}

double EstimateRunSeconds(const std::vector<PlanStep>& steps, const TestDefinition& test) {
  double seconds = RampSeconds(test) * static_cast<double>(steps.size());
  for (const PlanStep& step : steps) seconds += step.Dwell;
  return seconds;
}

}  // namespace hylden
