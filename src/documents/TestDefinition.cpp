#include "documents/TestDefinition.h"

#include <cmath>

#include "text/Numbers.h"

namespace hylden {
namespace {

constexpr auto kNoSteps = static_cast<StepType>(-1);

/// The limits of a calibration's range text; nothing when it holds no range.
std::optional<CalibratedRange> RangeOf(std::string_view range) {
  // A small frequency may be written with an exponent, whose minus is none of a range.
  std::size_t separator = range.find(" - "), length = 3;
  if (separator == std::string_view::npos) separator = range.find('-'), length = 1;
  if (separator == std::string_view::npos) return std::nullopt;
  const std::string_view first = range.substr(0, separator), second = range.substr(separator + length);
  if (first.find_first_of("0123456789") == std::string_view::npos) return std::nullopt;
  if (range.find(',') != std::string_view::npos) return std::nullopt;  // somebody's decimal sign
  const CalibratedRange limits{LeadingNumber(first), LeadingNumber(second)};
  if (limits.highest <= 0 || limits.highest < limits.lowest) return std::nullopt;
  return limits;
}

std::string LimitNotice(const char* which, double typed, const char* than, double limit) {
  return std::string(which) + " frequency specified, " + ShortestText(typed) + " MHz, is " + than +
         " frequency in the cal file, " + ShortestText(limit) +
         " MHz. \r\nTesting will not happen outside the cal file limits.";
}

void CalibrationFields(FormWalker& f, TestDefinition& t, const std::optional<CalibratedRange>& range) {
  std::string calFile = t.CalInfoFile;
  f.Text("lblCalFileName", calFile);
  // A new definition names none, and then there is no info to be checked against either.
  f.Require("lblCalFileName", !calFile.empty(), "No calibration setup file specified!");
  f.Require("lblCalFileName", range.has_value(),
            "No start/stop frequencies in calibration file.\r\nTry checking calibration file data.");
  if (f.Takes()) t.CalInfoFile = calFile;
}

void RangeFields(FormWalker& f, TestDefinition& t, const CalibratedRange& range) {
  f.Number("txtStartFreq", t.StartFreq);
  f.Range("txtStartFreq", t.StartFreq, Above(0).In("MHz"));
  if (t.StartFreq < range.lowest)
    f.Replace("txtStartFreq", t.StartFreq, range.lowest,
              LimitNotice("Start", t.StartFreq, "less than the\r\nlowest", range.lowest));
  f.Number("txtStopFreq", t.StopFreq);
  f.Range("txtStopFreq", t.StopFreq, Above(t.StartFreq).In("MHz"));
  if (t.StopFreq > range.highest)
    f.Replace("txtStopFreq", t.StopFreq, range.highest,
              LimitNotice("Stop", t.StopFreq, "greater than the\r\nhighest", range.highest));
  // A start beyond the record leaves no range at all.
  f.Range("txtStartFreq", t.StartFreq, Below(t.StopFreq).In("MHz"));
}

void FrequencyFields(FormWalker& f, TestDefinition& t) {
  bool sweep = t.FreqSweep, list = t.FreqList;
  auto steps = t.StepType;
  f.Tick("chkFreqSweep", sweep);
  f.Tick("chkFreqList", list);
  f.Choice({"optLinStep", "optLogStep"}, steps, kNoSteps);
  f.Require("fraSweep", sweep || list,
            "Either a swept frequency test or \r\na discrete frequency test must be specified");
  f.Number("txtLinearStep", t.LinearStep);
  f.Number("txtLogStep", t.LogStep);
  f.Number("txtSweepDwell", t.SweepDwell);
  if (f.Takes()) t.FreqSweep = sweep;
  if (f.Takes() && sweep && steps != kNoSteps) t.StepType = steps;
  f.Range("txtLinearStep", t.LinearStep, Above(0).In("MHz"), sweep && steps == StepType::Linear);
  f.Range("txtLogStep", t.LogStep, Above(0).In("%"), sweep && steps == StepType::Log);
  f.Range("txtSweepDwell", t.SweepDwell, AtLeast(0).In("s"), sweep);

  f.Number("txtDiscreteDwell", t.DiscreteDwell);
  f.Text("lblListFile", t.ListFile);
  if (f.Takes()) t.FreqList = list;
  f.Range("txtDiscreteDwell", t.DiscreteDwell, AtLeast(0).In("s"), list);
  f.Require("lblListFile", !list || !t.ListFile.empty(), "No frequency list file specified");
}

void ModulationFields(FormWalker& f, TestDefinition& t) {
  f.Number("txtAmDepth", t.AmDepth);
  f.Number("txtAmModFreq", t.AmModFreq);
  f.Number("txtFmDev", t.FmDev);
  f.Number("txtFmModFreq", t.FmModFreq);
  f.Number("txtPulseWidth", t.PulseWidth);
  f.Number("txtPulsePeriod", t.PulsePeriod);
  f.Choice({"optNoMod", "optAMMod", "optFMMod", "optPulseMod"}, t.ModType, Modulation::None);
  f.Uses(!t.Modulates(Modulation::None), {"chkModOffBetweenFreqs"});
  if (f.Uses(t.Modulates(Modulation::Am), {"chkConstPeak", "txtAmDepth", "txtAmModFreq"})) {
    f.Range("txtAmDepth", double{t.AmDepth}, Above(0).And(AtMost(100)).In("%"));
    f.Range("txtAmModFreq", double{t.AmModFreq}, Above(0).In("kHz"));
  }
  if (f.Uses(t.Modulates(Modulation::Fm), {"txtFmDev", "txtFmModFreq"})) {
    f.Range("txtFmDev", double{t.FmDev}, Above(0).In("kHz"));
    f.Range("txtFmModFreq", double{t.FmModFreq}, Above(0).In("kHz"));
  }
  if (f.Uses(t.Modulates(Modulation::Pulse), {"txtPulsePeriod", "txtPulseWidth"})) {
    f.Range("txtPulsePeriod", double{t.PulsePeriod}, Above(0).In("ms"));
    f.Range("txtPulseWidth", double{t.PulseWidth}, Above(0).In("ms"));
  }
  f.Tick("chkConstPeak", t.ConstPeak);
  f.Tick("chkModOffBetweenFreqs", t.ModOffBetweenFreqs);
  if (f.Takes()) t.ConstPeak = t.ConstPeak && t.ModOffBetweenFreqs;
  f.Uses(t.Modulates(Modulation::Am) && t.ModOffBetweenFreqs, {"chkUseAMdepth"});
  f.Tick("chkUseAMdepth", t.UseAMdepth);
}

void LevelFields(FormWalker& f, TestDefinition& t) {
  bool closedLoop = t.LevelingMode == LevelingMode::ClosedLoop;
  f.Tick("optRealTimeLevel", closedLoop);
  if (f.Takes()) t.LevelingMode = closedLoop ? LevelingMode::ClosedLoop : LevelingMode::Substitution;
  f.Number("txtInitLevOffset", t.InitLevOffset);
  if (f.Takes() && t.InitLevOffset > 0) t.InitLevOffset = -t.InitLevOffset;
  f.Number("txtLevelInc", t.LevelInc);
  if (f.Takes()) t.LevelInc = std::abs(t.LevelInc);
  f.Range("txtLevelInc", double{t.LevelInc}, Above(0).In("dB"), t.InitLevOffset < 0);
  f.Number("txtExtrapolateTo", t.ExtrapolateTo);
  f.Tick("chkExtrapolate", t.Extrapolate);
  f.Range("txtExtrapolateTo", t.ExtrapolateTo, Below(0).In("dB"), t.Extrapolate);
  f.Number("txtInterDwell", t.InterDwell);
  f.Range("txtInterDwell", double{t.InterDwell}, AtLeast(0).In("s"));
  f.Choice({"optSigGenLevel", "optUseFwdPwr", "optNetPwrLev"}, t.LevelingMethod, LevelingMethod::SigGen);
  f.Require("chkModOffBetweenFreqs", !t.Modulates(Modulation::Pulse) || t.ModOffBetweenFreqs || !t.LevelsByPower(),
            "The power meter reads the mean of a pulsed signal, which is below its pulses.\r\n"
            "To level by power, pulse modulation has to be off between frequencies.");
}

void ProbeFields(FormWalker& f, TestDefinition& t) {
  f.Tick("chkMonitorProbe", t.MonitorProbe);
  if (f.Uses(t.MonitorProbe, {"chkLimitCurrent", "txtEUTCircuitImpedance", "lblImpedanceUnit"})) {
    f.Number("txtEUTCircuitImpedance", t.EUTCircuitImpedance);
    f.Range("txtEUTCircuitImpedance", double{t.EUTCircuitImpedance}, AtLeast(0).In("ohm"));
  }
  f.Tick("chkLimitCurrent", t.LimitCurrent);
  f.Uses(t.MonitorProbe && t.LimitCurrent, {"txtLimitMargin", "lblLimitMargin2"});
  f.Number("txtLimitMargin", t.LimitMargin);
  if (f.Takes()) t.Spare1 = t.Spare2 = t.Spare3 = t.Spare4 = t.Spare5 = "";
}

}  // namespace

void FormFields(FormWalker& f, TestDefinition& t, const std::optional<CalibratedRange>& range) {
  CalibrationFields(f, t, range);
  RangeFields(f, t, range.value_or(CalibratedRange()));
  FrequencyFields(f, t);
  ModulationFields(f, t);
  LevelFields(f, t);
  ProbeFields(f, t);
}

TestValidation ValidateTestDefinition(FormEntries& entries, const std::string& calFreqRange, TestDefinition& test) {
  EntryTaker taker(entries);
  FormFields(taker, test, RangeOf(calFreqRange));
  AddRange(taker.Failure, test);
  entries = std::move(taker.Entries);
  return {std::move(taker.Failure), std::move(taker.Notices)};
}

std::optional<EntryFailure> TakeTyped(const FormEntries& entries, const std::string& calFreqRange,
                                      TestDefinition& test) {
  EntryTaker taker(entries, EntryTaker::Refuses::Text);
  FormFields(taker, test, RangeOf(calFreqRange));
  return std::move(taker.Failure);
}

void ConstPeakClicked(FormEntries& entries) {
  if (entries.IsTicked("chkConstPeak")) entries.Tick("chkModOffBetweenFreqs");
}

void ModOffBetweenFreqsClicked(FormEntries& entries) {
  if (!entries.IsTicked("chkModOffBetweenFreqs")) entries.Tick("chkConstPeak", false);
}

}  // namespace hylden
