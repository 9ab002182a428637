#include "bench/VirtualSigGen.h"

#include <utility>

namespace hylden {
namespace {

enum Code : int {
  kInit,
  kRfOff,
  kRfOn,
  kFreq,
  kLevel,
  kModOff,
  kAmOn,
  kFmOn,
  kPulseOn,
  kAmFreq,
  kAmDepth,
  kFmFreq,
  kFmDeviation,
  kPulseFreq,
  kPulseWidth,
};

}  // namespace

VirtualSigGen::VirtualSigGen(RfWorld& world, const SigGenDefinition& d)
    : VirtualInstrument(BenchRole::SigGen, d.EndOfString), world_(world), definition_(d) {
  commands_.AddText(d.InitString, kInit);
  commands_.AddText(d.RfOff, kRfOff);
  commands_.AddText(d.RfOn, kRfOn);
  commands_.AddValue(d.FreqSetPrefix, d.FreqSetSuffix, kFreq);
  commands_.AddValue(d.LevSetPrefix, d.LevSetSuffix, kLevel);
  commands_.AddText(d.ModulationOff, kModOff);
  commands_.AddText(d.AmModOn, kAmOn);
  commands_.AddText(d.FmModOn, kFmOn);
  commands_.AddText(d.PulseModOn, kPulseOn);
  commands_.AddValue(d.AmFreqPrefix, d.AmFreqSuffix, kAmFreq);
  commands_.AddValue(d.AmDepthPrefix, d.AmDepthSuffix, kAmDepth);
  commands_.AddValue(d.FmFreqPrefix, d.FmFreqSuffix, kFmFreq);
  commands_.AddValue(d.FmDevPrefix, d.FmDevSuffix, kFmDeviation);
  commands_.AddValue(d.PulseFreqPrefix, d.PulseFreqSuffix, kPulseFreq);
  commands_.AddValue(d.PulseWidthPrefix, d.PulseWidthSuffix, kPulseWidth);
  state_.RfOn = d.RfOn.empty();
  state_.LevelDbm = static_cast<double>(d.MinimumLevel);
  state_.FreqMHz = d.MinimumFreq;
  Drive();
}

Heard VirtualSigGen::Listen(std::string_view command) {
  const bool understood = commands_.ForEach(command, [this](int code, double value) { Apply(code, value); });
  if (understood) Drive();
  return {.Understood = understood};
}

void VirtualSigGen::Apply(int code, double value) {
  const auto choose = [this](BenchModulation kind, double& setting, double newValue) {
    chosen_ = kind;
    setting = newValue;
  };
  switch (code) {
    case kRfOff:
      state_.RfOn = false;
      break;
    case kRfOn:
      state_.RfOn = true;
      break;
    case kFreq:
      if (value >= definition_.MinimumFreq && value <= definition_.MaximumFreq) state_.FreqMHz = value;
      break;
    case kLevel:
      if (value >= static_cast<double>(definition_.MinimumLevel) &&
          value <= static_cast<double>(definition_.MaximumLevel))
        state_.LevelDbm = value;
      break;
    case kModOff:
      modulation_ = BenchModulation::None;
      break;
    case kAmOn:
      SwitchOn(BenchModulation::Am);
      break;
    case kFmOn:
      SwitchOn(BenchModulation::Fm);
      break;
    case kPulseOn:
      SwitchOn(BenchModulation::Pulse);
      break;
    case kAmFreq:
      choose(BenchModulation::Am, state_.AmFreqKHz, value);
      break;
    case kAmDepth:
      if (value < 0 || value > 100) break;
      choose(BenchModulation::Am, state_.AmDepthPercent, value);
      if (definition_.AmModOn.empty()) modulation_ = BenchModulation::Am;
      break;
    case kFmFreq:
      choose(BenchModulation::Fm, state_.FmFreqKHz, value);
      break;
    case kFmDeviation:
      choose(BenchModulation::Fm, state_.FmDeviationKHz, value);
      break;
    case kPulseFreq:
      choose(BenchModulation::Pulse, state_.PulseFreqKHz, value);
      break;
    case kPulseWidth:
      choose(BenchModulation::Pulse, state_.PulseWidthMs, value);
      break;
    default:
      break;
  }
}

/// One command may switch on whatever was set up last: then the kinds that share it give way to that one.
void VirtualSigGen::SwitchOn(BenchModulation kind) {
  const auto text = [this](BenchModulation k) -> const std::string& {
    return k == BenchModulation::Am   ? definition_.AmModOn
           : k == BenchModulation::Fm ? definition_.FmModOn
                                      : definition_.PulseModOn;
  };
  const bool shared = chosen_ != BenchModulation::None && text(chosen_) == text(kind);
  modulation_ = shared ? chosen_ : kind;
}

void VirtualSigGen::Drive() {
  state_.Modulation = modulation_;
  world_.SetGenerator(state_);
}

}  // namespace hylden
