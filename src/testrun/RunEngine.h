#pragma once

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "run/ElapsedTime.h"
#include "run/FormerRun.h"
#include "run/RunGuard.h"
#include "run/RunJournal.h"
#include "run/TimeKeeper.h"
#include "run/UnsavedRows.h"
#include "testrun/ManualMode.h"
#include "testrun/RunCurves.h"
#include "testrun/RunData.h"
#include "testrun/RunInfo.h"
#include "testrun/RunInputs.h"
#include "testrun/TestInstruments.h"

namespace hylden {

class StepRunner;
struct Documents;
struct PreviousStep;

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
  RunEngine(Shell& shell, Instruments& instruments, Documents& documents, RunDisplay& display,
            ManualControls& controls);
  ~RunEngine();
  RunEngine(const RunEngine&) = delete;
  RunEngine& operator=(const RunEngine&) = delete;

  /// Plans the steps, loads the calibration record and the factor tables, and sets the run data up afresh. What fails
  /// has been shown.
  RunReadiness Prepare();
  /// The run to come continues one that ended early: its rows are shown, stand before those to come, and the first step
  /// without a complete row is levelled as a first step is. To be called when Prepare came to Ready.
  /// @return why it can't be continued; the next run begins afresh then
  Done Continue(FormerRun<RunData> former);
  /// The step at which the next run can continue the one whose rows these are: some of its steps have none yet, and
  /// nothing that it is made of has changed.
  std::optional<std::size_t> Unfinished();
  /// Asks whether to continue a run that ended early, has the operator check amplifier and coupling device, then runs
  /// the test. Rows that are not saved are asked about before a run that begins afresh drops them.
  void ConfirmAndRun();
  /// Runs the whole test; returns when it ended, failed or was halted. Does nothing before Prepare came to Ready.
  void RunCdiTest();

  bool IsRunning() const { return guard_.IsRunning(); }
  /// The save command: asks for a file and writes all rows to it. @return false when there were rows and they were not
  /// written
  bool Save() { return unsaved_.Save(); }
  /// The file that holds all rows; empty while there is none.
  std::string SavedFile() const { return unsaved_.AreSaved() ? savedFile_ : std::string(); }
  UnsavedRows& Unsaved() { return unsaved_; }
  const UnsavedRows& Unsaved() const { return unsaved_; }
  RunOutcome Outcome() const { return guard_.Outcome(); }
  /// The highest step reached in the last run.
  int CompletedSteps() const { return static_cast<int>(reached_.size()); }
  /// Manual mode after the current step; a long dwell in progress ends one intermediate dwell from now.
  void RequestManual();

  ManualMode& Manual() { return manual_; }
  const RunData& Data() const { return data_; }
  /// What the data do not tell of the run.
  const RunInfo& Info() const { return info_; }
  /// Whom and what the run was for: saved with its data from now on.
  void SetParticulars(RunParticulars particulars) { info_.Particulars = std::move(particulars); }
  const std::vector<PlanStep>& Steps() const { return inputs_->Steps; }
  /// What the steps aim at, by rising frequency. To be called when Prepare came to Ready.
  std::vector<RunAim> Aims() const;

 private:
  bool MayBegin();
  bool Confirm();
  void Reset();
  void BeginAfresh();
  void GoOn();
  void ShowRows();
  void RunTest();
  void Sweep();
  /// Levels, dwells and records the current step; false ends the run.
  bool RunStep();
  PreviousStep Previous() const;
  bool ManualPhase();
  void ShowTimes();
  void ExpectTimes();
  /// A step of the plan among those of this run, from 0.
  std::size_t OfThisRun(int step) const { return static_cast<std::size_t>(step - firstStep_); }
  JournalHead Head();
  void NoteEnd(double seconds);
  void EndRun();

  Shell& shell_;
  Documents& documents_;
  Instruments& instruments_;
  RunDisplay& display_;
  RunGuard guard_;
  TestInstruments up_;
  RunData data_;
  RunInfo info_;
  std::string savedFile_;  ///< of the latest save
  UnsavedRows unsaved_;
  std::unique_ptr<RunInputs> inputs_;
  std::unique_ptr<StepRunner> stepRunner_;  ///< runs those of one run
  std::vector<ReachedStep> reached_;        ///< by the rows: step i is reached_[i - 1]
  ManualMode manual_;
  bool ready_ = false;
  bool continues_ = false;  ///< the next run continues the one whose rows these are
  int currentStep_ = 0;
  int firstStep_ = 1;    ///< of this run, behind those that it continues
  ElapsedTime elapsed_;  ///< without manual mode
  int timedSteps_ = 0;   ///< steps that it covers; not the first, which starts from far below the level
  TimeKeeper times_;
  RunJournal journal_;
};

}  // namespace hylden
