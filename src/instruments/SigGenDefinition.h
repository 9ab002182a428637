#pragma once

#include <string_view>

#include "instruments/InstrumentDefinition.h"

namespace hylden {

/// A signal generator's definition (.sg): its commands, limits and abilities. Frequencies in MHz, levels in dBm;
/// modulation frequencies and deviation in kHz, depth in percent, pulse width in ms.
struct SigGenDefinition : InstrumentDefinition {
  std::string LevSetPrefix, LevSetSuffix;
  std::string ModulationOff;
  std::string RfOff, RfOn;
  std::string AmFreqPrefix, AmFreqSuffix, AmDepthPrefix, AmDepthSuffix, AmModOn;
  std::string FmFreqPrefix, FmFreqSuffix, FmDevPrefix, FmDevSuffix, FmModOn;
  std::string PulseFreqPrefix, PulseFreqSuffix, PulseWidthPrefix, PulseWidthSuffix, PulseModOn;
  float MaximumLevel = 0, MinimumLevel = 0;
  std::int16_t AmCapable = 0, FmCapable = 0, PulseCapable = 0;
};

constexpr std::string_view FileKind(const SigGenDefinition&) {
  return "signal generator definition";
}

template <class F>
void Fields(F& f, SigGenDefinition& d) {
  HeadFields(f, d);
  f.Text(d.LevSetPrefix);
  f.Text(d.LevSetSuffix);
  f.Text(d.ModulationOff);
  f.Text(d.RfOff);
  f.Text(d.RfOn);
  f.Text(d.AmFreqPrefix);
  f.Text(d.AmFreqSuffix);
  f.Text(d.AmDepthPrefix);
  f.Text(d.AmDepthSuffix);
  f.Text(d.AmModOn);
  f.Text(d.FmFreqPrefix);
  f.Text(d.FmFreqSuffix);
  f.Text(d.FmDevPrefix);
  f.Text(d.FmDevSuffix);
  f.Text(d.FmModOn);
  f.Text(d.PulseFreqPrefix);
  f.Text(d.PulseFreqSuffix);
  f.Text(d.PulseWidthPrefix);
  f.Text(d.PulseWidthSuffix);
  f.Text(d.PulseModOn);
  f.Single(d.MaximumLevel);
  f.Single(d.MinimumLevel);
  FreqFields(f, d);
  f.Int32(d.EndOfString);
  f.Int16(d.AmCapable);
  f.Int16(d.FmCapable);
  f.Int16(d.PulseCapable);
}

}  // namespace hylden
