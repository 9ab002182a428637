#include "instruments/PM.h"

#include "instruments/Command.h"
#include "instruments/DefinitionFile.h"
#include "instruments/DefinitionListing.h"
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
  const std::string init = definition_.InitString.empty() ? "" : definition_.InitString + answers_.terminator.Text;
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
  currentFreq_ = frequencyMHz;
  if (definition_.FreqSetPrefix.empty() && definition_.FreqSetSuffix.empty()) return true;
  const std::string command = SettingCommand(definition_.FreqSetPrefix, frequencyMHz, commandpattern::kMeterFreq,
                                             definition_.FreqSetSuffix, answers_.terminator);
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
  return gpib_.SendOrReport(Address(), command + answers_.terminator.Text, "Error in writing to power meter. ");
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
    shell_.delay.Delay(double{definition_.SettlingTime}, false);
  }
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
                           : gpib_.Send(Address(), definition_.Shutdown + answers_.terminator.Text);
  return offline ? gpib_.GpibClose(Address(), kName) : WriteFailed();
}

bool PM::LoadFile(const std::string& path) {
  fileName_ = path;
  if (!LoadDefinition(shell_, path, definition_, "PwrMtr.LoadFile")) return false;
  answers_.terminator.Derive(definition_.EndOfString);
  return true;
}

bool PM::SaveFile(const std::string& path) {
  if (!SaveDefinition(shell_, path, definition_, "PwrMtr.SaveFile")) return false;
  fileName_ = path;
  return true;
}

void PM::PrintSetup() {
  PrintListing(shell_, Listing(definition_), "Power Meter Definition", "PwrMtr.PrintSetup", fileName_);
}

void PM::SetAddress(int address) {
  definition_.Address = static_cast<std::int16_t>(address);
}

void PM::PutDefinition(const PowerMeterDefinition& definition) {
  definition_ = definition;
  answers_.terminator.Derive(definition_.EndOfString);
}

bool PM::WriteFailed() {
  gpib_.Report("Error in writing command to power meter. ");
  return false;
}

double PM::ReadFailed() {
  gpib_.Report("Error in reading power meter. ");
  shell_.dialogs.DefaultPointer();
  return kNoReading;
}

}  // namespace hylden
