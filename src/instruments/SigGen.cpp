#include "instruments/SigGen.h"

#include "instruments/Command.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

constexpr const char* kName = "SigGen";
constexpr const char* kWriteFailed = "Error in writing command to Signal Generator. ";

}  // namespace

bool SigGen::InitSigGen(double frequencyMHz, float levelDbm) {
  if (!Ready()) return false;
  rf_ = Rf::Unknown;  // whatever state the generator is found in, it has to be switched off
  // An empty Init String still sends the terminator: it ends a command left half-typed in the generator.
  if (!gpib_.GpibOpen(Address(), definition_.InitString + terminator_.Text, kName)) return false;
  ForgetSent();
  const bool atMinimum = frequencyMHz == 0;
  const bool accepted = atMinimum ? Request(MinimumFreq(), MinimumLevel()) : Request(frequencyMHz, levelDbm);
  if (!accepted) return false;
  modulation_ = Modulation::None;
  switchByDepth_ = false;
  modulated_ = Switched::Unknown;
  const bool modulationIsOff = ModOff();
  return SilenceOrReport() && modulationIsOff;
}

bool SigGen::SetFreqLevel(double frequencyMHz, float levelDbm) {
  return Request(frequencyMHz, levelDbm) && (rf_ == Rf::Off || SendRequest());
}

bool SigGen::Request(double frequencyMHz, float levelDbm) {
  if (!HasFreqCommand() || !HasLevelCommand()) return false;
  if (!(levelDbm >= MinimumLevel() && levelDbm <= MaximumLevel())) {
    SilenceOrReport();
    return Refuse("Level requested outside of range of instrument");
  }
  if (!(frequencyMHz >= MinimumFreq() && frequencyMHz <= MaximumFreq())) {
    SilenceOrReport();
    return Refuse("Frequency requested outside of range of instrument");
  }
  requestedFreq_ = frequencyMHz;
  requestedLevel_ = levelDbm;
  return true;
}

bool SigGen::SendRequest(UnknownLevel order) {
  if (SendChanges(order)) return true;
  gpib_.Report(kWriteFailed);
  return false;
}

bool SigGen::SendChanges(UnknownLevel order) {
  const bool levelKnown = currentLevel_ != kNoLevel;
  const bool retune = requestedFreq_ != currentFreq_;
  const bool falling = levelKnown ? requestedLevel_ < currentLevel_ : order == UnknownLevel::LevelFirst;
  const bool rising = !falling && requestedLevel_ != currentLevel_;
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
  if (!Ready()) return false;
  if (rf_ != Rf::On) {
    rf_ = Rf::On;
    if (!SetFreqLevel(requestedFreq_, requestedLevel_)) return false;
  }
  if (gpib_.Send(Address(), definition_.RfOn + terminator_.Text)) return true;
  rf_ = Rf::Unknown;
  gpib_.Report("Error setting SigGen RF on. ");
  return false;
}

bool SigGen::RfOff() {
  if (!definition_.RfOff.empty()) return SilenceOrReport();
  rf_ = Rf::Off;
  if (HasFreqCommand()) RequestMinimumLevel();
  return true;
}

bool SigGen::SilenceRf() {
  const Gpib::KeptStatus kept(gpib_);
  return TrySilence();
}

bool SigGen::SilenceOrReport() {
  if (TrySilence()) return true;
  gpib_.Report(definition_.RfOff.empty() ? kWriteFailed : "Error setting SigGen RF off. ");
  return false;
}

bool SigGen::TrySilence() {
  if (!HasDefinition()) return rf_ == Rf::Off;
  const bool sent =
      definition_.RfOff.empty() ? LowerToMinimum() : gpib_.Send(Address(), definition_.RfOff + terminator_.Text);
  // After the send: had it thrown, the output would still count as on. What was off stays off.
  if (sent) rf_ = Rf::Off;
  if (!sent && rf_ == Rf::On) rf_ = Rf::Unknown;
  return sent;
}

bool SigGen::LowerToMinimum() {
  if (!HasFreqCommand() || !HasLevelCommand()) return true;  // nothing can have raised it
  const bool neverSent = currentFreq_ == 0 && currentLevel_ == kNoLevel;
  if (neverSent && rf_ == Rf::Off) return true;
  RequestMinimumLevel();
  return SendChanges(UnknownLevel::LevelFirst);
}

void SigGen::RequestMinimumLevel() {
  const bool neverTuned = currentFreq_ == 0;
  requestedFreq_ = neverTuned ? MinimumFreq() : currentFreq_;
  requestedLevel_ = MinimumLevel();
}

bool SigGen::ShutdownSigGen() {
  return Request(MinimumFreq(), MinimumLevel()) && SendRequest(UnknownLevel::LevelFirst) && SilenceOrReport() &&
         gpib_.GpibClose(Address(), kName);
}

bool SigGen::SendText(const std::string& text, const std::string& failure) {
  return gpib_.SendOrReport(Address(), text + terminator_.Text, failure);
}

bool SigGen::Refuse(const std::string& text) {
  shell_.TellFailure(text);
  return false;
}

}  // namespace hylden
