#include "testrun/StepRunner.h"

#include "documents/EquipRecord.h"
#include "documents/TestDefinition.h"
#include "instruments/Instruments.h"
#include "run/RunGuard.h"
#include "shell/Shell.h"
#include "testrun/RunInputs.h"
#include "text/Pattern.h"

namespace hylden {

namespace {
constexpr double kConstantPeakWait = 0.5;
}  // namespace

StepRunner::StepRunner(Shell& shell, Instruments& instruments, const TestDefinition& test, const EquipRecord& equipment,
                       RunInputs& inputs, RunDisplay& display, RunGuard& guard)
    : shell_(shell),
      instruments_(instruments),
      test_(test),
      equipment_(equipment),
      inputs_(inputs),
      display_(display),
      guard_(guard),
      sensor_(shell, instruments, equipment) {}

bool StepRunner::Halted() const {
  return shell_.delay.HaltRequested();
}

void StepRunner::CutDwells() {
  shell_.delay.StartDelay(double{test_.InterDwell});
  dwellsCut_ = true;
}

void StepRunner::GoOn(bool modulationMayBeOff) {
  dwellsCut_ = false;
  modulationMayBeOff_ = modulationMayBeOff;
}

std::optional<ReachedLevel> StepRunner::Run(const PlanStep& step, const PreviousStep& previous) {
  step_ = step;
  Begin();
  if (FindTargets() && SetUpFeedback() && ChooseStart(previous) && Retune() && RampToTarget() && ModulationOn() &&
      HoldForDwell())
    return reached_;
  guard_.RfOff();
  display_.Status("");
  return std::nullopt;
}

void StepRunner::Begin() {
  timing_ = {};
  display_.Status("Ramping level...");
  display_.Show(Readout::Frequency, step_.Freq);
  for (const auto reading : {Readout::InducedLevel, Readout::ForwardPower}) display_.Show(reading, std::nullopt);
  for (const auto held : {Readout::SigGenLevel, Readout::InducedLevel, Readout::ForwardPower})
    display_.Mark(held, false);
}

bool StepRunner::FindTargets() {
  const auto targets = TargetsFor(test_, LookUpLevels(inputs_.Calibration, test_, step_.Freq));
  if (!guard_.Ok(targets)) return false;
  targets_ = *targets;
  if (test_.LevelsByPower() && !guard_.Ok(instruments_.pm.PwrMtrSetFreq(step_.Freq), "Error setting power meter"))
    return false;
  return guard_.Ok(GeneratorGoesDownTo(targets_.SigGenCal, instruments_.sigGen.MinimumLevel()));
}

bool StepRunner::SetUpFeedback() {
  if (!test_.MonitorProbe) return true;
  display_.Status("Setting up feedback loop...");
  const auto cableLoss = Factor(inputs_.CableLoss, "cable loss");
  if (!cableLoss) return false;
  const auto probeFactor = Factor(inputs_.ProbeFactor, "probe factor");
  if (!probeFactor) return false;
  probeFactors_ = *cableLoss + *probeFactor;

  if (Halted() || !guard_.Ok(instruments_.meter.MeterSetFreq(step_.Freq))) return false;
  if (!test_.LimitCurrent) return true;
  if (IsMissing(targets_.InducedLimit))
    return guard_.Fail("The induced current can't be limited: check circuit impedance and test level");
  return guard_.Ok(instruments_.meter.MeterSetLevel(targets_.InducedLimit - probeFactors_));
}

bool StepRunner::ChooseStart(const PreviousStep& previous) {
  offset_ = StartingOffset(test_, previous, step_.Freq);
  display_.Show(Readout::Dwell, step_.Dwell);
  if (!AcceptConflict()) return false;
  display_.Show(Readout::SigGenLevel, StartLevel());
  display_.Show(Readout::TestLevel, targets_.TestLevel);
  return true;
}

bool StepRunner::AcceptConflict() {
  SigGen& sigGen = instruments_.sigGen;
  const float minimum = sigGen.MinimumLevel();
  if (StartLevel() >= minimum) return true;
  if (!conflictAccepted_) {
    // The question may stand for hours; the step brings RF back, at its own level.
    if (sigGen.RfIsOn() && !guard_.Ok(sigGen.SilenceRf())) return false;
    const MessageAnswer answer =
        shell_.dialogs.Show({"Calibration sig-gen level is above the minimum possible sig-gen level,\r\n"
                             "but the starting offset puts it below the minimum. Proceed anyway?",
                             "Sig-Gen level conflict", MessageIcon::Question, MessageButtons::YesNo});
    if (answer != MessageAnswer::Yes) return false;
    conflictAccepted_ = true;
  }
  offset_ = double{targets_.SigGenCal} - double{minimum};
  return true;
}

bool StepRunner::Retune() {
  if (Halted()) return false;
  SigGen& sigGen = instruments_.sigGen;
  display_.Status("Setting Sig-Gen...");
  if (equipment_.HasIfiAmplifier() && !guard_.Ok(instruments_.ifiAmp.IfiSetBand(step_.Freq))) return false;
  if (test_.LevelsByPower() && !guard_.Ok(sensor_.Place(step_.Freq))) return false;
  if (test_.ModOffBetweenFreqs && !guard_.Ok(sigGen.ModOff())) return false;
  if (Halted() || !guard_.Ok(sigGen.SetFreqLevel(step_.Freq, StartLevel()), "Error setting SigGen")) return false;
  if (!guard_.Ok(sigGen.RfOn())) return false;
  // The level is reached with the modulation that the test has, whatever manual mode left behind.
  const bool silenced = modulationMayBeOff_ && !test_.ModOffBetweenFreqs;
  if (silenced && !guard_.Ok(sigGen.ModOn(test_.ModType))) return false;
  modulationMayBeOff_ = false;
  return IntermediateDwell("Intermediate dwell...");
}

bool StepRunner::RampToTarget() {
  const std::optional<ReachedLevel> reached = LevelRamp(*this, test_, targets_).From(offset_);
  if (reached) reached_ = *reached;
  return reached.has_value();
}

bool StepRunner::ModulationOn() {
  if (!test_.ModOffBetweenFreqs) return true;
  SigGen& sigGen = instruments_.sigGen;
  if (test_.ModType == Modulation::Am && test_.ConstPeak) {
    // The carrier drops before the modulation's peaks come on top of it.
    const float level = reached_.Applied.SigGenLevel + targets_.ConstantPeakOffset;
    if (!guard_.Ok(sigGen.SetFreqLevel(step_.Freq, level))) return false;
    display_.Show(Readout::SigGenLevel, level);
    if (!shell_.delay.Delay(kConstantPeakWait, true)) return false;
  }
  if (Halted() || !guard_.Ok(sigGen.ModOn(test_.ModType))) return false;
  StartDwell();
  return true;
}

bool StepRunner::HoldForDwell() {
  timing_.Readings = SecondsSinceDwell();
  if (!dwellsCut_) {
    display_.Status("Finishing Final Dwell...");
    if (!shell_.delay.WaitDelay(true, &display_)) return false;
  }
  if (Halted()) return false;
  if (dwellsCut_) LogCutDwell();
  return true;
}

double StepRunner::SecondsSinceDwell() const {
  return static_cast<double>(shell_.clock.TickMs() - dwellStartMs_) / 1000;
}

/// The record shows the step as run; the log tells that the product was not exposed for the whole dwell.
void StepRunner::LogCutDwell() {
  const double held = SecondsSinceDwell();
  if (held >= step_.Dwell) return;
  shell_.log.LogFile("Dwell cut short by Manual at " + Format(step_.Freq, "#0.0#####") + " MHz: held " +
                     Format(held, "##0.0##") + " s of " + Format(step_.Dwell, "##0.0##") + " s");
}

bool StepRunner::Raise(float levelDbm) {
  if (Halted()) return false;
  display_.Show(Readout::SigGenLevel, levelDbm);
  display_.Status("Raising sig-gen level...");
  if (Halted() || !guard_.Ok(instruments_.sigGen.SetFreqLevel(step_.Freq, levelDbm))) return false;
  return IntermediateDwell(test_.LevelsByPower() ? "Intermediate Dwell..." : "Intermediate dwell...");
}

bool StepRunner::IntermediateDwell(const char* status) {
  display_.Status(status);
  ++timing_.Waits;
  shell_.delay.StartDelay(double{test_.InterDwell});
  return shell_.delay.WaitDelay(true, &display_) && !Halted();
}

void StepRunner::StartDwell() {
  shell_.delay.StartDelay(step_.Dwell);
  dwellStartMs_ = shell_.clock.TickMs();
}

std::optional<double> StepRunner::ReadForward() {
  display_.Status("Reading forward power...");
  const auto reading = guard_.Reading(sensor_.Read());
  if (!reading || Halted()) return std::nullopt;
  const auto factor = Factor(inputs_.ForwardPort, "forward coupler factor");
  if (!factor) return std::nullopt;
  const double power = LinePower(*reading, *factor);
  display_.Show(Readout::ForwardPower, power);
  return power;
}

std::optional<double> StepRunner::ReadReverse() {
  display_.Status("Reading reverse power...");
  if (!equipment_.Is(AmpConfig::DualFwdRev)) {
    guard_.Fail("Power meter not defined as dual-channel, check setup");
    return std::nullopt;
  }
  const auto reading = guard_.Reading(instruments_.pm.ReadPower(2));
  if (!reading || Halted()) return std::nullopt;
  const auto factor = Factor(inputs_.ReversePort, "reverse coupler factor");
  return factor ? std::optional(LinePower(*reading, *factor)) : std::nullopt;
}

std::optional<double> StepRunner::ReadProbe() {
  display_.Status(LimitsCurrent(test_) ? "Getting feedback..." : "Reading Meter...");
  const auto reading = guard_.Reading(instruments_.meter.MeterRead(ReadMode::AutoRange));
  if (!reading || Halted()) return std::nullopt;
  const double current = *reading + probeFactors_;
  display_.Show(Readout::InducedLimit, targets_.InducedLimit);
  display_.Show(Readout::InducedLevel, current);
  return current;
}

std::optional<double> StepRunner::Factor(InterpClass& table, const char* name) {
  const Result<float> value = table.InterpVal(step_.Freq, FreqScale::Linear);
  return guard_.Ok(value, std::string("Error interpolating ") + name) ? std::optional(double{*value}) : std::nullopt;
}

void StepRunner::Held(Readout by) {
  display_.Mark(by, true);
}

bool StepRunner::Fail(const std::string& text) {
  return guard_.Fail(text);
}

bool StepRunner::FailAloud(const std::string& text) {
  guard_.RfOff();
  shell_.speaker.Beep(1000, 500);
  return guard_.Fail(text);
}

}  // namespace hylden
