#pragma once

#include "app/ConsoleRun.h"

namespace hylden {

class ConsoleStation;

/// The jobs of hylden-run: each sets the station up, runs, saves what it measured and tells how it ended.
ExitState RunTest(ConsoleStation& station);
ExitState RunLevelCalibration(ConsoleStation& station);
ExitState RunCableLoss(ConsoleStation& station);

}  // namespace hylden
