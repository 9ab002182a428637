#pragma once

#include "app/ConsoleRun.h"

namespace hylden {

class ConsoleStation;

/// The jobs of hylden-run: each sets the station up, runs, saves what it measured and tells how it ended.
ExitState RunTest(ConsoleStation& station);
ExitState RunLevelCalibration(ConsoleStation& station);
ExitState RunCableLoss(ConsoleStation& station);
/// Prints how the station's addresses are reached, or those of every address where no equipment is named, and who
/// listens. Without a way to the bus it prints in one line what is missing, and fails.
ExitState PrintBusInfo(ConsoleStation& station);

/// Saves what one journal holds, removes it as it is, or lists them all. It asks nothing: a file that is there is
/// replaced with "--yes" only.
ExitState RunRecovery(const RunOptions& options);
/// Writes saved run data as a table; what can't be read of them is told, and left out. It asks nothing, either.
ExitState ExportRunData(const RunOptions& options);

}  // namespace hylden
