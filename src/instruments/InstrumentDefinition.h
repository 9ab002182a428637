#pragma once

#include <cstdint>
#include <string>

namespace hylden {

/// What the definitions of all instruments have. Frequencies in MHz.
struct InstrumentDefinition {
  std::string InstrumentName;
  std::int16_t Address = 0;
  std::string InitString;
  std::string FreqSetPrefix, FreqSetSuffix;
  double MaximumFreq = 0, MinimumFreq = 0;
  std::int32_t EndOfString = 0;
};

/// What the definitions of those have that answer with a reading. Settling time in seconds.
struct ReadingDefinition : InstrumentDefinition {
  std::string Shutdown;
  std::int32_t Units = 0;  ///< a Conversions::MeterUnits or Conversions::PowerUnits code
  std::int32_t Type = 0;   ///< a MeterType code; of a power meter 0 SpecAn, 1 PowerMeter, which is only kept
  float SettlingTime = 0;
};

// Lines that stand together in every definition.

template <class F>
void HeadFields(F& f, InstrumentDefinition& d) {
  f.Text(d.InstrumentName);
  f.Int16(d.Address);
  f.Text(d.InitString);
  f.Text(d.FreqSetPrefix);
  f.Text(d.FreqSetSuffix);
}

template <class F>
void FreqFields(F& f, InstrumentDefinition& d) {
  f.Double(d.MaximumFreq);
  f.Double(d.MinimumFreq);
}

template <class F>
void UnitFields(F& f, ReadingDefinition& d) {
  f.Text(d.Shutdown);
  f.Int32(d.Units);
  f.Int32(d.Type);
}

template <class F>
void TailFields(F& f, ReadingDefinition& d) {
  FreqFields(f, d);
  f.Single(d.SettlingTime);
  f.Int32(d.EndOfString);
}

}  // namespace hylden
