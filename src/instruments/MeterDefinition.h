#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace hylden {

enum class MeterType : std::int32_t { SpecAn = 0, Scope = 1, RfMeter = 2 };

/// A meter's definition (.mtr). Levels in dBuV, frequencies in MHz, settling time in seconds.
struct MeterDefinition {
  std::string InstrumentName;
  std::int16_t Address = 0;
  std::string InitString;
  std::string FreqSetPrefix, FreqSetSuffix;
  std::string LevSetPrefix, LevSetSuffix;
  std::string Read, Trigger, Shutdown;
  std::int32_t Units = 0;  ///< a Conversions::MeterUnits code
  std::int32_t Type = 0;   ///< a MeterType code
  float MaximumLevel = 0, MinimumLevel = 0;
  double MaximumFreq = 0, MinimumFreq = 0;
  float SettlingTime = 0;
  std::int32_t EndOfString = 0;
  std::string ParseCmd;
};

constexpr std::string_view FileKind(const MeterDefinition&) {
  return "meter definition";
}

template <class F>
void Fields(F& f, MeterDefinition& d) {
  f.Text(d.InstrumentName);
  f.Int16(d.Address);
  f.Text(d.InitString);
  f.Text(d.FreqSetPrefix);
  f.Text(d.FreqSetSuffix);
  f.Text(d.LevSetPrefix);
  f.Text(d.LevSetSuffix);
  f.Text(d.Read);
  f.Text(d.Trigger);
  f.Text(d.Shutdown);
  f.Int32(d.Units);
  f.Int32(d.Type);
  f.Single(d.MaximumLevel);
  f.Single(d.MinimumLevel);
  f.Double(d.MaximumFreq);
  f.Double(d.MinimumFreq);
  f.Single(d.SettlingTime);
  f.Int32(d.EndOfString);
  f.OptionalText(d.ParseCmd);  // files of 18 lines are older and stay readable
}

}  // namespace hylden
