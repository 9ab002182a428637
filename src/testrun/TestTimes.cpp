#include "testrun/TestTimes.h"

#include <cmath>

#include "documents/EquipRecord.h"
#include "documents/TestDefinition.h"
#include "testrun/LevelTargets.h"

namespace hylden {

std::string KindOf(const TestDefinition& test) {
  std::string kind = "test";
  if (test.LevelsBy(LevelingMethod::ForwardPower)) kind += ", forward power";
  if (test.LevelsBy(LevelingMethod::NetPower)) kind += ", net power";
  if (test.MonitorProbe) kind += ", probe";
  if (LimitsCurrent(test)) kind += ", current limit";
  if (test.ModOffBetweenFreqs) kind += ", modulation off between";
  if (test.ModOffBetweenFreqs && test.ModType == Modulation::Am && test.ConstPeak) kind += ", constant peak";
  return kind;
}

std::vector<ExpectedStep> ExpectedSteps(const std::vector<PlanStep>& steps, std::size_t first,
                                        const TestDefinition& test, const EquipRecord& equipment) {
  std::vector<ExpectedStep> expected;
  expected.reserve(steps.size());
  for (std::size_t i = first; i < steps.size(); ++i) {
    const double frequency = steps[i].Freq, before = i > first ? steps[i - 1].Freq : 0;
    const auto isHigh = [&](double f) { return f > equipment.IfiBandSwitch; };
    const bool changes = equipment.HasIfiAmplifier() && isHigh(before) != isHigh(frequency);
    const double offset = StartingOffset(test, {before, 0}, frequency);
    expected.push_back({i == first ? StepKind::First
                        : changes  ? StepKind::Change
                                   : StepKind::Next,
                        steps[i].Dwell, double{test.InterDwell}, 1 + std::ceil(offset / MaximumIncrement(test))});
  }
  return expected;
}

}  // namespace hylden
