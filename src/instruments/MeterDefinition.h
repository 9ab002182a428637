#pragma once

#include <string_view>

#include "instruments/InstrumentDefinition.h"

namespace hylden {

enum class MeterType : std::int32_t { SpecAn = 0, Scope = 1, RfMeter = 2 };

/// A meter's definition (.mtr). Levels in dBuV, frequencies in MHz, settling time in seconds.
struct MeterDefinition : ReadingDefinition {
  std::string LevSetPrefix, LevSetSuffix;
  std::string Read, Trigger;
  float MaximumLevel = 0, MinimumLevel = 0;
  std::string ParseCmd;
};

constexpr std::string_view FileKind(const MeterDefinition&) {
  return "meter definition";
}

template <class F>
void Fields(F& f, MeterDefinition& d) {
  HeadFields(f, d);
  f.Text(d.LevSetPrefix);
  f.Text(d.LevSetSuffix);
  f.Text(d.Read);
  f.Text(d.Trigger);
  UnitFields(f, d);
  f.Single(d.MaximumLevel);
  f.Single(d.MinimumLevel);
  TailFields(f, d);
  f.OptionalText(d.ParseCmd);  // files of 18 lines are older and stay readable
}

}  // namespace hylden
