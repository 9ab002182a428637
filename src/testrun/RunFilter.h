#pragma once

#include <string>
#include <vector>

#include "testrun/RunData.h"

namespace hylden {

/// Which rows of run data are looked at.
enum class RowFilter { All, Thresholds, NotHeld, AboveTarget, HeldByCurrent };

/// A step whose level was not held: it failed, or the run was halted in it.
bool IsNotHeld(const RunEntry& entry);
/// Above target: the forward power passed its target. Held by current: the induced current passed its limit.
bool Passes(RowFilter filter, const RunEntry& entry);
/// The numbers, counted from 1, of the rows that pass, in their order.
std::vector<int> RowsThrough(RowFilter filter, const std::vector<RunEntry>& rows);

/// "161 steps, 1 of them not held, 2 thresholds"
std::string RowCounts(const std::vector<RunEntry>& rows);

/// The row of the step that a row belongs to: its own, or for a threshold that of the last held step at its frequency
/// before it. 0: there is none.
int StepRowOf(const std::vector<RunEntry>& rows, int row);

}  // namespace hylden
