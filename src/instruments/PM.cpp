#include "instruments/PM.h"

#include "instruments/Command.h"
#include "measure/Conversions.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

constexpr const char* kName = "PwrMtr";
const std::string kNoCommand;

/// The text of a channel; empty for a channel that does not exist.
const std::string& OfChannel(int channel, const std::string& first, const std::string& second) {
  if (channel == 1) return first;
  return channel == 2 ? second : kNoCommand;
}

}  // namespace

bool PM::InitPwrMtr() {
  if (!Ready()) return false;
  const std::string init = definition_.InitString.empty() ? "" : definition_.InitString + terminator_.Text;
  if (!gpib_.GpibOpen(Address(), init, kName)) return false;
  currentFreq_ = 0;
  answers_.ForgetTrigger();
  return true;
}

bool PM::PwrMtrSetFreq(double frequencyMHz) {
  if (!(frequencyMHz >= MinimumFreq() && frequencyMHz <= MaximumFreq())) {
    shell_.TellFailure("Frequency requested exceeds power meter's capability. ");
    return false;
  }
  if (frequencyMHz == currentFreq_) return true;
  currentFreq_ = 0;  // until the command has got through, nothing is assumed about the instrument
  if (HasFreqCommand() && !TuneChannels(frequencyMHz)) return false;
  currentFreq_ = frequencyMHz;
  return true;
}

bool PM::TuneChannels(double frequencyMHz) {
  const std::string command = SettingCommand(definition_.FreqSetPrefix, frequencyMHz, commandpattern::kMeterFreq,
                                             definition_.FreqSetSuffix, terminator_);
  const bool twoChannels = !definition_.SelectCh2.empty();
  return TuneChannel(1, command) && (!twoChannels || TuneChannel(2, command));
}

bool PM::TuneChannel(int channel, const std::string& command) {
  // On the wrong channel the frequency would spoil the other sensor's calibration factor.
  if (!PwrMtrSelect(channel)) return false;
  return gpib_.Send(Address(), command) || WriteFailed();
}

bool PM::PwrMtrSelect(int channel) {
  if (channel != 1 && channel != 2) return false;
  const std::string& command = OfChannel(channel, definition_.SelectCh1, definition_.SelectCh2);
  if (command.empty()) return true;
  return gpib_.SendOrReport(Address(), command + terminator_.Text, "Error in writing to power meter. ");
}

bool PM::PwrMtrTrigger(int channel) {
  const int active = ChannelFor(channel);
  PwrMtrSelect(active);
  const std::string& command = OfChannel(active, definition_.Ch1Trigger, definition_.Ch2Trigger);
  return answers_.Trigger(Address(), command, double{definition_.SettlingTime}) || WriteFailed();
}

double PM::ReadPower(int channel) {
  if (answers_.TriggerPending()) {
    answers_.AwaitPending();
  } else {
    if (!PwrMtrTrigger(channel)) return ReadFailed();
    shell_.delay.Delay(double{definition_.SettlingTime}, true);
  }
  if (shell_.delay.HaltRequested()) return kNoReading;
  const auto power = ReadDbm(ChannelFor(channel));
  return power ? *power : ReadFailed();
}

std::optional<double> PM::ReadDbm(int channel) {
  const std::string& command = OfChannel(channel, definition_.Ch1Read, definition_.Ch2Read);
  const auto value = answers_.Read(Address(), command, definition_.ParsingCmd);
  return value ? answers_.Converted(Conversions::PowerReadingToDbm, definition_.Units, *value) : std::nullopt;
}

int PM::ChannelFor(int channel) const {
  if (channel != kByBand) return channel;
  return currentFreq_ <= definition_.Bandswitch ? 1 : 2;
}

bool PM::PwrMtrShutdown() {
  const bool offline = definition_.Shutdown.empty()
                           ? InitPwrMtr()
                           : gpib_.Send(Address(), definition_.Shutdown + terminator_.Text) || WriteFailed();
  return offline && gpib_.GpibClose(Address(), kName);
}

bool PM::WriteFailed() {
  gpib_.Report("Error in writing command to power meter. ");
  return false;
}

double PM::ReadFailed() {
  answers_.MarkFailed();
  gpib_.Report("Error in reading power meter. ");
  shell_.dialogs.DefaultPointer();
  return kNoReading;
}

}  // namespace hylden
