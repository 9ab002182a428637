#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/Bench.h"
#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "support/DriverWrappers.h"
#include "support/TempDir.h"
#include "support/TestShell.h"
#include "testrun/RunEngine.h"

namespace hylden {

/// A display that remembers nothing but where the run is, and tells of completed rows.
class WatchedDisplay : public RunDisplay {
 public:
  /// A step has been recorded; RF is still on.
  std::function<void(int row)> onRow;

  void Countdown(double) override {}
  void Status(const std::string&) override {}
  void Step(int) override {}
  void Frequency(double frequencyMHz) override { frequency = frequencyMHz; }
  void SigGenLevel(float) override {}
  void TestLevel(float) override {}
  void InducedLevel(double, double) override {}
  void Power(double) override {}
  void Highlight(Quantity, bool) override {}
  void Dwell(double) override {}
  void Plan(int, double) override {}
  void Elapsed(double) override {}
  void Remaining(double) override {}
  void RowChanged(int row) override {
    if (row > 0 && onRow) onRow(row);
  }

  double frequency = 0;
};

/// The demo station on the simulated bench, in virtual time, with everything needed to run one of its tests.
class BenchStation {
 public:
  /// @param adjust  changes the bench before it is built
  explicit BenchStation(const std::string& equipmentFile = "station.eqp",
                        const std::function<void(BenchConfig&)>& adjust = {});

  /// Loads a test of the demo station with its calibration info, and cables the meter as it needs.
  void Load(const std::string& testFile);
  /// The checks of the Start command, then the whole run.
  void Run();

  TestDefinition& Test() { return documents.testSetup.Definition; }
  const std::vector<RunRow>& Rows() const { return engine.Data().Rows(); }
  /// The calibrated test level at a frequency, adjusted as the test has it, dBuV.
  double TargetDbuv(double frequencyMHz);
  /// How often the save question was asked.
  int SaveQuestions() const;

  WorkingDirectory atStation;  ///< the demo station's files name each other without a directory
  VirtualClock clock;
  Bench bench;
  FailingDriver driver;
  TestShell machine;
  Instruments instruments;
  Documents documents;
  WatchedDisplay display;
  RunControls controls;
  RunEngine engine;

 private:
  clsCalFile calibration_;
};

}  // namespace hylden
