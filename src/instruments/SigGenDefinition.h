#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace hylden {

/// A signal generator's definition (.sg): its commands, limits and abilities. Frequencies in MHz, levels in dBm;
/// modulation frequencies and deviation in kHz, depth in percent, pulse width in ms.
struct SigGenDefinition {
  std::string InstrumentName;
  std::int16_t Address = 0;
  std::string InitString;
  std::string FreqSetPrefix, FreqSetSuffix;
  std::string LevSetPrefix, LevSetSuffix;
  std::string ModulationOff;
  std::string RfOff, RfOn;
  std::string AmFreqPrefix, AmFreqSuffix, AmDepthPrefix, AmDepthSuffix, AmModOn;
  std::string FmFreqPrefix, FmFreqSuffix, FmDevPrefix, FmDevSuffix, FmModOn;
  std::string PulseFreqPrefix, PulseFreqSuffix, PulseWidthPrefix, PulseWidthSuffix, PulseModOn;
  float MaximumLevel = 0, MinimumLevel = 0;
  double MaximumFreq = 0, MinimumFreq = 0;
  std::int32_t EndOfString = 0;
  std::int16_t AmCapable = 0, FmCapable = 0, PulseCapable = 0;
};

constexpr std::string_view FileKind(const SigGenDefinition&) {
  return "signal generator definition";
}

template <class F>
void Fields(F& f, SigGenDefinition& d) {
  f.Text(d.InstrumentName);
  f.Int16(d.Address);
  f.Text(d.InitString);
  f.Text(d.FreqSetPrefix);
  f.Text(d.FreqSetSuffix);
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
  f.Double(d.MaximumFreq);
  f.Double(d.MinimumFreq);
  f.Int32(d.EndOfString);
  f.Int16(d.AmCapable);
  f.Int16(d.FmCapable);
  f.Int16(d.PulseCapable);
}

}  // namespace hylden
