#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "calibration/CableCalibration.h"
#include "calibration/LevelCalibration.h"
#include "support/RecordingDisplay.h"
#include "support/StationRig.h"

namespace hylden {

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
