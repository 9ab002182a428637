#include "calibration/CalibrationRig.h"

#include <gtest/gtest.h>

namespace hylden {

CalibrationRig::CalibrationRig() {
  setup.StartFreq = 1;
  setup.StopFreq = 4;
  setup.StepType = StepType::Log;
  setup.LogStep = 100;
  setup.CalLevel = 1;
  setup.MaxLevel = 10;
  setup.MaxStep = 20;
  setup.InitLevel = -10;
  setup.Dwell = 0.5;
  setup.CouplingMethod = CouplingMethod::CurrentClampDirect;
  setup.SetupDescription = "1 V";
}

void CalibrationRig::Run() {
  ASSERT_TRUE(level.Prepare()) << t.dialogs.LastText();
  level.Run();
}

void CalibrationRig::RunWithLevels(std::deque<double> scripted) {
  levels = std::move(scripted);
  Run();
}

std::vector<std::string> CalibrationRig::Rows() const {
  std::vector<std::string> rows;
  for (const CalRow& row : level.Rows()) {
    std::string& text = rows.emplace_back();
    for (const std::string& cell : CellsOf(row)) text += cell + ",";
  }
  return rows;
}

double CalibrationRig::MeterReading(double levelDbm) {
  double reading = levelDbm + portDb;
  if (!levels.empty()) {
    reading = levels.front() - 1;  // what the cable loses
    levels.pop_front();
  }
  if (onMeterRead) onMeterRead(reading);
  return reading;
}

}  // namespace hylden
