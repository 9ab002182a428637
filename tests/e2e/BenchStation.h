#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/Station.h"
#include "bench/Bench.h"
#include "calibration/CableCalibration.h"
#include "calibration/LevelCalibration.h"
#include "documents/clsCalFile.h"
#include "run/RunDisplay.h"
#include "support/DriverWrappers.h"
#include "support/TestShell.h"
#include "testrun/ManualControls.h"
#include "testrun/RunEngine.h"

namespace hylden {

/// Tells of rows.
class WatchedDisplay : public RunDisplay {
 public:
  /// A step has begun or been recorded; RF is still on.
  std::function<void(int row)> onRow;

  void RowChanged(int row) override {
    if (row > 0 && onRow) onRow(row);
  }
};

/// Tells of recorded points; RF is still on.
class WatchedCalibration : public RunDisplay {
 public:
  std::function<void(int step)> onStep;

  void StepDone(int step) override {
    if (onStep) onStep(step);
  }
};

/// The demo station on the simulated bench, in virtual time, with everything needed to run its tests and calibrations.
class BenchStation {
 public:
  /// @param adjust  changes the bench before it is built
  explicit BenchStation(const std::string& equipmentFile = "station.eqp",
                        const std::function<void(BenchConfig&)>& adjust = {});

  /// Meter and power meter go offline by starting anew.
  void ForgetShutdownTexts();

  /// Loads a test of the demo station with its calibration info, and cables the meter as it needs.
  void Load(const std::string& testFile);
  /// The checks of the Start command, then the whole run.
  void Run();

  TestDefinition& Test() { return documents.testSetup.Definition; }
  const std::vector<RunEntry>& Rows() const { return engine.Data().Entries(); }
  /// Whether the step of this row, counted from 1, has been completed.
  bool IsComplete(int row) const {
    return std::get<StepEntry>(Rows().at(static_cast<std::size_t>(row - 1))).Result.has_value();
  }
  /// The calibrated test level at a frequency, adjusted as the test has it, dBuV.
  double TargetDbuv(double frequencyMHz);

  CalSetupRecord& Setup() { return documents.calSetup.Record; }
  /// The checks of the Start command, then the whole level calibration; a record is saved when a path is given.
  void Calibrate(const std::string& recordPath = {});
  void DirectPass();
  void InsertPass();

  /// How often a question with this title was asked.
  int Asked(const std::string& title) const;
  /// Whether any instrument was left in remote mode.
  bool AnyRemote();

  WorkingDirectory atStation;  ///< the demo station's files name each other without a directory
  VirtualClock clock;
  Bench bench;
  FailingDriver driver;
  TestShell machine;
  Station station{machine.shell, &bench};
  Instruments& instruments = station.instruments;
  Documents& documents = station.documents;
  WatchedDisplay display;
  ManualControls manual;
  RunEngine engine{machine.shell, instruments, documents, display, manual};
  WatchedCalibration calibrationDisplay;
  LevelCalibration level{machine.shell, instruments, documents, calibrationDisplay};
  RunCablCal cable{machine.shell, instruments};

 private:
  clsCalFile calibration_;
};

}  // namespace hylden
