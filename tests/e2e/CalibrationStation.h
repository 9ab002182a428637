#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "BenchStation.h"
#include "calibration/CableCalibration.h"
#include "calibration/CalibrationDisplay.h"
#include "calibration/LevelCalibration.h"

namespace hylden {

/// A display that tells of recorded points while RF is on.
class WatchedCalibration : public CalibrationDisplay {
 public:
  std::function<void(int row)> onStep;

  void Countdown(double) override {}
  void Running(bool) override {}
  void Status(const std::string&) override {}
  void Plan(const CalibrationPlan&) override {}
  void Frequency(double) override {}
  void SigGenLevel(float) override {}
  void MeterLevel(double) override {}
  void Step(int step) override {
    if (onStep) onStep(step);
  }
  void Elapsed(double) override {}
  void TableCut(int) override {}
  void RowChanged(int) override {}
};

/// The demo station with its calibrations: 10 V at the coupling device, in virtual time.
class CalibrationStation : public BenchStation {
 public:
  explicit CalibrationStation(const std::string& equipmentFile = "station.eqp",
                              const std::function<void(BenchConfig&)>& adjust = {})
      : BenchStation(equipmentFile, adjust) {
    EXPECT_TRUE(documents.calSetup.LoadDef("cdn-10v.csu"));
  }

  CalSetupRecord& Setup() { return documents.calSetup.Record; }

  /// The checks of the Start command, then the whole level calibration; a record is saved when a path is given.
  void Calibrate(const std::string& recordPath = {}) {
    ASSERT_FALSE(CheckStation(Setup(), documents.equip.Record));
    ASSERT_TRUE(level.Prepare()) << machine.dialogs.LastText();
    if (!recordPath.empty()) machine.dialogs.AnswerSave(recordPath);
    level.Run();
  }
  void DirectPass() {
    bench.Connect(MeterAt::Generator);
    cable.DirectPass(calibrationDisplay);
  }
  void InsertPass() {
    bench.Connect(MeterAt::Cable);
    cable.InsertPass(calibrationDisplay);
  }
  int CalibrationQuestions() const {
    const auto& messages = machine.dialogs.messages;
    return static_cast<int>(std::count_if(messages.begin(), messages.end(),
                                          [](const Message& message) { return message.title == "Save Calibration"; }));
  }
  bool AnyRemote() {
    const int addresses[] = {18, 13, 14, 9, 10};
    return std::any_of(std::begin(addresses), std::end(addresses), [&](int a) { return bench.Bus().IsRemote(a); });
  }

  WatchedCalibration calibrationDisplay;
  LevelCalibration level{machine.shell, instruments, documents, calibrationDisplay};
  RunCablCal cable{machine.shell, instruments};
};

}  // namespace hylden
