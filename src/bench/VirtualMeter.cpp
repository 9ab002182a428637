#include "bench/VirtualMeter.h"

#include <algorithm>
#include <cmath>

#include "measure/Conversions.h"

namespace hylden {
namespace {

enum Code : int { kInit, kFreq, kLevel, kRead, kTrigger, kShutdown };

constexpr double kUnlimitedDbuv = 1e6;
// A scope is set in volts per division; 8 divisions from peak to peak hold 2.83 times that as an RMS value.
constexpr double kScopeScreenDb = 9.03;

bool Is(const MeterDefinition& definition, MeterType type) {
  return definition.Type == static_cast<std::int32_t>(type);
}

}  // namespace

VirtualMeter::VirtualMeter(RfWorld& world, const MeterDefinition& d)
    : VirtualInstrument(BenchRole::Meter, d.EndOfString), world_(world), definition_(d) {
  commands_.AddText(d.InitString, kInit);
  commands_.AddValue(d.FreqSetPrefix, d.FreqSetSuffix, kFreq);
  commands_.AddValue(d.LevSetPrefix, d.LevSetSuffix, kLevel);
  commands_.AddText(d.Read, kRead);
  commands_.AddText(d.Trigger, kTrigger);
  commands_.AddText(d.Shutdown, kShutdown);
  const bool ranged = !d.LevSetPrefix.empty() || !d.LevSetSuffix.empty();
  topDbuv_ = ranged ? static_cast<double>(d.MaximumLevel) : kUnlimitedDbuv;
}

Heard VirtualMeter::Listen(std::string_view command) {
  Heard heard;
  heard.Understood = commands_.ForEach(command, [&](int code, double value) {
    switch (code) {
      case kFreq:
        tunedMHz_ = value;
        break;
      case kLevel:
        SetReference(value);
        break;
      case kRead:
        heard.Answer = Answer();
        break;
      case kTrigger:
        capture_.Trigger(world_.Now(), CaptureTimeMs(world_.Config().MeterCaptureMs, definition_.SettlingTime));
        break;
      default:
        break;
    }
  });
  return heard;
}

std::optional<std::string> VirtualMeter::Speak() {
  if (!definition_.Read.empty()) return std::nullopt;
  return Answer();
}

void VirtualMeter::FinishCapture() {
  capture_.Finish(world_.Now(), [this](std::int64_t tick) { return Measure(tick); });
}

double VirtualMeter::Detected(const Signal& signal) const {
  Detector detector = world_.Config().Detector;
  if (detector == Detector::ByType)
    detector = Is(definition_, MeterType::Scope)     ? Detector::Peak
               : Is(definition_, MeterType::RfMeter) ? Detector::Average
                                                     : Detector::Carrier;
  if (detector == Detector::Peak) return signal.Peak;
  return detector == Detector::Average ? signal.Average : signal.Carrier;
}

bool VirtualMeter::IsTunable() const {
  return !definition_.FreqSetPrefix.empty() || !definition_.FreqSetSuffix.empty();
}

std::optional<double> VirtualMeter::RangeTopDbuv() const {
  if (topDbuv_ == kUnlimitedDbuv) return std::nullopt;
  return topDbuv_;
}

bool VirtualMeter::TunedTo(double freqMHz) const {
  if (!IsTunable() || !Is(definition_, MeterType::SpecAn)) return true;
  return std::abs(tunedMHz_ - freqMHz) * 1000 <= world_.Config().MeterBandwidthKHz;
}

double VirtualMeter::FloorDbuv() const {
  const double floor = world_.Config().MeterFloorDbuv;
  return topDbuv_ == kUnlimitedDbuv ? floor : std::max(floor, topDbuv_ - world_.Config().MeterRangeDb);
}

double VirtualMeter::Measure(std::int64_t tickMs) {
  const RfWorld::View& view = world_.SeenAt(tickMs);
  const Signal& signal = view.Levels.MeterDbuv;
  double level = FloorDbuv();
  if (signal.Present() && TunedTo(view.FreqMHz)) level = PowerSum(level, Detected(signal));
  return std::min(level + world_.Noise(), topDbuv_);
}

void VirtualMeter::SetReference(double value) {
  const auto reference = Conversions::MeterReadingToDbuv(definition_.Units, value);
  if (!reference || IsMissing(*reference)) return;
  topDbuv_ = *reference + (Is(definition_, MeterType::Scope) ? kScopeScreenDb : 0);
}

std::string VirtualMeter::Answer() {
  FinishCapture();
  const double level = definition_.Trigger.empty() ? Measure(world_.Now()) : capture_.Value().value_or(FloorDbuv());
  const bool linear = Conversions::IsLinear(static_cast<Conversions::MeterUnits>(definition_.Units));
  const double value = Conversions::DbuvToMeterUnits(definition_.Units, level).value_or(level);
  lastReading_ = value;
  return AnswerText(world_.Config().MeterAnswer, {value, linear, tunedMHz_});
}

}  // namespace hylden
