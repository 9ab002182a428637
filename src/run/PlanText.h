#pragma once

#include <string>

namespace hylden {

struct RunPlan;

/// A plan in a line: "67 frequencies, about 0:12:34"; without the time where nobody can tell.
/// @param waits  some of its dwells wait for the operator
std::string PlanText(const RunPlan& plan, bool waits);

}  // namespace hylden
