// The modulation side of the signal generator driver.

#include "instruments/Command.h"
#include "instruments/SigGen.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

constexpr const char* kNoAm = "Signal Generator not capable of AM Modulation";
constexpr const char* kNoFm = "Signal Generator not capable of FM Modulation";
constexpr const char* kNoPulse = "Signal Generator not capable of Pulse Modulation";

}  // namespace

bool SigGen::SetAM(float frequencyKHz, float depthPercent, bool useDepth) {
  if (!AmCapable()) return Refuse(kNoAm);
  if (modulated_ != Switched::On) {
    savedAmFreq_ = frequencyKHz;
    savedAmDepth_ = depthPercent;
  }
  return SetUpAm(frequencyKHz, depthPercent, useDepth);
}

bool SigGen::SetUpAm(float frequencyKHz, float depthPercent, bool useDepth) {
  if (!SendAm(frequencyKHz, depthPercent)) {
    gpib_.Report("Error setting AM modulation");
    return false;
  }
  modulation_ = Modulation::Am;
  switchByDepth_ = useDepth;
  return true;
}

bool SigGen::SendAm(float frequencyKHz, float depthPercent) {
  const SigGenDefinition& d = definition_;
  const bool hasFreq = !d.AmFreqPrefix.empty() || !d.AmFreqSuffix.empty();
  const bool hasDepth = !d.AmDepthPrefix.empty() || !d.AmDepthSuffix.empty();
  if (hasFreq && !SendModulation(d.AmFreqPrefix, frequencyKHz, commandpattern::kModulation, d.AmFreqSuffix)) {
    return false;
  }
  return !hasDepth || SendModulation(d.AmDepthPrefix, depthPercent, commandpattern::kDepth, d.AmDepthSuffix);
}

bool SigGen::SetFM(float frequencyKHz, float deviationKHz) {
  const SigGenDefinition& d = definition_;
  if (!FmCapable()) return Refuse(kNoFm);
  modulation_ = Modulation::Fm;
  if (SendModulation(d.FmFreqPrefix, frequencyKHz, commandpattern::kModulation, d.FmFreqSuffix) &&
      SendModulation(d.FmDevPrefix, deviationKHz, commandpattern::kModulation, d.FmDevSuffix)) {
    return true;
  }
  gpib_.Report("Error setting FM modulation");
  return false;
}

bool SigGen::SetPulse(float frequencyKHz, float widthMs) {
  const SigGenDefinition& d = definition_;
  if (!PulseCapable()) return Refuse(kNoPulse);
  modulation_ = Modulation::Pulse;
  if (SendModulation(d.PulseFreqPrefix, frequencyKHz, commandpattern::kModulation, d.PulseFreqSuffix) &&
      SendModulation(d.PulseWidthPrefix, widthMs, commandpattern::kModulation, d.PulseWidthSuffix)) {
    return true;
  }
  gpib_.Report("Error setting Pulse modulation");
  return false;
}

bool SigGen::AmOn() {
  if (!AmCapable()) return Refuse(kNoAm);
  const Switched before = modulated_;
  if (before != Switched::On && !SwitchModulationOn(definition_.AmModOn, "Error setting AM Modulation on. "))
    return false;
  // Switched off by its depth, AM comes back by its depth.
  return before == Switched::Off || SetUpAm(savedAmFreq_, savedAmDepth_, switchByDepth_);
}

bool SigGen::FmOn() {
  if (!FmCapable()) return Refuse(kNoFm);
  return SwitchModulationOn(definition_.FmModOn, "Error setting FM Modulation on. ");
}

bool SigGen::PulseOn() {
  if (!PulseCapable()) return Refuse(kNoPulse);
  return SwitchModulationOn(definition_.PulseModOn, "Error setting Pulse Modulation on.");
}

bool SigGen::SwitchModulationOn(const std::string& command, const std::string& failure) {
  modulated_ = Switched::Unknown;
  if (!SendText(command, failure)) return false;
  modulated_ = Switched::On;
  return true;
}

bool SigGen::ModOff() {
  if (modulated_ == Switched::Off) return true;
  if (modulation_ == Modulation::Am && switchByDepth_) return SetUpAm(savedAmFreq_, 0, switchByDepth_);
  modulated_ = Switched::Unknown;
  if (!SendText(definition_.ModulationOff, "Error turning modulation off. ")) return false;
  modulated_ = Switched::Off;
  return true;
}

bool SigGen::SendModulation(const std::string& prefix, float value, std::string_view pattern,
                            const std::string& suffix) {
  return gpib_.Send(Address(), SettingCommand(prefix, value, pattern, suffix, terminator_));
}

}  // namespace hylden
