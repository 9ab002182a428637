#pragma once

#include <string>
#include <vector>

#include "run/StepTimes.h"
#include "testrun/StepPlan.h"

namespace hylden {

struct EquipRecord;
struct TestDefinition;

/// Tests of one kind reach their levels in the same way.
std::string KindOf(const TestDefinition& test);

/// The steps of a run, as far as its definition tells what they take.
/// @param first  the step with which the run begins, counted from 0
std::vector<ExpectedStep> ExpectedSteps(const std::vector<PlanStep>& steps, std::size_t first,
                                        const TestDefinition& test, const EquipRecord& equipment);

}  // namespace hylden
