#include "instruments/SigGen.h"

#include "instruments/Command.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

constexpr const char* kName = "SigGen";

}  // namespace

bool SigGen::InitSigGen(double frequencyMHz, float levelDbm) {
  // An empty Init String still sends the terminator: it ends a command left half-typed in the generator.
  if (!gpib_.GpibOpen(Address(), definition_.InitString + terminator_.Text, kName)) return false;
  ForgetSent();
  const bool atMinimum = frequencyMHz == 0;
  const bool accepted = atMinimum ? SetFreqLevel(MinimumFreq(), MinimumLevel()) : SetFreqLevel(frequencyMHz, levelDbm);
  if (!accepted) return false;
  modulation_ = Modulation::None;
  switchByDepth_ = false;
  // Whatever state the generator was found in, both switch-off commands have to go out.
  rfOn_ = true;
  modulationOn_ = true;
  const bool modulationIsOff = ModOff();
  return SilenceRf() && modulationIsOff;
}

bool SigGen::SetFreqLevel(double frequencyMHz, float levelDbm) {
  if (!HasFreqCommand() || !HasLevelCommand()) return false;
  if (!(levelDbm >= MinimumLevel() && levelDbm <= MaximumLevel())) {
    SilenceRf();
    return Refuse("Level requested outside of range of instrument");
  }
  if (!(frequencyMHz >= MinimumFreq() && frequencyMHz <= MaximumFreq())) {
    SilenceRf();
    return Refuse("Frequency requested outside of range of instrument");
  }
  requestedFreq_ = frequencyMHz;
  requestedLevel_ = levelDbm;
  return !rfOn_ || SendRequest();
}

bool SigGen::SendRequest() {
  if (SendChanges()) return true;
  gpib_.Report("Error in writing command to Signal Generator. ");
  return false;
}

bool SigGen::SendChanges() {
  const bool retune = requestedFreq_ != currentFreq_;
  const bool falling = requestedLevel_ < currentLevel_;
  const bool rising = requestedLevel_ > currentLevel_;
  ForgetSent();  // until everything has gone out, nothing is assumed about the instrument
  // The higher of two levels never stands on the wrong frequency.
  if (falling && !SendLevel()) return false;
  if (retune && !SendFreq()) return false;
  if (rising && !SendLevel()) return false;
  currentFreq_ = requestedFreq_;
  currentLevel_ = requestedLevel_;
  return true;
}

bool SigGen::SendFreq() {
  return gpib_.Send(Address(), SettingCommand(definition_.FreqSetPrefix, requestedFreq_, commandpattern::kFreq,
                                              definition_.FreqSetSuffix, terminator_));
}

bool SigGen::SendLevel() {
  return gpib_.Send(Address(), SettingCommand(definition_.LevSetPrefix, requestedLevel_, commandpattern::kLevel,
                                              definition_.LevSetSuffix, terminator_));
}

void SigGen::ForgetSent() {
  currentFreq_ = 0;
  currentLevel_ = kNoLevel;
}

bool SigGen::RfOn() {
  if (!rfOn_) {
    rfOn_ = true;
    if (!SetFreqLevel(requestedFreq_, requestedLevel_)) return false;
  }
  return SendText(definition_.RfOn, "Error setting SigGen RF on. ");
}

bool SigGen::RfOff() {
  const bool sent = TryRfOff();
  if (!sent) gpib_.Report("Error setting SigGen RF off. ");
  return sent;
}

bool SigGen::TryRfOff() {
  if (definition_.RfOff.empty()) {
    rfOn_ = false;
    if (HasFreqCommand()) RequestMinimumLevel();
    return true;
  }
  const bool sent = gpib_.Send(Address(), definition_.RfOff + terminator_.Text);
  rfOn_ = false;  // after the send: had it thrown, the output would still count as on
  return sent;
}

bool SigGen::SilenceRf() {
  const bool lowered = !definition_.RfOff.empty() || LowerToMinimum();
  return RfOff() && lowered;
}

bool SigGen::LowerToMinimum() {
  if (!HasFreqCommand() || !HasLevelCommand()) return true;  // nothing can have raised it
  RequestMinimumLevel();
  return SendRequest();
}

void SigGen::RequestMinimumLevel() {
  const bool neverTuned = currentFreq_ == 0;
  requestedFreq_ = neverTuned ? MinimumFreq() : currentFreq_;
  requestedLevel_ = MinimumLevel();
}

bool SigGen::ShutdownSigGen() {
  return SetFreqLevel(MinimumFreq(), MinimumLevel()) && SilenceRf() && gpib_.GpibClose(Address(), kName);
}

bool SigGen::SendText(const std::string& text, const std::string& failure) {
  return gpib_.SendOrReport(Address(), text + terminator_.Text, failure);
}

bool SigGen::Refuse(const std::string& text) {
  shell_.dialogs.Tell(text);
  return false;
}

}  // namespace hylden
