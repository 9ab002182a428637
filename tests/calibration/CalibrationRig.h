#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "calibration/CableCalibration.h"
#include "calibration/CalibrationDisplay.h"
#include "calibration/LevelCalibration.h"
#include "support/StationRig.h"

namespace hylden {

/// Keeps what a calibration shows.
class RecordingDisplay : public CalibrationDisplay {
 public:
  void Running(bool running) override { states.push_back(running); }
  void Status(const std::string& text) override {
    if (throwAtStatus == text) throw RuntimeError(ErrorNumber::Overflow);
  }
  void Busy(bool on) override { busy += on ? 1 : -1; }
  void Plan(const CalibrationPlan& shown) override { plan = shown; }
  void SigGenLevel(float levelDbm) override { levels.push_back(levelDbm); }
  void Step(int step) override { steps.push_back(step); }
  void Elapsed(double minutes) override { elapsed = minutes; }
  void Remaining(double minutes) override { remaining = minutes; }
  void TableCut(int count) override { rows = count; }
  void RowChanged(int row) override { rows = std::max(rows, row); }
  void TestLevel(double volts) override { testLevel = volts; }
  void CableLoss(double db) override { cableLoss = db; }
  void ForwardPower(double watts) override { forwardWatts = watts; }

  std::optional<std::string> throwAtStatus;
  std::vector<bool> states;
  int busy = 0;
  CalibrationPlan plan;
  std::vector<float> levels;
  std::vector<int> steps;
  double elapsed = 0, remaining = 0, testLevel = 0, cableLoss = 0, forwardWatts = 0;
  int rows = 0;
};

/// A station with its calibrations. The meter reads 125 dB over the generator's level. The setup: 1, 2 and 4 MHz, 1 V
/// (120 dBuV) without a coupling factor, from -10 dBm.
class CalibrationRig : public StationRig {
 public:
  CalibrationRig();

  /// Prepares and runs the level calibration.
  void Run();
  /// A run whose meter gives these levels at the coupling device, dBuV, before it follows the physics.
  void RunWithLevels(std::deque<double> levels);
  /// The rows recorded, one text per row.
  std::vector<std::string> Rows() const;

  RecordingDisplay display;
  LevelCalibration level{t.shell, instruments, documents, display};
  RunCablCal cable{t.shell, instruments};
  CalSetupRecord& setup = documents.calSetup.Record;

  // The physics.
  double portDb = 125;
  std::deque<double> levels;
  std::function<void(double reading)> onMeterRead;

 private:
  double MeterReading(double levelDbm) override;
};

}  // namespace hylden
