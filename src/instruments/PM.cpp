#include "instruments/PM.h"

#include "instruments/Command.h"
#include "measure/Conversions.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

constexpr const char* kName = "PwrMtr";
constexpr const char* kWriteFailed = "Error in writing command to power meter. ";
constexpr double kMostPowerDbm = 998;  // no sensor has seen more; 999 is many an instrument's word for nothing
const std::string kNoCommand;

/// The text of a channel; empty for a channel that does not exist.
const std::string& OfChannel(int channel, const std::string& first, const std::string& second) {
  if (channel == 1) return first;
  return channel == 2 ? second : kNoCommand;
}

}  // namespace

Done PM::InitPwrMtr() {
  return Open(kName).map([&] { ForgetSettings(); });
}

void PM::ForgetSettings() {
  currentFreq_ = 0;
  answers_.ForgetTrigger();
}

Done PM::PwrMtrSetFreq(double frequencyMHz) {
  if (!(frequencyMHz >= MinimumFreq() && frequencyMHz <= MaximumFreq()))
    return Because("Frequency requested exceeds power meter's capability. ");
  if (frequencyMHz == currentFreq_) return {};
  currentFreq_ = 0;  // until the command has got through, nothing is assumed about the instrument
  const Done tuned = HasFreqCommand() ? TuneChannels(frequencyMHz) : Done();
  return tuned.map([&] { currentFreq_ = frequencyMHz; });
}

Done PM::TuneChannels(double frequencyMHz) {
  const std::string command = FreqCommand(frequencyMHz, commandpattern::kMeterFreq);
  const Done first = TuneChannel(1, command);
  const bool twoChannels = !definition_.SelectCh2.empty();
  return first && twoChannels ? TuneChannel(2, command) : first;
}

Done PM::TuneChannel(int channel, const std::string& command) {
  // On the wrong channel the frequency would spoil the other sensor's calibration factor.
  return PwrMtrSelect(channel).and_then([&] { return SendCommand(command, kWriteFailed); });
}

Done PM::PwrMtrSelect(int channel) {
  if (channel != 1 && channel != 2) return Because();
  const std::string& command = OfChannel(channel, definition_.SelectCh1, definition_.SelectCh2);
  if (command.empty()) return {};
  return SendCommand(command, "Error in writing to power meter. ");
}

Done PM::PwrMtrTrigger(int channel) {
  const int active = ChannelFor(channel);
  // RF may be on: nothing more is tried on a meter that did not take the selection. A silent failure is no such
  // channel.
  if (Done selected = PwrMtrSelect(active); !selected && !selected.error().IsSilent()) return selected;
  const std::string& command = OfChannel(active, definition_.Ch1Trigger, definition_.Ch2Trigger);
  if (answers_.Trigger(Address(), command, double{definition_.SettlingTime})) return {};
  return Because(gpib_.GpibError(kWriteFailed));
}

Result<double> PM::ReadPower(int channel) {
  if (answers_.TriggerPending()) {
    answers_.AwaitPending();
  } else {
    if (const Done triggered = PwrMtrTrigger(channel); !triggered) return ReadFailed(triggered.error());
    shell_.delay.Delay(double{definition_.SettlingTime}, true);
  }
  if (shell_.delay.HaltRequested()) return Because();
  const Result<double> answered = ReadDbm(ChannelFor(channel));
  return answered ? Judged(*answered) : ReadFailed(answered.error());
}

Result<double> PM::ReadDbm(int channel) {
  const std::string& command = OfChannel(channel, definition_.Ch1Read, definition_.Ch2Read);
  return answers_.Read(Address(), command, definition_.ParsingCmd).and_then([&](double value) {
    return answers_.Converted(Conversions::PowerReadingToDbm, definition_.Units, value);
  });
}

Result<double> PM::Judged(double powerDbm) const {
  if (const Done number = answers_.HoldsNumber("power meter", "power"); !number) return Because(number.error());
  if (powerDbm > kMostPowerDbm) return Because(answers_.NoQuantity("power meter", "power"));
  return powerDbm;
}

int PM::ChannelFor(int channel) const {
  if (channel != kByBand) return channel;
  return currentFreq_ <= definition_.Bandswitch ? 1 : 2;
}

Done PM::PwrMtrShutdown() {
  const Done offline = definition_.Shutdown.empty() ? InitPwrMtr() : SendCommand(definition_.Shutdown, kWriteFailed);
  return offline.and_then([&] { return gpib_.GpibClose(Address(), kName); });
}

tl::unexpected<Failure> PM::ReadFailed(Failure cause) const {
  return Because(cause.Add(gpib_.GpibError("Error in reading power meter. ")));
}

}  // namespace hylden
