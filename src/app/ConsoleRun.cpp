#include "app/ConsoleRun.h"

#include <iostream>

#include "app/ConsoleJobs.h"
#include "app/ConsoleStation.h"
#include "instruments/Gpib.h"

namespace hylden {

namespace {

ExitState RunJob(ConsoleStation& station) {
  switch (station.Options().What) {
    case RunOptions::Job::Calibration:
      return RunLevelCalibration(station);
    case RunOptions::Job::CableLoss:
      return RunCableLoss(station);
    case RunOptions::Job::BusInfo:
      return PrintBusInfo(station);
    case RunOptions::Job::Recovery:  // neither needs a station
    case RunOptions::Job::Export:
    case RunOptions::Job::Test:
      break;
  }
  return RunTest(station);
}

}  // namespace

ExitState RunOnConsole(const RunOptions& options) {
  try {
    if (options.What == RunOptions::Job::Recovery) return RunRecovery(options);
    if (options.What == RunOptions::Job::Export) return ExportRunData(options);
    ConsoleStation station(options);
    const ExitState state = RunJob(station);
    station.TellJournals();
    return state == ExitState::Failed && station.IsStopped() ? ExitState::Halted : state;
  } catch (const ProgramEnd&) {
    return ExitState::Failed;  // its message has been shown
  } catch (const std::exception& error) {
    std::cerr << "hylden-run: " << error.what() << '\n';
    return ExitState::Failed;
  }
}

}  // namespace hylden
