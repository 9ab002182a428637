#pragma once

#include <string>
#include <vector>

#include "calibration/CableCalibration.h"
#include "calibration/LevelCalibration.h"
#include "support/DemoStation.h"
#include "support/RecordingDisplay.h"
#include "testrun/ManualControls.h"
#include "testrun/RunEngine.h"

namespace hylden {

/// The demo station with everything that runs on it.
struct DemoRuns : DemoStation<> {
  using DemoStation::DemoStation;

  /// Loads a test, and the record that it replays.
  void Load(const std::string& testFile) {
    LoadTest(testFile);
    ASSERT_TRUE(record.LoadFile(Test().CalInfoFile));
  }
  /// The checks of the Start command, then the whole run.
  void Run() {
    ASSERT_FALSE(CheckStart(Test(), documents.equip.Record));
    ASSERT_EQ(engine.Prepare(), RunReadiness::Ready) << dialogs.LastText();
    engine.RunCdiTest();
  }
  const std::vector<RunEntry>& Rows() const { return engine.Data().Entries(); }
  /// Whether the step of this row, counted from 1, has been completed.
  bool IsComplete(int row) const {
    return std::get<StepEntry>(Rows().at(static_cast<std::size_t>(row - 1))).Result.has_value();
  }
  /// The calibrated test level at a frequency, adjusted as the test has it, dBuV.
  double TargetDbuv(double frequencyMHz) {
    return double{record.GetTestLevel(frequencyMHz)} + (Test().Extrapolate ? Test().ExtrapolateTo : 0);
  }

  CalSetupRecord& Setup() { return documents.calSetup.Record; }
  /// The checks of the Start command, then the whole level calibration; a record is saved when a path is given.
  void Calibrate(const std::string& recordPath = {}) {
    ASSERT_FALSE(CheckStation(Setup(), documents.equip.Record));
    ASSERT_TRUE(level.Prepare()) << dialogs.LastText();
    if (!recordPath.empty()) dialogs.AnswerSave(recordPath);
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

  /// Everything is off and back in local mode.
  void ExpectAtRest() {
    EXPECT_FALSE(instruments.sigGen.RfIsOn());
    EXPECT_EQ(bench.Bus().UnknownCount(), 0) << bench.Bus().UnknownCommands().front().Text;
    for (const int address : {18, 13, 14, 9, 10}) EXPECT_FALSE(bench.Bus().IsRemote(address)) << address;
  }

  RecordingDisplay display, calibrationDisplay;
  ManualControls manual;
  RunEngine engine{shell, instruments, documents, display, manual};
  LevelCalibration level{shell, instruments, documents, calibrationDisplay};
  RunCablCal cable{shell, instruments};
  clsCalFile record;
};

}  // namespace hylden
