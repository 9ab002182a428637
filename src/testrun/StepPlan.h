#pragma once

#include <vector>

namespace hylden {

struct TestDefinition;

/// A planned step of a test run: MHz, seconds; and what it came to when it was run last.
struct PlanStep {
  double Freq = 0;
  double Dwell = 0;
  float SigGenLevel = -999;  ///< the generator level reached, dBm; -999 until the step has been run
  float TestLevel = -999;    ///< the test level there, dBuV
  int Row = 0;               ///< its row of the run data
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
