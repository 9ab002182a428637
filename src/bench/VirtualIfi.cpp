#include "bench/VirtualIfi.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace hylden {
namespace {

enum Code : int { kStandby, kOperate, kReadPower, kAttenuate, kMode, kBand1, kBand2, kThrough };
constexpr std::int32_t kCrLf = 2;

struct Watts {
  double Forward = 0, Reflected = 0;
};

/// What the unit's own meter shows: nothing unless it amplifies.
Watts PowerOf(const RfWorld& world, Amplifier unit) {
  const BenchState& state = world.State();
  if (state.Cabling.Amplifier != unit || IsMissing(state.ForwardDbm)) return {};
  return {Conversions::DbmToWatts(state.ForwardDbm), Conversions::DbmToWatts(state.ReverseDbm)};
}

std::string FourDigits(double watts) {
  const int whole = std::clamp(static_cast<int>(std::lround(watts)), 0, 9999);
  std::string text = std::to_string(whole);
  return std::string(4 - text.size(), '0') + text;
}

std::string TwoDecimals(double watts) {
  char buffer[400];
  return {buffer, std::to_chars(buffer, buffer + sizeof buffer, watts, std::chars_format::fixed, 2).ptr};
}

void Switch(RfWorld& world, const IfiSwitches& switches) {
  Cabling cabling = world.Cabling();
  cabling.Amplifier = switches.Amplifier();
  world.SetCabling(cabling);
}

}  // namespace

Amplifier IfiSwitches::Amplifier() const {
  if (FullAttenuation) return Amplifier::None;
  if (Band == 1 && LowOperates) return Amplifier::IfiLow;
  return Band == 2 && HighOperates ? Amplifier::IfiHigh : Amplifier::None;
}

VirtualIfiLow::VirtualIfiLow(RfWorld& world, IfiSwitches& switches)
    : VirtualInstrument(BenchRole::IfiLow, kCrLf, false), world_(world), switches_(switches) {
  commands_.AddText("8", kStandby);
  commands_.AddText("9", kOperate);
  commands_.AddText("RP", kReadPower);
}

Heard VirtualIfiLow::Listen(std::string_view command) {
  Heard heard;
  heard.Understood = commands_.ForEach(command, [&](int code, double) {
    if (code != kReadPower) switches_.LowOperates = code == kOperate;
    if (code != kReadPower) return Switch(world_, switches_);
    const Watts watts = PowerOf(world_, Amplifier::IfiLow);
    heard.Answer = FourDigits(watts.Reflected) + " " + FourDigits(watts.Forward);
  });
  return heard;
}

VirtualIfiHigh::VirtualIfiHigh(RfWorld& world, IfiSwitches& switches)
    : VirtualInstrument(BenchRole::IfiHigh, kCrLf, false), world_(world), switches_(switches) {
  commands_.AddText("FA", kAttenuate);
  commands_.AddText("ZA", kThrough);
  commands_.AddText("L3", kMode);
  commands_.AddText("M1", kMode);
  commands_.AddText("ON", kOperate);
  commands_.AddText("B1", kBand1);
  commands_.AddText("B2", kBand2);
  commands_.AddText("RP", kReadPower);
}

Heard VirtualIfiHigh::Listen(std::string_view command) {
  Heard heard;
  heard.Understood = commands_.ForEach(command, [&](int code, double) {
    switch (code) {
      case kAttenuate:
        switches_.FullAttenuation = true;
        break;
      case kThrough:
        switches_.FullAttenuation = false;
        break;
      case kOperate:
        switches_.HighOperates = true;
        break;
      case kBand1:
        switches_.Band = 1;
        break;
      case kBand2:
        switches_.Band = 2;
        break;
      case kReadPower: {
        const Watts watts = PowerOf(world_, Amplifier::IfiHigh);
        heard.Answer = TwoDecimals(watts.Forward) + " " + TwoDecimals(watts.Reflected);
        return;
      }
      default:
        return;
    }
    Switch(world_, switches_);
  });
  return heard;
}

}  // namespace hylden
