#include "instruments/DefinitionFields.h"

#include <string_view>

#include "instruments/Gpib.h"
#include "measure/Conversions.h"
#include "text/Numbers.h"
#include "text/Pattern.h"
#include "text/RecordFile.h"
#include "text/RuntimeError.h"

namespace hylden {
namespace {

constexpr double kMostSingle = std::numeric_limits<float>::max();
constexpr const char* kMaxLevel = "txtMaxLev";
constexpr const char* kMinLevel = "txtMinLev";

/// A text as the file keeps it, whatever was pasted into the box.
void Line(FormWalker& f, const char* box, std::string& field) {
  f.Text(box, field);
  if (f.Takes()) field = OneLine(field);
}

/// The same that goes out on the bus.
void Command(FormWalker& f, const char* box, std::string& field) {
  Line(f, box, field);
  f.Require(box, Gpib::Carries(field), "The bus can't carry every character of this text, re-enter");
}

void Address(FormWalker& f, std::int16_t& address) {
  f.Number("txtAddress", address, WholeWithin(0, 30));
}

void EndOfString(FormWalker& f, std::int32_t& code) {
  f.Choice({"optEOSnone", "optEOScr", "optEOScrlf"}, code);
}

void Frequencies(FormWalker& f, double& maximum, double& minimum) {
  f.Number("txtMaxFreq", maximum, AtLeast(0).In("MHz"));
  f.Number("txtMinFreq", minimum, AtLeast(0).In("MHz"));
  f.Range("txtMinFreq", minimum, AtMost(maximum).In("MHz"));
}

bool IsVoltage(std::int32_t units) {
  return Conversions::IsLinear(static_cast<Conversions::MeterUnits>(units));
}

std::string_view LevelPattern(std::int32_t units) {
  using Conversions::MeterUnits;
  if (units == static_cast<std::int32_t>(MeterUnits::Volts)) return "##0.0###";
  return units == static_cast<std::int32_t>(MeterUnits::Millivolts) ? "##0.0##" : "##0.0#";
}

/// As the box shows it; a level that the units can't express stays in dBuV.
double Shown(float dbuv, std::int32_t units) {
  const double level = ToDouble(ShortestText(dbuv));
  try {
    return ToDouble(Format(Conversions::DbuvToMeterUnits(units, level).value_or(level), LevelPattern(units)));
  } catch (const RuntimeError&) {
    return level;
  }
}

void Level(FormWalker& f, const char* box, float& dbuv, std::int32_t units) {
  const double before = Shown(dbuv, units);
  double shown = before;
  f.Number(box, shown, {.Lowest = IsVoltage(units) ? 0 : -kMostSingle, .Highest = kMostSingle}, LevelPattern(units));
  // What was not typed is not converted: the box shows fewer digits than are kept.
  if (f.Takes() && shown != before)
    dbuv = static_cast<float>(Conversions::MeterReadingToDbuv(units, shown).value_or(shown));
}

}  // namespace

void FormFields(FormWalker& f, SigGenDefinition& d) {
  Line(f, "txtName", d.InstrumentName);
  Address(f, d.Address);
  Command(f, "txtInit", d.InitString);
  EndOfString(f, d.EndOfString);
  Command(f, "txtFreqSetPre", d.FreqSetPrefix);
  Command(f, "txtFreqSetSuf", d.FreqSetSuffix);
  Frequencies(f, d.MaximumFreq, d.MinimumFreq);
  Command(f, "txtLevelSetPre", d.LevSetPrefix);
  Command(f, "txtLevelSetSuf", d.LevSetSuffix);
  f.Number(kMaxLevel, d.MaximumLevel);
  f.Number(kMinLevel, d.MinimumLevel);
  f.Range(kMinLevel, double{d.MinimumLevel}, AtMost(double{d.MaximumLevel}).In("dBm"));
  Command(f, "txtRfOff", d.RfOff);
  Command(f, "txtRfOn", d.RfOn);
  Command(f, "txtModOff", d.ModulationOff);
  f.Tick("chkAmCapable", d.AmCapable);
  Command(f, "txtAmModFreqPre", d.AmFreqPrefix);
  Command(f, "txtAmModFreqSuf", d.AmFreqSuffix);
  Command(f, "txtAmModDepthPre", d.AmDepthPrefix);
  Command(f, "txtAmModDepthSuf", d.AmDepthSuffix);
  Command(f, "txtAmModOn", d.AmModOn);
  f.Tick("chkFmCapable", d.FmCapable);
  Command(f, "txtFmModFreqPre", d.FmFreqPrefix);
  Command(f, "txtFmModFreqSuf", d.FmFreqSuffix);
  Command(f, "txtFmModDevPre", d.FmDevPrefix);
  Command(f, "txtFmModDevSuf", d.FmDevSuffix);
  Command(f, "txtFmModOn", d.FmModOn);
  f.Tick("chkPulseCapable", d.PulseCapable);
  Command(f, "txtPulseModFreqPre", d.PulseFreqPrefix);
  Command(f, "txtPulseModFreqSuf", d.PulseFreqSuffix);
  Command(f, "txtPulseModWidthPre", d.PulseWidthPrefix);
  Command(f, "txtPulseModWidthSuf", d.PulseWidthSuffix);
  Command(f, "txtPulseModOn", d.PulseModOn);
}

void FormFields(FormWalker& f, MeterDefinition& d) {
  Line(f, "txtName", d.InstrumentName);
  Address(f, d.Address);
  Command(f, "txtInit", d.InitString);
  EndOfString(f, d.EndOfString);
  f.Choice({"optTypeSpecAn", "optTypeScope", "optTypeRFMeter"}, d.Type);
  Command(f, "txtFreqSetPre", d.FreqSetPrefix);
  Command(f, "txtFreqSetSuf", d.FreqSetSuffix);
  Frequencies(f, d.MaximumFreq, d.MinimumFreq);
  Command(f, "txtLevSetPre", d.LevSetPrefix);
  Command(f, "txtLevSetSuf", d.LevSetSuffix);
  f.Choice({"optUnitVolts", "optUnitDbuv", "optUnitMv", "optUnitDbmv", "optUnitDbm"}, d.Units);
  Level(f, kMaxLevel, d.MaximumLevel, d.Units);
  Level(f, kMinLevel, d.MinimumLevel, d.Units);
  f.Check(kMinLevel, d.MinimumLevel <= d.MaximumLevel, AtMost(Shown(d.MaximumLevel, d.Units)));
  Command(f, "txtTrigger", d.Trigger);
  f.Number("txtSetTime", d.SettlingTime, AtLeast(0).In("s"));
  Command(f, "txtRead", d.Read);
  Line(f, "txtParse", d.ParseCmd);
  Command(f, "txtClose", d.Shutdown);
}

void FormFields(FormWalker& f, PowerMeterDefinition& d) {
  Line(f, "txtName", d.InstrumentName);
  Address(f, d.Address);
  Command(f, "txtInit", d.InitString);
  EndOfString(f, d.EndOfString);
  f.Choice({"optTypeSpecAn", "optTypePwrMeter"}, d.Type);
  Command(f, "txtFreqSetPre", d.FreqSetPrefix);
  Command(f, "txtFreqSetSuf", d.FreqSetSuffix);
  Frequencies(f, d.MaximumFreq, d.MinimumFreq);
  Command(f, "txtSelectCh1", d.SelectCh1);
  Command(f, "txtSelectCh2", d.SelectCh2);
  Command(f, "txtTrigger1", d.Ch1Trigger);
  Command(f, "txtTrigger2", d.Ch2Trigger);
  Command(f, "txtRead1", d.Ch1Read);
  Command(f, "txtRead2", d.Ch2Read);
  f.Number("txtBandSwitchFreq", d.Bandswitch, AtLeast(0).In("MHz"));
  f.Number("txtSetTime", d.SettlingTime, AtLeast(0).In("s"));
  f.Choice({"optUnitWatts", "optUnitDbm", "optUnitDbuv", "optUnitMv", "optUnitVolts", "optUnitDbmv"}, d.Units);
  Line(f, "txtParseString", d.ParsingCmd);
  Command(f, "txtClose", d.Shutdown);
}

void ChangeUnits(FormEntries& entries, MeterDefinition& record) {
  MeterDefinition chosen = record;
  TakeEntries(entries, chosen, EntryTaker::Refuses::Nothing);
  FormEntries before = entries;
  for (const auto& [control, text] : EntriesShowing(record))
    if (control.starts_with("optUnit")) before[control] = text;
  MeterDefinition typed = record;
  TakeEntries(before, typed, EntryTaker::Refuses::Nothing);
  record.MaximumLevel = typed.MaximumLevel;
  record.MinimumLevel = typed.MinimumLevel;
  record.Units = chosen.Units;
  const FormEntries shown = EntriesShowing(record);
  for (const char* const box : {kMaxLevel, kMinLevel})
    if (IsNumeric(entries[box])) entries[box] = shown[box];
}

}  // namespace hylden
