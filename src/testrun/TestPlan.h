#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "run/RunDisplay.h"
#include "shell/Failure.h"
#include "testrun/StepPlan.h"

namespace hylden {

class FormEntries;

/// The steps of a test by its definition and its frequency list.
struct TestPlan {
  std::vector<PlanStep> Steps;
  Result<std::size_t> ListFrequencies = 0;  ///< in the list; 0 where the test names none
  bool ListUnused = false;  ///< the test visits nothing of its list: it can't be read, or holds one frequency only
};
TestPlan PlanTest(const TestDefinition& test);

/// What a display is told of the steps.
RunPlan RunPlanOf(const std::vector<PlanStep>& steps, const TestDefinition& test);

/// What the entries of a test's form define: how many frequencies and how long they take, or why there are none.
/// @param test          the record behind the form
/// @param calFreqRange  of the calibration that is chosen there, "0.15 - 80"
std::string TestPlanText(const FormEntries& entries, TestDefinition test, const std::string& calFreqRange);

}  // namespace hylden
