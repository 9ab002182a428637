#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace hylden {

/// A power meter's definition (.pm). Frequencies in MHz, settling time in seconds.
struct PowerMeterDefinition {
  std::string InstrumentName;
  std::int16_t Address = 0;
  std::string InitString;
  std::string FreqSetPrefix, FreqSetSuffix;
  std::string SelectCh1, SelectCh2;
  std::string Ch1Read, Ch2Read;
  std::string Ch1Trigger, Ch2Trigger;
  double Bandswitch = 0;
  std::string Shutdown;
  std::int32_t Units = 0;  ///< a Conversions::PowerUnits code
  std::int32_t Type = 0;   ///< 0 SpecAn, 1 PowerMeter: stored, shown and printed only
  double MaximumFreq = 0, MinimumFreq = 0;
  float SettlingTime = 0;
  std::int32_t EndOfString = 0;
  std::string ParsingCmd;
};

constexpr std::string_view FileKind(const PowerMeterDefinition&) {
  return "power meter definition";
}

template <class F>
void Fields(F& f, PowerMeterDefinition& d) {
  f.Text(d.InstrumentName);
  f.Int16(d.Address);
  f.Text(d.InitString);
  f.Text(d.FreqSetPrefix);
  f.Text(d.FreqSetSuffix);
  f.Text(d.SelectCh1);
  f.Text(d.SelectCh2);
  f.Text(d.Ch1Read);
  f.Text(d.Ch2Read);
  f.Text(d.Ch1Trigger);
  f.Text(d.Ch2Trigger);
  f.Double(d.Bandswitch);
  f.Text(d.Shutdown);
  f.Int32(d.Units);
  f.Int32(d.Type);
  f.Double(d.MaximumFreq);
  f.Double(d.MinimumFreq);
  f.Single(d.SettlingTime);
  f.Int32(d.EndOfString);
  f.OptionalText(d.ParsingCmd);  // files of 19 lines are older and stay readable
}

}  // namespace hylden
