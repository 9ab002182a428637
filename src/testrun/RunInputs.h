#pragma once

#include <vector>

#include "documents/clsCalFile.h"
#include "measure/InterpClass.h"
#include "testrun/StepPlan.h"

namespace hylden {

/// What a test run is made of, read before anything is switched on. The record and the tables in use cover the steps.
struct RunInputs {
  explicit RunInputs(Shell& shell) : CableLoss(shell), ProbeFactor(shell), ForwardPort(shell), ReversePort(shell) {}
  RunInputs(const RunInputs&) = delete;
  RunInputs& operator=(const RunInputs&) = delete;

  std::vector<PlanStep> Steps;  ///< step i of the run is Steps[i - 1]
  bool ListReadable = true;     ///< the list that the test names, if any
  clsCalFile Calibration;
  InterpClass CableLoss, ProbeFactor;  ///< with a probe only
  InterpClass ForwardPort, ReversePort;
};

}  // namespace hylden
