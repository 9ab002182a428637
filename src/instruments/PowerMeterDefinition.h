#pragma once

#include <string_view>

#include "instruments/InstrumentDefinition.h"

namespace hylden {

/// A power meter's definition (.pm). Frequencies in MHz, settling time in seconds.
struct PowerMeterDefinition : ReadingDefinition {
  std::string SelectCh1, SelectCh2;
  std::string Ch1Read, Ch2Read;
  std::string Ch1Trigger, Ch2Trigger;
  double Bandswitch = 0;
  std::string ParsingCmd;
};

constexpr std::string_view FileKind(const PowerMeterDefinition&) {
  return "power meter definition";
}

template <class F>
void Fields(F& f, PowerMeterDefinition& d) {
  HeadFields(f, d);
  f.Text(d.SelectCh1);
  f.Text(d.SelectCh2);
  f.Text(d.Ch1Read);
  f.Text(d.Ch2Read);
  f.Text(d.Ch1Trigger);
  f.Text(d.Ch2Trigger);
  f.Double(d.Bandswitch);
  UnitFields(f, d);
  TailFields(f, d);
  f.OptionalText(d.ParsingCmd);  // files of 19 lines are older and stay readable
}

}  // namespace hylden
