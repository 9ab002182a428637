#include "testrun/StepRunner.h"

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "shell/Shell.h"
#include "testrun/TestModulation.h"
#include "text/Pattern.h"

namespace hylden {

namespace {
constexpr double kConstantPeakWait = 0.5;
}  // namespace

const TestDefinition& StepRunner::Test() const {
  return run_.documents.testSetup.Definition;
}

bool StepRunner::Halted() const {
  return run_.shell.delay.HaltRequested();
}

void StepRunner::StartRun() {
  previous_ = {};
  conflictAccepted_ = false;
}

std::optional<ReachedStep> StepRunner::Run(const PlanStep& step, bool first) {
  state_ = {};
  if (Procedure(step, first)) return Record();
  run_.guard.RfOff();
  run_.display.Status("");
  return std::nullopt;
}

bool StepRunner::Procedure(const PlanStep& step, bool first) {
  Begin(step, first);
  if (!FindTargets() || !SetUpFeedback() || !ChooseStart(first)) return false;
  return Retune() && RampToTarget() && ModulationOn() && HoldForDwell();
}

void StepRunner::Begin(const PlanStep& step, bool first) {
  run_.display.Status("Ramping level...");
  if (first) previous_ = {};
  state_.Freq = step.Freq;
  state_.Dwell = step.Dwell;
  state_.Row = run_.data.AddStep(step.Freq);
  run_.display.RowChanged(state_.Row);
  run_.display.Show(Readout::Frequency, step.Freq);
  for (const auto reading : {Readout::InducedLevel, Readout::ForwardPower}) run_.display.Show(reading, std::nullopt);
  for (const auto held : {Readout::SigGenLevel, Readout::InducedLevel, Readout::ForwardPower})
    run_.display.Mark(held, false);
}

bool StepRunner::FindTargets() {
  const CalibratedLevels levels = LookUpLevels(run_.inputs->Calibration, Test(), state_.Freq);
  const TargetsOrText found = TargetsFor(Test(), levels);
  if (!found.Text.empty()) return run_.guard.Fail(found.Text);
  state_.Targets = found.Targets;
  state_.Result.TestLevel = found.Targets.TestLevel;
  state_.Probe.LimitDbua = InducedCurrentLimit(Test(), levels.TestLevel).value_or(kNoValue);

  if (Test().LevelsByPower() &&
      !run_.guard.Ok(run_.instruments.pm.PwrMtrSetFreq(state_.Freq), "Error setting power meter"))
    return false;
  const std::string floorText = GeneratorFloorText(state_.Targets.SigGenCal, run_.instruments.sigGen.MinimumLevel());
  return floorText.empty() || run_.guard.Fail(floorText);
}

bool StepRunner::SetUpFeedback() {
  if (!Test().MonitorProbe) return true;
  run_.display.Status("Setting up feedback loop...");
  const auto cableLoss = run_.inputs->CableLoss.InterpVal(state_.Freq, FreqScale::Linear);
  if (!run_.guard.Ok(cableLoss, "Error interpolating cable loss")) return false;
  const auto probeFactor = run_.inputs->ProbeFactor.InterpVal(state_.Freq, FreqScale::Linear);
  if (!run_.guard.Ok(probeFactor, "Error interpolating probe factor")) return false;
  state_.Probe.Factors = double{*cableLoss} + double{*probeFactor};

  if (Halted()) return false;
  if (!run_.guard.Ok(run_.instruments.meter.MeterSetFreq(state_.Freq))) return false;
  if (!Test().LimitCurrent) return true;
  if (IsMissing(state_.Probe.LimitDbua))
    return run_.guard.Fail("The induced current can't be limited: check circuit impedance and test level");
  return run_.guard.Ok(run_.instruments.meter.MeterSetLevel(state_.Probe.LimitDbua - state_.Probe.Factors));
}

bool StepRunner::ChooseStart(bool first) {
  state_.Now.Offset = StartingOffset(Test(), first ? PreviousStep{} : previous_, state_.Freq);
  state_.Now.MaximumIncrement = MaximumIncrement(Test());
  run_.display.Show(Readout::Dwell, state_.Dwell);
  if (!AcceptConflict()) return false;
  run_.display.Show(Readout::SigGenLevel, DriveLevel());
  run_.display.Show(Readout::TestLevel, state_.Targets.TestLevel);
  return true;
}

bool StepRunner::AcceptConflict() {
  const float minimum = run_.instruments.sigGen.MinimumLevel();
  if (DriveLevel() >= minimum) return true;
  if (!conflictAccepted_) {
    // The question may stand for hours; the step brings RF back, at its own level.
    SigGen& sigGen = run_.instruments.sigGen;
    if (sigGen.RfIsOn() && !run_.guard.Ok(sigGen.SilenceRf())) return false;
    const MessageAnswer answer =
        run_.shell.dialogs.Show({"Calibration sig-gen level is above the minimum possible sig-gen level,\r\n"
                                 "but the starting offset puts it below the minimum. Proceed anyway?",
                                 "Sig-Gen level conflict", MessageIcon::Question, MessageButtons::YesNo});
    if (answer != MessageAnswer::Yes) return false;
    conflictAccepted_ = true;
  }
  state_.Now.Offset = double{state_.Targets.SigGenCal} - double{minimum};
  return true;
}

bool StepRunner::Retune() {
  if (Halted()) return false;
  const TestDefinition& test = Test();
  SigGen& sigGen = run_.instruments.sigGen;
  run_.display.Status("Setting Sig-Gen...");
  const bool hasBands = run_.documents.equip.Record.HasIfiAmplifier();
  if (hasBands && !run_.guard.Ok(run_.instruments.ifiAmp.IfiSetBand(state_.Freq))) return false;
  if (test.LevelsByPower() && !run_.guard.Ok(run_.sensor.Place(state_.Freq))) return false;
  if (test.ModOffBetweenFreqs && !run_.guard.Ok(sigGen.ModOff())) return false;
  if (Halted() || !run_.guard.Ok(sigGen.SetFreqLevel(state_.Freq, DriveLevel()), "Error setting SigGen")) return false;
  if (!run_.guard.Ok(sigGen.RfOn())) return false;
  // The level is reached with the modulation that the test has, whatever manual mode left behind.
  const bool silenced = run_.modulationSilenced && !test.ModOffBetweenFreqs;
  if (silenced && !run_.guard.Ok(SwitchModulationOn(sigGen, test))) return false;
  run_.modulationSilenced = false;
  return Wait(double{test.InterDwell}, "Intermediate dwell...");
}

bool StepRunner::ModulationOn() {
  const TestDefinition& test = Test();
  if (!test.ModOffBetweenFreqs) return true;
  SigGen& sigGen = run_.instruments.sigGen;
  if (test.ModType == Modulation::Am && test.ConstPeak) {
    // The carrier drops before the modulation's peaks come on top of it.
    const float level = DriveLevel() + state_.Targets.ConstantPeakOffset;
    if (!run_.guard.Ok(sigGen.SetFreqLevel(state_.Freq, level))) return false;
    run_.display.Show(Readout::SigGenLevel, level);
    if (!run_.shell.delay.Delay(kConstantPeakWait, true)) return false;
  }
  if (Halted() || !run_.guard.Ok(SwitchModulationOn(sigGen, test))) return false;
  StartDwell();
  return true;
}

bool StepRunner::HoldForDwell() {
  if (!run_.manualRequested) {
    run_.display.Status("Finishing Final Dwell...");
    if (!run_.shell.delay.WaitDelay(true, &run_.display)) return false;
  }
  if (Halted()) return false;
  if (run_.manualRequested) LogCutDwell();
  return true;
}

/// The record shows the step as run; the log tells that the product was not exposed for the whole dwell.
void StepRunner::LogCutDwell() {
  const double held = static_cast<double>(run_.shell.clock.TickMs() - state_.DwellStartMs) / 1000;
  if (held >= state_.Dwell) return;
  run_.shell.log.LogFile("Dwell cut short by Manual at " + Format(state_.Freq, "#0.0#####") + " MHz: held " +
                         Format(held, "##0.0##") + " s of " + Format(state_.Dwell, "##0.0##") + " s");
}

ReachedStep StepRunner::Record() {
  previous_ = {state_.Freq, state_.KeptOffset};
  state_.Result.SigGenLevel = DriveLevel();
  run_.data.FillStep(state_.Row, state_.Result);
  run_.display.RowChanged(state_.Row);
  return {DriveLevel(), state_.Targets.TestLevel, state_.KeptOffset, state_.Row};
}

bool StepRunner::Wait(double seconds, const std::string& status) {
  run_.display.Status(status);
  run_.shell.delay.StartDelay(seconds);
  return run_.shell.delay.WaitDelay(true, &run_.display) && !Halted();
}

void StepRunner::StartDwell() {
  run_.shell.delay.StartDelay(state_.Dwell);
  state_.DwellStartMs = run_.shell.clock.TickMs();
}

void StepRunner::Mark(bool& mark, Readout readout) {
  mark = true;
  run_.display.Mark(readout, true);
}

}  // namespace hylden
