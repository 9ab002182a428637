#pragma once

#include <vector>

#include "run/ElapsedTime.h"
#include "run/RunOutcome.h"
#include "run/UnsavedRows.h"
#include "testrun/ManualMode.h"
#include "testrun/RunContext.h"
#include "testrun/StepRunner.h"

namespace hylden {

/// What Prepare came to.
enum class RunReadiness {
  NoSteps,   ///< nothing to test: the run window closes
  NotReady,  ///< a table or the calibration record is missing: the window stays, Run can't be pressed
  Ready
};

/// Runs a test: walks the planned steps, lets the operator take over between them, and always ends with RF off, the
/// instruments offline and the question whether to save. One run at a time; levels, messages and their order are those
/// that an operator of the station knows.
class RunEngine {
 public:
  RunEngine(Shell& shell, Instruments& instruments, Documents& documents, RunDisplay& display, ManualControls& manual);
  RunEngine(const RunEngine&) = delete;
  RunEngine& operator=(const RunEngine&) = delete;

  /// Plans the steps, loads the calibration record and the factor tables, and sets the run data up afresh. What fails
  /// has been shown.
  RunReadiness Prepare();
  /// Has the operator check amplifier and coupling device, then runs the test. Rows that are not saved are asked about.
  void ConfirmAndRun();
  /// Runs the whole test; returns when it ended, failed or was halted. Does nothing before Prepare came to Ready.
  void RunCdiTest();
  /// Levels and dwells the current step; false ends the run.
  bool RunStep(bool first);
  int CurrentStepNumber() const { return currentStep_; }

  bool IsRunning() const { return run_.guard.IsRunning(); }
  /// The save command: asks for a file and writes all rows to it. @return false when there were rows and they were not
  /// written
  bool Save() { return unsaved_.Save(); }
  UnsavedRows& Unsaved() { return unsaved_; }
  const UnsavedRows& Unsaved() const { return unsaved_; }
  RunOutcome Outcome() const { return run_.guard.Outcome(); }
  /// The highest step reached in the last run.
  int CompletedSteps() const { return highestStep_; }
  /// Manual mode after the current step; a long dwell in progress ends one intermediate dwell from now.
  void RequestManual();

  ManualMode& Manual() { return manual_; }
  const RunData& Data() const { return run_.data; }
  /// How many steps the run has; 0 before Prepare came to Ready.
  std::size_t PlannedSteps() const { return run_.inputs ? run_.inputs->Steps.size() : 0; }
  /// What a step (counted from 1) came to; nothing before it was run.
  const std::optional<ReachedStep>& Reached(int step) const {
    return run_.reached.at(static_cast<std::size_t>(step - 1));
  }

 private:
  bool Halted() const;
  bool Confirm();
  void Reset();
  void RunTest();
  void Sweep();
  bool ManualPhase();
  void OpenManual();
  void CloseManual();
  bool RunTimedStep();
  void ShowTimes();
  void EndRun();

  RunContext run_;
  UnsavedRows unsaved_;
  StepRunner stepRunner_;
  ManualMode manual_;
  bool manualOpen_ = false;
  int currentStep_ = 0;
  int highestStep_ = 0;
  ElapsedTime elapsed_;  ///< without manual mode
  int timedSteps_ = 0;   ///< steps that it covers; not the first, which starts from far below the level
};

}  // namespace hylden
