#pragma once

#include "run/RunParts.h"

namespace hylden {

struct RunInputs;

/// What a test run is made of: its definition, the record, the station, the tables in use and the steps planned.
RunParts PartsOf(RunInputs& inputs, const Documents& documents, const Instruments& instruments);

}  // namespace hylden
