#include "bench/VirtualPowerMeter.h"

#include "measure/Conversions.h"

namespace hylden {
namespace {

enum Code : int {
  kInit,
  kFreq,
  kSelect1,
  kSelect2,
  kRead1,
  kRead2,
  kReadSelected,
  kTrigger1,
  kTrigger2,
  kTriggerSelected,
  kShutdown
};

using Conversions::PowerUnits;

/// One text for both channels means the selected one.
void AddPair(CommandSet& commands, const std::string& first, const std::string& second, int firstCode, int secondCode,
             int selectedCode) {
  if (first == second) return commands.AddText(first, selectedCode);
  commands.AddText(first, firstCode);
  commands.AddText(second, secondCode);
}

}  // namespace

double DbmToPowerUnits(std::int32_t units, double dbm) {
  const double dbuv = Conversions::DbmToDbuv(dbm, 50);
  switch (static_cast<PowerUnits>(units)) {
    case PowerUnits::Watts:
      return Conversions::DbmToWatts(dbm);
    case PowerUnits::Dbm:
      return dbm;
    case PowerUnits::Dbuv:
      return dbuv;
    case PowerUnits::Millivolts:
      return Conversions::DbuvToVolts(dbuv) * 1000;
    case PowerUnits::Volts:
      return Conversions::DbuvToVolts(dbuv);
    case PowerUnits::Dbmv:
      return dbuv - 60;
  }
  return dbm;
}

VirtualPowerMeter::VirtualPowerMeter(RfWorld& world, const PowerMeterDefinition& d, PowerSensors sensors,
                                     double bandSwitchMHz)
    : VirtualInstrument(BenchRole::PowerMeter, d.EndOfString),
      world_(world),
      definition_(d),
      sensors_(sensors),
      bandSwitchMHz_(bandSwitchMHz) {
  commands_.AddText(d.InitString, kInit);
  commands_.AddValue(d.FreqSetPrefix, d.FreqSetSuffix, kFreq);
  commands_.AddText(d.SelectCh1, kSelect1);
  commands_.AddText(d.SelectCh2, kSelect2);
  AddPair(commands_, d.Ch1Read, d.Ch2Read, kRead1, kRead2, kReadSelected);
  AddPair(commands_, d.Ch1Trigger, d.Ch2Trigger, kTrigger1, kTrigger2, kTriggerSelected);
  commands_.AddText(d.Shutdown, kShutdown);
}

Heard VirtualPowerMeter::Listen(std::string_view command) {
  Heard heard;
  const auto trigger = [this](int channel) {
    captures_[static_cast<std::size_t>(channel - 1)].Trigger(
        world_.Now(), CaptureTimeMs(world_.Config().PowerMeterCaptureMs, definition_.SettlingTime));
  };
  heard.Understood = commands_.ForEach(command, [&](int code, double value) {
    switch (code) {
      case kFreq:
        freqMHz_ = value;
        break;
      case kSelect1:
        selected_ = 1;
        break;
      case kSelect2:
        selected_ = 2;
        break;
      case kRead1:
        heard.Answer = Answer(1);
        break;
      case kRead2:
        heard.Answer = Answer(2);
        break;
      case kReadSelected:
        heard.Answer = Answer(selected_);
        break;
      case kTrigger1:
        trigger(1);
        break;
      case kTrigger2:
        trigger(2);
        break;
      case kTriggerSelected:
        trigger(selected_);
        break;
      default:
        break;
    }
  });
  return heard;
}

std::optional<std::string> VirtualPowerMeter::Speak() {
  const std::string& read = selected_ == 1 ? definition_.Ch1Read : definition_.Ch2Read;
  if (!read.empty()) return std::nullopt;
  return Answer(selected_);
}

void VirtualPowerMeter::FinishCaptures() {
  for (int channel = 1; channel <= 2; ++channel)
    captures_[static_cast<std::size_t>(channel - 1)].Finish(world_.Now(),
                                                            [&](std::int64_t tick) { return Measure(channel, tick); });
}

double VirtualPowerMeter::SensorDbm(int channel, const RfWorld::View& view) const {
  const PathLevels& levels = view.Levels;
  const bool low = view.FreqMHz <= bandSwitchMHz_;
  switch (sensors_) {
    case PowerSensors::Forward:
      return channel == 1 ? levels.ForwardPortDbm : kNoValue;
    case PowerSensors::ForwardReverse:
      return channel == 1 ? levels.ForwardPortDbm : levels.ReversePortDbm;
    case PowerSensors::ByBand:
      return (channel == 1) == low ? levels.ForwardPortDbm : kNoValue;
  }
  return kNoValue;
}

double VirtualPowerMeter::Measure(int channel, std::int64_t tickMs) {
  const double sensor = SensorDbm(channel, world_.SeenAt(tickMs));
  return PowerSum(world_.Config().PowerMeterFloorDbm, sensor) + world_.Noise();
}

std::string VirtualPowerMeter::Answer(int channel) {
  FinishCaptures();
  const bool triggered = !(channel == 1 ? definition_.Ch1Trigger : definition_.Ch2Trigger).empty();
  const double dbm =
      triggered ? captures_[static_cast<std::size_t>(channel - 1)].Value().value_or(world_.Config().PowerMeterFloorDbm)
                : Measure(channel, world_.Now());
  const double value = DbmToPowerUnits(definition_.Units, dbm);
  lastReadings_[static_cast<std::size_t>(channel - 1)] = value;
  const bool linear = Conversions::IsLinear(static_cast<PowerUnits>(definition_.Units));
  return AnswerText(world_.Config().PowerMeterAnswer, {value, linear, freqMHz_, channel});
}

}  // namespace hylden
