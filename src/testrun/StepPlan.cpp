#include "testrun/StepPlan.h"

#include <algorithm>
#include <cmath>

#include "documents/TestDefinition.h"
#include "measure/ReadFreq.h"
#include "testrun/LevelTargets.h"

namespace hylden {

namespace {

double RampSeconds(const TestDefinition& test) {
  if (test.InitLevOffset == 0) return 0;
  return std::abs(double{test.InitLevOffset} / MaximumIncrement(test) * double{test.InterDwell});
}

}  // namespace

std::vector<PlanStep> PlanSweep(const TestDefinition& test) {
  std::vector<double> sweep;
  if (!test.FreqSweep) return {};
  if (test.StepType == StepType::Linear) sweep = LinearSweep(test.StartFreq, test.StopFreq, test.LinearStep);
  if (test.StepType == StepType::Log) sweep = LogSweep(test.StartFreq, test.StopFreq, test.LogStep);
  std::vector<PlanStep> steps;
  steps.reserve(sweep.size());
  for (const double frequency : sweep) steps.push_back({frequency, test.SweepDwell});
  return steps;
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
