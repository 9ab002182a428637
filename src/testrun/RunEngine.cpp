#include "testrun/RunEngine.h"

#include <utility>

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "run/RunDisplay.h"
#include "run/RunQuestions.h"
#include "shell/Shell.h"
#include "testrun/RunInputs.h"
#include "testrun/RunLoader.h"
#include "testrun/StepRunner.h"

namespace hylden {

RunEngine::RunEngine(Shell& shell, Instruments& instruments, Documents& documents, RunDisplay& display,
                     ManualControls& controls)
    : shell_(shell),
      documents_(documents),
      instruments_(instruments),
      display_(display),
      guard_(shell, instruments.sigGen),
      up_(shell, instruments, documents.testSetup.Definition, documents.equip.Record, display, guard_),
      unsaved_(
          shell.dialogs,
          {question::kSaveRunData, "Would you like to save the testrun data?",
           "The run data has not been saved.\r\nSave it?"},
          [this] { return !data_.IsEmpty(); }, [this] { return SaveRunData(shell_, data_); }),
      manual_(shell, instruments, documents.testSetup.Definition, documents.equip.Record, display, controls, guard_,
              data_, reached_),
      elapsed_(shell.clock) {}

RunEngine::~RunEngine() = default;

bool RunEngine::Halted() const {
  return shell_.delay.HaltRequested();
}

std::size_t RunEngine::PlannedSteps() const {
  return inputs_ ? inputs_->Steps.size() : 0;
}

RunReadiness RunEngine::Prepare() {
  if (IsRunning()) return RunReadiness::NotReady;
  step_.reset();
  inputs_.reset();
  display_.Status("State: Idle");
  auto inputs = std::make_unique<RunInputs>(shell_);
  RunLoader loader(shell_, documents_, display_, *inputs);
  loader.PlanSteps();
  if (inputs->Steps.empty()) {
    shell_.dialogs.Tell("Error, no frequencies to test? Check setup.");
    return RunReadiness::NoSteps;
  }
  if (inputs->ListReadable && loader.LoadCalibration()) {
    data_.Clear();
    display_.RowChanged(0);
    if (loader.LoadFactors()) inputs_ = std::move(inputs);
  }
  display_.Status(inputs_ ? "State: Idle" : "State: Not ready");
  if (!inputs_) return RunReadiness::NotReady;
  display_.Phase(RunPhase::Ready);
  return RunReadiness::Ready;
}

void RunEngine::ConfirmAndRun() {
  if (!IsRunning() && unsaved_.MayDrop() && shell_.end.MayStart() && Confirm()) RunCdiTest();
}

bool RunEngine::Confirm() {
  const CalInfoRec& calibration = documents_.calInfo.Record;
  const MessageAnswer answer = shell_.dialogs.Show(
      {"Make sure proper amp is hooked up,\r\n" + calibration.AmpUsed +
           "\r\nand proper coupling device and cables are connected,\r\n" + calibration.DeviceDescription,
       question::kMakeSure, MessageIcon::Exclamation, MessageButtons::OkCancel});
  return answer == MessageAnswer::Ok;
}

void RunEngine::RunCdiTest() {
  if (IsRunning() || !inputs_) return;
  guard_.Run(
      "frmRunTest.RunCDI", [this] { RunTest(); }, [this] { EndRun(); });
}

void RunEngine::RequestManual() {
  if (IsRunning()) step_->CutDwells();
}

void RunEngine::Reset() {
  step_ = std::make_unique<StepRunner>(shell_, instruments_, documents_.testSetup.Definition, documents_.equip.Record,
                                       *inputs_, display_, guard_);
  shell_.delay.ClearHalt();
  data_.Clear();
  unsaved_.Reset();
  display_.RowChanged(0);
  reached_.clear();
  currentStep_ = timedSteps_ = 0;
}

void RunEngine::RunTest() {
  Reset();
  display_.Phase(RunPhase::BringingUp);
  if (!up_.BringUp() || Halted()) return;
  display_.Phase(RunPhase::Running);
  shell_.log.LogFile("Test run started\r\n" + documents_.testSetup.StringPrintTestSetup());
  shell_.log.Hold();
  Sweep();
}

void RunEngine::Sweep() {
  const int count = static_cast<int>(PlannedSteps());
  for (currentStep_ = 1; currentStep_ <= count; ++currentStep_) {
    if (Halted()) return;
    display_.Step(currentStep_);
    if (!RunTimedStep()) return;
    if (step_->DwellsAreCut() && !ManualPhase()) return;
    if (timedSteps_ >= 2) ShowTimes();
    display_.StepDone(currentStep_);
  }
  guard_.Finish();
  up_.SwitchRfOff();
  shell_.log.LogFile("Frequency sweep finished");
  display_.Show(Readout::Remaining, 0);
}

bool RunEngine::RunTimedStep() {
  const bool first = currentStep_ == 1;
  if (!first && timedSteps_ == 0) elapsed_.Start();
  if (!RunStep()) return false;
  if (!first) ++timedSteps_;
  return true;
}

bool RunEngine::RunStep() {
  const auto index = static_cast<std::size_t>(currentStep_ - 1);
  const PlanStep& planned = inputs_->Steps[index];
  const int row = data_.AddStep(planned.Freq);
  display_.RowChanged(row);
  const PreviousStep previous =
      index == 0 ? PreviousStep() : PreviousStep{reached_[index - 1].Freq, reached_[index - 1].KeptOffset};
  const std::optional<ReachedLevel> level = step_->Run(planned, previous);
  if (!level) return false;
  const StepResult& applied = level->Applied;
  data_.FillStep(row, applied);
  display_.RowChanged(row);
  if (index == reached_.size()) reached_.emplace_back();
  reached_[index] = {planned.Freq, applied.SigGenLevel, applied.TestLevel, level->KeptOffset, row};
  return true;
}

void RunEngine::ShowTimes() {
  const double minutes = elapsed_.Minutes();
  const double left = static_cast<double>(PlannedSteps()) - (currentStep_ - 1);
  display_.Show(Readout::Elapsed, minutes);
  display_.Show(Readout::Remaining, left * minutes / timedSteps_);
}

bool RunEngine::ManualPhase() {
  elapsed_.Pause();
  const std::optional<int> returnStep = manual_.Run(currentStep_);
  elapsed_.Resume();
  if (!returnStep) return false;
  currentStep_ = *returnStep;
  step_->GoOn(manual_.ModulationMayBeOff());
  return true;
}

void RunEngine::EndRun() {
  guard_.Attempt([&] { up_.SwitchRfOff(); });
  // Stamped now, before dead instruments and boxes; written below, since the log may lie on a share that stalls.
  shell_.log.Hold();
  shell_.log.LogFile("Instruments taken offline");
  guard_.Attempt([&] { display_.Phase(RunPhase::TakingDown); });
  guard_.Attempt([&] { up_.TakeDown(); });
  guard_.Attempt([&] { shell_.log.Release(); });
  guard_.Attempt([&] { manual_.Close(); });
  guard_.Attempt([&] { shell_.speaker.Beep(1000, 2000); });
  shell_.delay.RequestHalt();
  guard_.Attempt([&] { display_.Phase(RunPhase::Asking); });
  guard_.Attempt([&] {
    if (!data_.IsEmpty()) unsaved_.AskAtTheEnd();
  });
  guard_.Attempt([&] { display_.Phase(RunPhase::Ready); });
}

}  // namespace hylden
