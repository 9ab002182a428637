#include "instruments/SigGen.h"

#include "instruments/Command.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

constexpr const char* kName = "SigGen";
constexpr const char* kWriteFailed = "Error in writing command to Signal Generator. ";
constexpr const char* kOffFailed = "Error setting SigGen RF off. ";
constexpr const char* kNoAm = "Signal Generator not capable of AM Modulation";
constexpr const char* kNoFm = "Signal Generator not capable of FM Modulation";
constexpr const char* kNoPulse = "Signal Generator not capable of Pulse Modulation";

}  // namespace

Done SigGen::InitSigGen(double frequencyMHz, float levelDbm) {
  if (Done ready = Ready(); !ready) return ready;
  rf_ = Rf::Unknown;  // whatever state the generator is found in, it has to be switched off
  // An empty Init String still sends the terminator: it ends a command left half-typed in the generator.
  Done opened = gpib_.GpibOpen(Address(), definition_.InitString + terminator_.Text, kName, terminator_.Bare());
  if (!opened) return opened;
  ForgetSent();
  const bool atMinimum = frequencyMHz == 0;
  Done accepted = atMinimum ? Request(MinimumFreq(), MinimumLevel()) : Request(frequencyMHz, levelDbm);
  if (!accepted) return accepted;
  modulation_ = Modulation::None;
  switchByDepth_ = false;
  modulated_ = Switched::Unknown;
  const Done modulationIsOff = ModOff();
  return Both(modulationIsOff, SilenceRf());
}

Done SigGen::SetFreqLevel(double frequencyMHz, float levelDbm) {
  Done accepted = Request(frequencyMHz, levelDbm);
  return accepted && rf_ != Rf::Off ? SendRequest() : accepted;
}

Done SigGen::Request(double frequencyMHz, float levelDbm) {
  if (!HasFreqCommand() || !HasLevelCommand()) return Because();
  if (!(levelDbm >= MinimumLevel() && levelDbm <= MaximumLevel()))
    return Refuse("Level requested outside of range of instrument");
  if (!(frequencyMHz >= MinimumFreq() && frequencyMHz <= MaximumFreq()))
    return Refuse("Frequency requested outside of range of instrument");
  requestedFreq_ = frequencyMHz;
  requestedLevel_ = levelDbm;
  return {};
}

Done SigGen::SendRequest(UnknownLevel order) {
  const bool levelKnown = currentLevel_ != kNoLevel;
  const bool retune = requestedFreq_ != currentFreq_;
  const bool falling = levelKnown ? requestedLevel_ < currentLevel_ : order == UnknownLevel::LevelFirst;
  const bool rising = !falling && requestedLevel_ != currentLevel_;
  ForgetSent();  // until everything has gone out, nothing is assumed about the instrument
  // The higher of two levels never stands on the wrong frequency.
  Done sent = falling ? SendLevel() : Done();
  if (sent && retune) sent = SendFreq();
  // A halt may have come during the command before.
  const bool mayRise = !shell_.delay.HaltRequested() || requestedLevel_ <= MinimumLevel();
  if (sent && rising) sent = mayRise ? SendLevel() : Because();
  return sent.map([&] {
    currentFreq_ = requestedFreq_;
    currentLevel_ = requestedLevel_;
  });
}

Done SigGen::SendFreq() {
  return SendCommand(FreqCommand(requestedFreq_, commandpattern::kFreq), kWriteFailed);
}

Done SigGen::SendLevel() {
  return SendCommand(
      SettingCommand(definition_.LevSetPrefix, requestedLevel_, commandpattern::kLevel, definition_.LevSetSuffix),
      kWriteFailed);
}

void SigGen::CommandedByHand() {
  rf_ = Rf::Unknown;
  ForgetSettings();
}

void SigGen::ForgetSettings() {
  ForgetSent();
  modulated_ = Switched::Unknown;
}

void SigGen::ForgetSent() {
  currentFreq_ = 0;
  currentLevel_ = kNoLevel;
}

Done SigGen::RfOn() {
  if (Done ready = Ready(); !ready) return ready;
  if (shell_.delay.HaltRequested()) return Because();
  if (rf_ != Rf::On) {
    rf_ = Rf::On;
    if (Done set = SetFreqLevel(requestedFreq_, requestedLevel_); !set) return set;
  }
  if (shell_.delay.HaltRequested()) return Because();  // also during the level's command
  Done sent = SendCommand(definition_.RfOn, "Error setting SigGen RF on. ");
  if (!sent) rf_ = Rf::Unknown;
  return sent;
}

Done SigGen::RfOff() {
  if (!definition_.RfOff.empty()) return SilenceRf();
  rf_ = Rf::Off;
  if (HasFreqCommand()) RequestMinimumLevel();
  return {};
}

Done SigGen::SilenceRf() {
  if (!HasDefinition()) return rf_ == Rf::Off ? Done() : Because();
  const bool mayHoldTail = gpib_.LastSendFailed(Address());
  Done sent = EndRf();
  if (sent && mayHoldTail) sent = EndRfAgain();
  // After the send: had it thrown, the output would still count as on. What was off stays off.
  if (sent) rf_ = Rf::Off;
  if (!sent && rf_ == Rf::On) rf_ = Rf::Unknown;
  return sent;
}

Done SigGen::EndRf() {
  return definition_.RfOff.empty() ? LowerToMinimum() : SendCommand(definition_.RfOff, kOffFailed);
}

Done SigGen::EndRfAgain() {
  const auto endRf = [&] {
    ForgetSent();
    return EndRf();
  };
  return gpib_.Send(Address(), terminator_.Bare(), kOffFailed).and_then(endRf).and_then(endRf);
}

Done SigGen::LowerToMinimum() {
  if (!HasFreqCommand() || !HasLevelCommand()) return {};  // nothing can have raised it
  const bool neverSent = currentFreq_ == 0 && currentLevel_ == kNoLevel;
  if (neverSent && rf_ == Rf::Off) return {};
  RequestMinimumLevel();
  return SendRequest(UnknownLevel::LevelFirst);
}

void SigGen::RequestMinimumLevel() {
  const bool neverTuned = currentFreq_ == 0;
  requestedFreq_ = neverTuned ? MinimumFreq() : currentFreq_;
  requestedLevel_ = MinimumLevel();
}

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
  return SendCommand(command, failure).map([&] { modulated_ = Switched::On; });
}

Done SigGen::ModOn(Modulation modulation) {
  switch (modulation) {
    case Modulation::Am:
      return AmOn();
    case Modulation::Fm:
      return FmOn();
    case Modulation::Pulse:
      return PulseOn();
    default:
      return {};
  }
}

Done SigGen::ModOff() {
  if (modulated_ == Switched::Off) return {};
  if (modulation_ == Modulation::Am && switchByDepth_) return SetUpAm(savedAmFreq_, 0, switchByDepth_);
  modulated_ = Switched::Unknown;
  return SendCommand(definition_.ModulationOff, "Error turning modulation off. ").map([&] {
    modulated_ = Switched::Off;
  });
}

Done SigGen::SendModulation(const std::string& prefix, float value, std::string_view pattern, const std::string& suffix,
                            const std::string& failure) {
  return SendCommand(SettingCommand(prefix, value, pattern, suffix), failure);
}

Done SigGen::ShutdownSigGen() {
  const Done lowered =
      Request(MinimumFreq(), MinimumLevel()).and_then([&] { return SendRequest(UnknownLevel::LevelFirst); });
  // Also where that failed: a connection may have been lost with the RF off that went before.
  return Both(lowered, SilenceRf()).and_then([&] { return gpib_.GpibClose(Address(), kName); });
}

Done SigGen::Refuse(const std::string& text) {
  const Done silenced = SilenceRf();
  return Both(Because(text), silenced);
}

}  // namespace hylden
