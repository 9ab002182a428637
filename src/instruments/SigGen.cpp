#include "instruments/SigGen.h"

#include "instruments/Command.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

constexpr const char* kName = "SigGen";
constexpr const char* kWriteFailed = "Error in writing command to Signal Generator. ";

}  // namespace

Done SigGen::InitSigGen(double frequencyMHz, float levelDbm) {
  if (Done ready = Ready(); !ready) return ready;
  rf_ = Rf::Unknown;  // whatever state the generator is found in, it has to be switched off
  // An empty Init String still sends the terminator: it ends a command left half-typed in the generator.
  Done opened = gpib_.GpibOpen(Address(), definition_.InitString + terminator_.Text, kName);
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
  if (sent && rising) sent = SendLevel();
  return sent.map([&] {
    currentFreq_ = requestedFreq_;
    currentLevel_ = requestedLevel_;
  });
}

Done SigGen::SendFreq() {
  return gpib_.Send(Address(),
                    SettingCommand(definition_.FreqSetPrefix, requestedFreq_, commandpattern::kFreq,
                                   definition_.FreqSetSuffix, terminator_),
                    kWriteFailed);
}

Done SigGen::SendLevel() {
  return gpib_.Send(Address(),
                    SettingCommand(definition_.LevSetPrefix, requestedLevel_, commandpattern::kLevel,
                                   definition_.LevSetSuffix, terminator_),
                    kWriteFailed);
}

void SigGen::ForgetSent() {
  currentFreq_ = 0;
  currentLevel_ = kNoLevel;
}

Done SigGen::RfOn() {
  if (Done ready = Ready(); !ready) return ready;
  if (rf_ != Rf::On) {
    rf_ = Rf::On;
    if (Done set = SetFreqLevel(requestedFreq_, requestedLevel_); !set) return set;
  }
  Done sent = SendText(definition_.RfOn, "Error setting SigGen RF on. ");
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
  Done sent =
      definition_.RfOff.empty() ? LowerToMinimum() : SendText(definition_.RfOff, "Error setting SigGen RF off. ");
  // After the send: had it thrown, the output would still count as on. What was off stays off.
  if (sent) rf_ = Rf::Off;
  if (!sent && rf_ == Rf::On) rf_ = Rf::Unknown;
  return sent;
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

Done SigGen::ShutdownSigGen() {
  return Request(MinimumFreq(), MinimumLevel())
      .and_then([&] { return SendRequest(UnknownLevel::LevelFirst); })
      .and_then([&] { return SilenceRf(); })
      .and_then([&] { return gpib_.GpibClose(Address(), kName); });
}

Done SigGen::SendText(const std::string& text, const std::string& failure) {
  return gpib_.Send(Address(), text + terminator_.Text, failure);
}

Done SigGen::Refuse(const std::string& text) {
  const Done silenced = SilenceRf();
  return Both(Because(text), silenced);
}

}  // namespace hylden
