// The modulation side of the signal generator driver.

#include "instruments/Command.h"
#include "instruments/SigGen.h"

namespace hylden {

namespace {

constexpr const char* kNoAm = "Signal Generator not capable of AM Modulation";
constexpr const char* kNoFm = "Signal Generator not capable of FM Modulation";
constexpr const char* kNoPulse = "Signal Generator not capable of Pulse Modulation";

}  // namespace

Done SigGen::SetAM(float frequencyKHz, float depthPercent, bool useDepth) {
  if (!AmCapable()) return Because(kNoAm);
  if (modulated_ != Switched::On) {
    savedAmFreq_ = frequencyKHz;
    savedAmDepth_ = depthPercent;
  }
  return SetUpAm(frequencyKHz, depthPercent, useDepth);
}

Done SigGen::SetUpAm(float frequencyKHz, float depthPercent, bool useDepth) {
  return SendAm(frequencyKHz, depthPercent).map([&] {
    modulation_ = Modulation::Am;
    switchByDepth_ = useDepth;
  });
}

Done SigGen::SendAm(float frequencyKHz, float depthPercent) {
  constexpr const char* kFailed = "Error setting AM modulation";
  const SigGenDefinition& d = definition_;
  const bool hasFreq = !d.AmFreqPrefix.empty() || !d.AmFreqSuffix.empty();
  const bool hasDepth = !d.AmDepthPrefix.empty() || !d.AmDepthSuffix.empty();
  const auto send = [&](auto... setting) { return SendModulation(setting..., kFailed); };
  const Done sent = hasFreq ? send(d.AmFreqPrefix, frequencyKHz, commandpattern::kModulation, d.AmFreqSuffix) : Done();
  return sent && hasDepth ? send(d.AmDepthPrefix, depthPercent, commandpattern::kDepth, d.AmDepthSuffix) : sent;
}

Done SigGen::SetFM(float frequencyKHz, float deviationKHz) {
  constexpr const char* kFailed = "Error setting FM modulation";
  const SigGenDefinition& d = definition_;
  if (!FmCapable()) return Because(kNoFm);
  modulation_ = Modulation::Fm;
  return SendModulation(d.FmFreqPrefix, frequencyKHz, commandpattern::kModulation, d.FmFreqSuffix, kFailed)
      .and_then([&] {
        return SendModulation(d.FmDevPrefix, deviationKHz, commandpattern::kModulation, d.FmDevSuffix, kFailed);
      });
}

Done SigGen::SetPulse(float frequencyKHz, float widthMs) {
  constexpr const char* kFailed = "Error setting Pulse modulation";
  const SigGenDefinition& d = definition_;
  if (!PulseCapable()) return Because(kNoPulse);
  modulation_ = Modulation::Pulse;
  return SendModulation(d.PulseFreqPrefix, frequencyKHz, commandpattern::kModulation, d.PulseFreqSuffix, kFailed)
      .and_then([&] {
        return SendModulation(d.PulseWidthPrefix, widthMs, commandpattern::kModulation, d.PulseWidthSuffix, kFailed);
      });
}

Done SigGen::AmOn() {
  if (!AmCapable()) return Because(kNoAm);
  const Switched before = modulated_;
  const Done on =
      before == Switched::On ? Done() : SwitchModulationOn(definition_.AmModOn, "Error setting AM Modulation on. ");
  // Switched off by its depth, AM comes back by its depth.
  return !on || before == Switched::Off ? on : SetUpAm(savedAmFreq_, savedAmDepth_, switchByDepth_);
}

Done SigGen::FmOn() {
  if (!FmCapable()) return Because(kNoFm);
  return SwitchModulationOn(definition_.FmModOn, "Error setting FM Modulation on. ");
}

Done SigGen::PulseOn() {
  if (!PulseCapable()) return Because(kNoPulse);
  return SwitchModulationOn(definition_.PulseModOn, "Error setting Pulse Modulation on.");
}

Done SigGen::SwitchModulationOn(const std::string& command, const std::string& failure) {
  modulated_ = Switched::Unknown;
  return SendText(command, failure).map([&] { modulated_ = Switched::On; });
}

Done SigGen::ModOff() {
  if (modulated_ == Switched::Off) return {};
  if (modulation_ == Modulation::Am && switchByDepth_) return SetUpAm(savedAmFreq_, 0, switchByDepth_);
  modulated_ = Switched::Unknown;
  return SendText(definition_.ModulationOff, "Error turning modulation off. ").map([&] { modulated_ = Switched::Off; });
}

Done SigGen::SendModulation(const std::string& prefix, float value, std::string_view pattern, const std::string& suffix,
                            const std::string& failure) {
  return gpib_.Send(Address(), SettingCommand(prefix, value, pattern, suffix, terminator_), failure);
}

}  // namespace hylden
