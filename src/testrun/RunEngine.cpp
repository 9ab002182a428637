#include "testrun/RunEngine.h"

#include <algorithm>
#include <utility>

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "run/RunQuestions.h"
#include "shell/Shell.h"
#include "testrun/RunLoader.h"

namespace hylden {

RunEngine::RunEngine(Shell& shell, Instruments& instruments, Documents& documents, RunDisplay& display,
                     ManualControls& manual)
    : run_(shell, instruments, documents, display, manual),
      unsaved_(
          shell.dialogs,
          {question::kSaveRunData, "Would you like to save the testrun data?",
           "The run data has not been saved.\r\nSave it?"},
          [this] { return !run_.data.IsEmpty(); }, [this] { return SaveRunData(run_.shell, run_.data); }),
      stepRunner_(run_),
      manual_(run_),
      elapsed_(shell.clock) {}

bool RunEngine::Halted() const {
  return run_.shell.delay.HaltRequested();
}

RunReadiness RunEngine::Prepare() {
  if (IsRunning()) return RunReadiness::NotReady;
  run_.inputs.reset();
  run_.display.Status("State: Idle");
  auto inputs = std::make_unique<RunInputs>(run_.shell);
  RunLoader loader(run_.shell, run_.documents, run_.display, *inputs);
  loader.PlanSteps();
  if (inputs->Steps.empty()) {
    run_.shell.dialogs.Tell("Error, no frequencies to test? Check setup.");
    return RunReadiness::NoSteps;
  }
  if (inputs->ListReadable && loader.LoadCalibration()) {
    run_.data.Clear();
    run_.display.RowChanged(0);
    if (loader.LoadFactors()) run_.inputs = std::move(inputs);
  }
  run_.display.Status(run_.inputs ? "State: Idle" : "State: Not ready");
  if (!run_.inputs) return RunReadiness::NotReady;
  run_.display.Phase(RunPhase::Ready);
  return RunReadiness::Ready;
}

void RunEngine::ConfirmAndRun() {
  if (!IsRunning() && unsaved_.MayDrop() && run_.shell.end.MayStart() && Confirm()) RunCdiTest();
}

bool RunEngine::Confirm() {
  const CalInfoRec& calibration = run_.documents.calInfo.Record;
  const MessageAnswer answer = run_.shell.dialogs.Show(
      {"Make sure proper amp is hooked up,\r\n" + calibration.AmpUsed +
           "\r\nand proper coupling device and cables are connected,\r\n" + calibration.DeviceDescription,
       question::kMakeSure, MessageIcon::Exclamation, MessageButtons::OkCancel});
  return answer == MessageAnswer::Ok;
}

void RunEngine::RunCdiTest() {
  if (IsRunning() || !run_.inputs) return;
  run_.guard.Run(
      "frmRunTest.RunCDI", [this] { RunTest(); }, [this] { EndRun(); });
}

void RunEngine::RequestManual() {
  if (!IsRunning()) return;
  run_.shell.delay.StartDelay(double{run_.documents.testSetup.Definition.InterDwell});
  run_.manualRequested = true;
}

void RunEngine::Reset() {
  run_.shell.delay.ClearHalt();
  run_.data.Clear();
  unsaved_.Reset();
  run_.sensor.Reset();
  run_.display.RowChanged(0);
  run_.reached.assign(run_.inputs->Steps.size(), {});
  currentStep_ = highestStep_ = timedSteps_ = 0;
  run_.manualRequested = run_.modulationSilenced = false;
  stepRunner_.StartRun();
}

void RunEngine::RunTest() {
  Reset();
  run_.display.Phase(RunPhase::BringingUp);
  if (!run_.up.BringUp() || Halted()) return;
  run_.display.Phase(RunPhase::Running);
  run_.shell.log.LogFile("Test run started\r\n" + run_.documents.testSetup.StringPrintTestSetup());
  run_.shell.log.Hold();
  Sweep();
}

void RunEngine::Sweep() {
  const int count = static_cast<int>(run_.inputs->Steps.size());
  for (currentStep_ = 1; currentStep_ <= count; ++currentStep_) {
    if (Halted()) return;
    run_.display.Step(currentStep_);
    if (!RunTimedStep()) return;
    highestStep_ = std::max(highestStep_, currentStep_);
    if (run_.manualRequested && !ManualPhase()) return;
    if (timedSteps_ >= 2) ShowTimes();
    run_.display.StepDone(currentStep_);
  }
  currentStep_ = count;
  run_.guard.Finish();
  run_.up.SwitchRfOff();
  run_.shell.log.LogFile("Frequency sweep finished");
  run_.display.Show(Readout::Remaining, 0);
}

bool RunEngine::RunStep(bool first) {
  const auto index = static_cast<std::size_t>(currentStep_ - 1);
  const std::optional<ReachedStep> reached = stepRunner_.Run(run_.inputs->Steps.at(index), first);
  if (reached) run_.reached[index] = reached;
  return reached.has_value();
}

bool RunEngine::RunTimedStep() {
  const bool first = currentStep_ == 1;
  if (!first && timedSteps_ == 0) elapsed_.Start();
  if (!RunStep(first)) return false;
  if (!first) ++timedSteps_;
  return true;
}

void RunEngine::ShowTimes() {
  const double minutes = elapsed_.Minutes();
  const double left = static_cast<double>(run_.inputs->Steps.size()) - (currentStep_ - 1);
  run_.display.Show(Readout::Elapsed, minutes);
  run_.display.Show(Readout::Remaining, left * minutes / timedSteps_);
}

bool RunEngine::ManualPhase() {
  elapsed_.Pause();
  OpenManual();
  while (manual_.IsActive() && !Halted()) run_.shell.delay.Yield();
  const bool halted = Halted();
  if (!halted) run_.shell.log.LogFile("Manual mode exited, test continued");
  CloseManual();
  elapsed_.Resume();
  if (halted) return false;
  run_.guard.GoOn();
  currentStep_ = manual_.ReturnStep();
  const auto index = static_cast<std::size_t>(currentStep_ - 1);
  stepRunner_.ResumeFrom({run_.inputs->Steps[index].Freq, run_.reached[index]->Offset});
  return true;
}

void RunEngine::OpenManual() {
  const TestDefinition& test = run_.documents.testSetup.Definition;
  manual_.Enter(currentStep_, highestStep_, ConstPeakOffset(test));
  manualOpen_ = true;
  run_.manual.OpenManual({.Step = currentStep_,
                          .HighestStep = highestStep_,
                          .LevelOffset = 0,
                          .Freq = run_.inputs->Steps[static_cast<std::size_t>(currentStep_ - 1)].Freq,
                          .ModEnabled = test.ModType != Modulation::None,
                          .ModOn = manual_.ModulationIsOn(),
                          .RfOn = run_.instruments.sigGen.RfIsOn()});
  run_.display.Status("Manual Mode");
  run_.shell.log.LogFile("Manual mode entered");
}

void RunEngine::CloseManual() {
  if (!manualOpen_) return;
  manualOpen_ = false;
  run_.manualRequested = false;
  manual_.Leave();
  run_.manual.CloseManual();
}

void RunEngine::EndRun() {
  run_.guard.Attempt([&] { run_.up.SwitchRfOff(); });
  // Stamped now, before dead instruments and boxes; written below, since the log may lie on a share that stalls.
  run_.shell.log.Hold();
  run_.shell.log.LogFile("Instruments taken offline");
  run_.guard.Attempt([&] { run_.display.Phase(RunPhase::TakingDown); });
  run_.guard.Attempt([&] { run_.up.TakeDown(); });
  run_.guard.Attempt([&] { run_.shell.log.Release(); });
  run_.guard.Attempt([&] { CloseManual(); });
  run_.guard.Attempt([&] { run_.shell.speaker.Beep(1000, 2000); });
  run_.shell.delay.RequestHalt();
  run_.guard.Attempt([&] { run_.display.Phase(RunPhase::Asking); });
  run_.guard.Attempt([&] {
    if (!run_.data.IsEmpty()) unsaved_.AskAtTheEnd();
  });
  run_.guard.Attempt([&] { run_.display.Phase(RunPhase::Ready); });
}

}  // namespace hylden
