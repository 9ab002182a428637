#pragma once

#include <string>
#include <utility>
#include <vector>

#include "support/RecordingDisplay.h"
#include "support/StationRig.h"
#include "testrun/ManualControls.h"
#include "testrun/RunEngine.h"

namespace hylden {

/// Keeps what a run does to the window of manual mode, in order.
class RecordingManual : public ManualControls {
 public:
  void OpenManual(const ManualStart& start) override {
    calls.push_back("manual opened");
    opened = start;
    isOpen = true;
  }
  void CloseManual() override {
    calls.push_back("manual closed");
    isOpen = false;
  }
  void ManualStep(int step, int row, double frequencyMHz) override {
    at = {step, row};
    freq = frequencyMHz;
  }
  void ManualRf(bool on) override { rf = on; }
  void ManualMod(bool on) override { mod = on; }

  std::vector<std::string> calls;
  bool isOpen = false;
  ManualStart opened;
  std::pair<int, int> at;  ///< step and row
  double freq = 0;
  bool rf = false, mod = false;
};

/// A station with a test run. The probe reads 90 dB over the generator's level. The test definition holds three steps,
/// 1, 2 and 4 MHz, calibrated at -10, -8 and -6 dBm for 40, 42 and 44 dBm forward and 30, 32 and 34 dBm reverse power
/// and 120 dBuV.
class RunRig : public StationRig {
 public:
  RunRig();

  /// Prepares and runs.
  void Run();
  RunReadiness Prepare() { return engine.Prepare(); }
  void UsePower(LevelingMethod method) { test.LevelingMethod = method; }
  void UseAm(bool offBetween, bool constPeak);
  /// Does something when the display shows this status for the n-th time.
  void AtStatus(const std::string& status, std::function<void()> action, int n = 1);
  /// The run data below the header, one text per row.
  std::vector<std::string> Rows() const { return RunRowLines(engine.Data(), false); }

  RecordingDisplay display;
  RecordingManual manual;
  RunEngine engine{t.shell, instruments, documents, display, manual};
  TestDefinition& test = documents.testSetup.Definition;

 private:
  double MeterReading(double levelDbm) override { return levelDbm + 90; }
  void DefineTest();
};

}  // namespace hylden
