#pragma once

#include "shell/Failure.h"

namespace hylden {

class SigGen;
struct TestDefinition;

/// Sets the test's modulation and switches it on, or all modulation off for a test without. It is refused where the
/// generator can't do it.
Done SetUpModulation(SigGen& sigGen, const TestDefinition& test);
/// Switches the test's modulation on, as it was set up.
Done SwitchModulationOn(SigGen& sigGen, const TestDefinition& test);

}  // namespace hylden
