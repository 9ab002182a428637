// The ramps of a step: how the level is brought up from its starting offset by each levelling method.

#include <algorithm>

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "shell/Shell.h"
#include "testrun/StepRunner.h"
#include "text/Pattern.h"

namespace hylden {

namespace {
constexpr const char* kLowGainText =
    "Warning, amplifier gain is more than 3dB lower\r\nthan it should be.  Check setup.";
}  // namespace

bool StepRunner::RampToTarget() {
  bool reached = false;
  switch (Test().LevelingMethod) {
    case LevelingMethod::ForwardPower:
      return RampForwardPower();
    case LevelingMethod::NetPower:
      return RampNetPower();
    default:
      reached = LimitsCurrent(Test()) ? RampSigGenWithLimit() : RampSigGen();
  }
  if (!reached) return false;
  if (state_.Now.Offset <= 0) Mark(state_.Result.Marks.SigGenAtCalibration, Readout::SigGenLevel);
  state_.KeptOffset = state_.Now.Offset;
  return true;
}

bool StepRunner::RampSigGen() {
  while (state_.Now.Offset > 0) {
    state_.Now.Offset -= std::min(state_.Now.MaximumIncrement, state_.Now.Offset);
    if (!RaiseAndDwell("Intermediate dwell...")) return false;
  }
  StartDwell();
  return !Test().MonitorProbe || ReadProbe("Reading Meter...");
}

bool StepRunner::RampSigGenWithLimit() {
  if (!ReadProbe("Getting feedback...")) return false;
  StartDwell();
  while (state_.Now.Offset > 0 && *state_.Result.Induced < state_.Probe.LimitDbua) {
    const double step = RampStep(state_.Probe.LimitDbua - *state_.Result.Induced, state_.Now.MaximumIncrement);
    state_.Now.Offset = std::max(0.0, state_.Now.Offset - step);
    if (!RaiseAndDwell("Intermediate dwell...")) return false;
    StartDwell();
    if (!ReadProbe("Getting feedback...")) return false;
  }
  if (*state_.Result.Induced > state_.Probe.LimitDbua)
    Mark(state_.Result.Marks.InducedAboveLimit, Readout::InducedLevel);
  return true;
}

bool StepRunner::RampForwardPower() {
  StartDwell();
  if (!ReadForward()) return false;
  bool held = false;
  while (!(*state_.Result.FwdPwr > state_.Targets.PowerTarget)) {
    double headroom = state_.Targets.PowerTarget - *state_.Result.FwdPwr;
    if (!LimitByCurrent(headroom, held)) return false;
    if (held) break;
    state_.Now = Raise(state_.Now, RampStep(headroom, state_.Now.MaximumIncrement));
    if (!CheckDrive() || !RaiseAndDwell("Intermediate Dwell...")) return false;
    StartDwell();
    if (!ReadForward()) return false;
  }
  return FinishPowerRamp(*state_.Result.FwdPwr);
}

bool StepRunner::RampNetPower() {
  StartDwell();
  std::optional<double> net = ReadNet();
  if (!net) return false;
  bool held = false;
  while (!(*net > state_.Targets.PowerTarget)) {
    double headroom = state_.Targets.PowerTarget - *net;
    if (!LimitByCurrent(headroom, held)) return false;
    if (held) break;
    const double cap = state_.Targets.ForwardReference - *state_.Result.FwdPwr + kForwardCapDb;
    if (cap < kLeastCapHeadroomDb) {
      StartDwell();
      Mark(state_.Result.Marks.ForwardCapHeld, Readout::ForwardPower);
      break;
    }
    state_.Now = Raise(state_.Now, std::min(RampStep(headroom, state_.Now.MaximumIncrement), cap));
    if (!RaiseAndDwell("Intermediate Dwell...")) return false;
    StartDwell();
    net = ReadNet();
    if (!net || !CheckGain()) return false;
  }
  return FinishPowerRamp(*net);
}

bool StepRunner::FinishPowerRamp(double powerDbm) {
  const bool limited = LimitsCurrent(Test());
  if (Test().MonitorProbe && !ReadProbe(limited ? "Getting feedback..." : "Reading Meter...")) return false;
  if (limited && *state_.Result.Induced > state_.Probe.LimitDbua)
    Mark(state_.Result.Marks.InducedAboveLimit, Readout::InducedLevel);

  state_.KeptOffset = state_.Now.Offset;
  const double overshoot = powerDbm - state_.Targets.PowerTarget;
  if (overshoot > 0) {
    Mark(state_.Result.Marks.PowerAboveTarget, Readout::ForwardPower);
    state_.KeptOffset += overshoot;  // the next step starts correspondingly lower
  }
  return true;
}

bool StepRunner::LimitByCurrent(double& headroom, bool& held) {
  if (!LimitsCurrent(Test())) return true;
  if (!ReadProbe("Getting feedback...")) return false;
  held = *state_.Result.Induced > state_.Probe.LimitDbua;
  if (held) {
    StartDwell();
    Mark(state_.Result.Marks.InducedAboveLimit, Readout::InducedLevel);
  }
  headroom = std::min(headroom, state_.Probe.LimitDbua - *state_.Result.Induced);
  return true;
}

bool StepRunner::CheckDrive() {
  if (!(state_.Now.Offset < -kMostDriveDb)) return true;
  run_.guard.RfOff();
  run_.shell.speaker.Beep(1000, 500);
  return run_.guard.Fail(std::string(kLowGainText) + "\r\nCal SigGen = " + Format(state_.Targets.SigGenCal, "#0.0") +
                         "dBm and Cal FwdPwr = " + Format(state_.Targets.PowerTarget, "#0.0") + "dBm");
}

bool StepRunner::CheckGain() {
  if (!(state_.Now.Offset < 0)) return true;
  const double deficit = GainDeficit(state_.Targets.ForwardReference, *state_.Result.FwdPwr, state_.Now.Offset);
  return deficit <= kMostGainDeficitDb || run_.guard.Fail(kLowGainText);
}

bool StepRunner::RaiseAndDwell(const std::string& dwellStatus) {
  if (Halted()) return false;
  run_.display.Show(Readout::SigGenLevel, DriveLevel());
  run_.display.Status("Raising sig-gen level...");
  if (Halted() || !run_.guard.Ok(run_.instruments.sigGen.SetFreqLevel(state_.Freq, DriveLevel()))) return false;
  return Wait(double{Test().InterDwell}, dwellStatus);
}

bool StepRunner::ReadProbe(const std::string& status) {
  run_.display.Status(status);
  const auto reading = run_.guard.Reading(run_.instruments.meter.MeterRead(ReadMode::AutoRange));
  if (!reading || Halted()) return false;
  state_.Result.Induced = *reading + state_.Probe.Factors;
  run_.display.Show(Readout::InducedLimit, state_.Probe.LimitDbua);
  run_.display.Show(Readout::InducedLevel, state_.Result.Induced);
  return true;
}

bool StepRunner::ReadForward() {
  run_.display.Status("Reading forward power...");
  const auto reading = run_.guard.Reading(run_.sensor.Read());
  if (!reading || Halted()) return false;
  const auto factor = run_.inputs->ForwardPort.InterpVal(state_.Freq, FreqScale::Linear);
  if (!run_.guard.Ok(factor, "Error interpolating forward coupler factor")) return false;
  state_.Result.FwdPwr = LinePower(*reading, double{*factor});
  run_.display.Show(Readout::ForwardPower, state_.Result.FwdPwr);
  return true;
}

bool StepRunner::ReadReverse() {
  run_.display.Status("Reading reverse power...");
  if (!run_.documents.equip.Record.Is(AmpConfig::DualFwdRev))
    return run_.guard.Fail("Power meter not defined as dual-channel, check setup");
  const auto reading = run_.guard.Reading(run_.instruments.pm.ReadPower(2));
  if (!reading || Halted()) return false;
  const auto factor = run_.inputs->ReversePort.InterpVal(state_.Freq, FreqScale::Linear);
  if (!run_.guard.Ok(factor, "Error interpolating reverse coupler factor")) return false;
  state_.Result.RevPwr = LinePower(*reading, double{*factor});
  return true;
}

std::optional<double> StepRunner::ReadNet() {
  if (!ReadForward() || !ReadReverse()) return std::nullopt;
  const auto net = NetPower(*state_.Result.FwdPwr, *state_.Result.RevPwr, state_.Targets.ForwardReference);
  if (!net) run_.guard.Fail("Error, reverse power reading greater than forward power,\r\ncheck setup carefully.");
  return net;
}

}  // namespace hylden
