#pragma once

#include <optional>
#include <vector>

#include "instruments/Instruments.h"
#include "run/RunDisplay.h"
#include "run/RunGuard.h"
#include "testrun/ManualControls.h"
#include "testrun/RunData.h"
#include "testrun/RunPreparation.h"

namespace hylden {

class Shell;
struct Documents;

/// What a step came to: the level that stood for its dwell.
struct ReachedStep {
  float SigGenLevel = 0;  ///< dBm
  float TestLevel = 0;    ///< dBuV
  double Offset = 0;      ///< how far below its calibrated level the next step is to begin, dB
  int Row = 0;            ///< of the run data
};

/// What the parts of one run share: the engine, its steps and manual mode.
struct RunContext {
  RunContext(Shell& theShell, Instruments& theInstruments, Documents& theDocuments, RunDisplay& theDisplay,
             ManualControls& theManual)
      : shell(theShell),
        instruments(theInstruments),
        documents(theDocuments),
        display(theDisplay),
        manual(theManual),
        guard(theShell, theInstruments.sigGen),
        preparation(theShell, theInstruments, theDocuments, theDisplay, guard) {}

  Shell& shell;
  Instruments& instruments;
  Documents& documents;
  RunDisplay& display;
  ManualControls& manual;
  RunGuard guard;
  RunPreparation preparation;
  RunData data;
  std::vector<PlanStep> steps;                      ///< step i of the run is steps[i - 1]
  std::vector<std::optional<ReachedStep>> reached;  ///< the same for what they came to when they were run last

  bool manualRequested = false;     ///< manual mode was asked for, or is going on
  bool modulationSilenced = false;  ///< manual mode left the modulation off
};

}  // namespace hylden
