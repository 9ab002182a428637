#pragma once

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "calibration/CableCalibration.h"
#include "calibration/CalibrationDisplay.h"
#include "calibration/LevelCalibration.h"
#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "support/ScriptedBus.h"
#include "support/TestShell.h"

namespace hylden {

/// Keeps what a calibration shows.
class RecordingDisplay : public CalibrationDisplay {
 public:
  void Countdown(double) override {}
  void Running(bool running) override { states.push_back(running); }
  void Status(const std::string& text) override {
    if (throwAtStatus == text) throw RuntimeError(ErrorNumber::Overflow);
  }
  void Busy(bool on) override { busy += on ? 1 : -1; }
  void Plan(const CalibrationPlan& shown) override { plan = shown; }
  void Frequency(double) override {}
  void SigGenLevel(float levelDbm) override { levels.push_back(levelDbm); }
  void MeterLevel(double) override {}
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

/// A station with a little physics behind its bus: generator (18), power meter (13), meter (17) and, when the equipment
/// has them, IFI amplifiers. The meter reads 125 dB over the generator level, the sensors 50 dB over it and, for the
/// reverse power, 10 dB less. The cable loses 1 dB. The setup: 1, 2 and 4 MHz, 1 V (120 dBuV) without a coupling
/// factor, from -10 dBm.
class CalibrationRig {
 public:
  CalibrationRig();

  /// Prepares and runs the level calibration.
  void Run();
  /// A run whose meter gives these levels at the coupling device, dBuV, before it follows the physics.
  void RunWithLevels(std::deque<double> levels);
  /// The commands that an instrument got, without their ends.
  std::vector<std::string> Sent(int address) const;
  /// The generator's level commands.
  std::vector<std::string> LevelsSent() const;
  int Shown(const std::string& text) const;
  /// The rows recorded, one text per row.
  std::vector<std::string> Rows() const;
  void UseIfi();

  ScriptedBus bus;
  TestShell t{bus};
  Instruments instruments{t.shell};
  Documents documents{t.shell, instruments};
  RecordingDisplay display;
  LevelCalibration level{t.shell, instruments, documents, display};
  RunCablCal cable{t.shell, instruments};
  CalSetupRecord& setup = documents.calSetup.Record;
  EquipRecord& equipment = documents.equip.Record;

  // The physics.
  double portDb = 125, powerDb = 50;
  double stepDbm = 0;  ///< coarse steps that the generator's level comes in
  std::deque<double> levels;
  double generatorDbm = -200, frequencyMHz = 0;
  bool rfOn = false;
  bool rfOnAtMessage = false;  ///< RF was on while one of the run's own messages stood
  std::function<void(double reading)> onMeterRead;

 private:
  void Follow(const std::string& line);
  std::optional<std::string> AnswerOf(int address, const std::string& command);
  std::string MeterAnswer();
  void DefineInstruments();
};

}  // namespace hylden
