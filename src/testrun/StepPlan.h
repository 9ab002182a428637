#pragma once

#include <vector>

namespace hylden {

struct TestDefinition;

/// A planned step of a test run: MHz, seconds.
struct PlanStep {
  double Freq = 0;
  double Dwell = 0;
};

/// The swept steps of a test, each with the sweep dwell: a LinearSweep or a LogSweep over the test's range. A test
/// without a sweep gives an empty plan.
std::vector<PlanStep> PlanSweep(const TestDefinition& test);

/// Inserts the discrete frequencies that lie within the test's range, each with the discrete dwell, in rising order
/// among the swept steps (behind a swept step of the same frequency). The list may be in any order.
void MergeList(std::vector<PlanStep>& steps, std::vector<double> list, const TestDefinition& test);

/// Estimated length of a run in seconds: the ramps and all dwells.
double EstimateRunSeconds(const std::vector<PlanStep>& steps, const TestDefinition& test);

}  // namespace hylden
