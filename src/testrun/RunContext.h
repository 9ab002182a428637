#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "run/ForwardSensor.h"
#include "run/RunDisplay.h"
#include "run/RunGuard.h"
#include "testrun/ManualControls.h"
#include "testrun/RunData.h"
#include "testrun/RunInputs.h"
#include "testrun/TestInstruments.h"

namespace hylden {

class Shell;

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
        up(theShell, theInstruments, theDocuments.testSetup.Definition, theDocuments.equip.Record, theDisplay, guard),
        sensor(theShell, theInstruments, theDocuments.equip.Record) {}

  Shell& shell;
  Instruments& instruments;
  Documents& documents;
  RunDisplay& display;
  ManualControls& manual;
  RunGuard guard;
  TestInstruments up;
  ForwardSensor sensor;
  RunData data;
  std::unique_ptr<RunInputs> inputs;                ///< nothing before the run is ready
  std::vector<std::optional<ReachedStep>> reached;  ///< by step: what it came to when it was run last

  bool manualRequested = false;     ///< manual mode was asked for, or is going on
  bool modulationSilenced = false;  ///< manual mode left the modulation off
};

}  // namespace hylden
