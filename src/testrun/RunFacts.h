#pragma once

#include "testrun/RunInfo.h"

namespace hylden {

class Shell;
struct Documents;
struct Instruments;
struct RunInputs;

/// What a run is made of, as it begins: definition, station, record, plan, program, time.
RunInfo FactsOf(const Shell& shell, const Documents& documents, const Instruments& instruments,
                const RunInputs& inputs);

}  // namespace hylden
