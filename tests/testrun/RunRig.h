#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/StationRig.h"
#include "testrun/RunCommands.h"
#include "testrun/RunDisplay.h"
#include "testrun/RunEngine.h"

namespace hylden {

/// Keeps what a run shows.
class RecordingDisplay : public RunDisplay {
 public:
  void Status(const std::string& text) override {
    if (throwAtStatus == text) throw RuntimeError(ErrorNumber::Overflow);
    statuses.push_back(text);
  }
  void Step(int step) override { steps.push_back(step); }
  void Frequency(double frequencyMHz) override { frequencies.push_back(frequencyMHz); }
  void ManualStep(int step, int row) override { manual = {step, row}; }
  void SigGenLevel(float levelDbm) override { levels.push_back(levelDbm); }
  void TestLevel(float levelDbuv) override { testLevel = levelDbuv; }
  void InducedLevel(double levelDbua, double limitDbua) override {
    induced = levelDbua;
    limit = limitDbua;
  }
  void Power(double powerDbm) override { power = powerDbm; }
  void ForgetReadings() override { induced = power = 0; }
  void Highlight(Quantity quantity, bool red) override { highlights[quantity] = red; }
  void Plan(int count, double minutes) override {
    planned = count;
    estimatedMinutes = minutes;
  }
  void Elapsed(double minutes) override { elapsed.push_back(minutes); }
  void Remaining(double minutes) override { remaining.push_back(minutes); }
  void RowChanged(int row) override { rows.push_back(row); }

  std::optional<std::string> throwAtStatus;
  std::vector<std::string> statuses;
  std::vector<int> steps, rows;
  std::vector<double> frequencies, elapsed, remaining;
  std::vector<float> levels;
  std::map<Quantity, bool> highlights;
  std::pair<int, int> manual;  ///< step and row
  double testLevel = 0, induced = 0, limit = 0, power = 0, estimatedMinutes = 0;
  int planned = 0;
};

/// Keeps what a run does to the windows, in order.
class RecordingControls : public RunControls {
 public:
  void SetRunMode() override { calls.push_back("run mode"); }
  void SetHaltMode() override { calls.push_back("halt mode"); }
  void SetHalting() override { calls.push_back("halting"); }
  void FileMenuEnabled(bool on) override { calls.push_back(on ? "file menu on" : "file menu off"); }
  void ButtonsEnabled(bool on) override { calls.push_back(on ? "buttons on" : "buttons off"); }
  void ButtonsVisible(bool on) override { calls.push_back(on ? "buttons shown" : "buttons hidden"); }
  void OpenManual(const ManualStart& start) override {
    calls.push_back("manual opened");
    opened = start;
  }
  void CloseManual() override { calls.push_back("manual closed"); }
  void ManualFreq(double frequencyMHz) override { manualFreq = frequencyMHz; }
  void ManualRf(bool on) override { manualRf = on; }
  void ManualMod(bool on) override { manualMod = on; }

  std::vector<std::string> calls;
  ManualStart opened;
  double manualFreq = 0;
  bool manualRf = false, manualMod = false;
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
  void UsePower(LevelingMethod method) { test.LevelingMethod = static_cast<int>(method); }
  void UseAm(bool offBetween, bool constPeak);
  /// Does something when the display shows this status for the n-th time.
  void AtStatus(const std::string& status, std::function<void()> action, int n = 1);
  /// The run data below the header, one text per row.
  std::vector<std::string> Rows() const { return RunRowLines(engine.Data(), false); }

  RecordingDisplay display;
  RecordingControls controls;
  RunEngine engine{t.shell, instruments, documents, display, controls};
  RunCommands commands{t.shell, documents, engine, controls};
  TestDefinition& test = documents.testSetup.Definition;

 private:
  double MeterReading(double levelDbm) override { return levelDbm + 90; }
  void DefineTest();
};

}  // namespace hylden
