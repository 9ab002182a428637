#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "calibration/CableCalibration.h"
#include "calibration/LevelCalibration.h"
#include "support/RecordingDisplay.h"
#include "support/TestStation.h"

namespace hylden {

/// The scripted station with its calibrations. The meter reads 125 dB over the generator's level. The setup: 1, 2 and 4
/// MHz, 1 V (120 dBuV) without a coupling factor, from -10 dBm; the cable's plan: 1, 2 and 4 MHz at -20 dBm.
struct CalibrationRuns : TestStation {
  CalibrationRuns() {
    MakeLive([this](double levelDbm) { return MeterReading(levelDbm); });
    setup.StartFreq = 1, setup.StopFreq = 4, setup.StepType = StepType::Log, setup.LogStep = 100;
    setup.CalLevel = 1, setup.MaxLevel = 10, setup.MaxStep = 20, setup.InitLevel = -10;
    setup.Dwell = 0.5;
    setup.CouplingMethod = CouplingMethod::CurrentClampDirect;
    setup.SetupDescription = "1 V";
    CableSetup& c = cable.Setup;
    c.StartFreq = 1, c.StopFreq = 4, c.StepType = StepType::Log, c.LogStep = 100, c.Level = -20;
    EXPECT_TRUE(cable.BuildPlan());
  }

  /// Prepares and runs the level calibration.
  void Run() {
    ASSERT_TRUE(level.Prepare()) << t.dialogs.LastText();
    level.Run();
  }
  /// A run whose meter gives these levels at the coupling device, dBuV, before it follows the physics.
  void RunWithLevels(std::deque<double> scripted) {
    levels = std::move(scripted);
    Run();
  }
  /// The rows recorded, one text per row.
  Strings Rows() const {
    Strings rows;
    for (const CalRow& row : level.Rows()) {
      std::string& text = rows.emplace_back();
      for (const std::string& cell : CellsOf(row)) text += cell + ",";
    }
    return rows;
  }
  /// Requests a halt while the meter is read at this frequency.
  void HaltAt(double atMHz) {
    onMeterRead = [this, atMHz](double) {
      if (generatorMHz == atMHz) t.shell.delay.RequestHalt();
    };
  }
  /// Does something at the n-th reading of the meter.
  void AtRead(int n, std::function<void()> action) {
    onMeterRead = [n, action, reads = 0](double) mutable {
      if (++reads == n) action();
    };
  }

  RecordingDisplay display;
  LevelCalibration level{t.shell, instruments, documents, display};
  RunCablCal cable{t.shell, instruments};
  CalSetupRecord& setup = documents.calSetup.Record;

  // The physics.
  double portDb = 125;
  std::deque<double> levels;
  std::function<void(double reading)> onMeterRead;

 private:
  double MeterReading(double levelDbm) {
    double reading = levelDbm + portDb;
    if (!levels.empty()) {
      reading = levels.front() - 1;  // what the cable loses
      levels.pop_front();
    }
    if (onMeterRead) onMeterRead(reading);
    return reading;
  }
};

}  // namespace hylden
