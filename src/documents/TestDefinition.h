#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "instruments/SigGen.h"
#include "measure/ReadFreq.h"
#include "shell/FormFields.h"

namespace hylden {

/// Kept and shown only.
enum class LevelingMode : std::int32_t { Substitution = 0, ClosedLoop = 1 };
enum class LevelingMethod : std::int32_t { SigGen = 0, ForwardPower = 1, NetPower = 2 };

/// How a conducted immunity test is run (.tst). Frequencies and frequency steps in MHz, dwells in seconds, modulation
/// frequencies and deviation in kHz, pulse times in ms, levels in dB, the impedance in ohms.
struct TestDefinition {
  std::string CalInfoFile;
  double StartFreq = 0, StopFreq = 0;
  bool FreqSweep = false;
  hylden::StepType StepType = hylden::StepType::Linear;
  double LinearStep = 0;
  double LogStep = 0;  ///< percent
  double SweepDwell = 0;
  bool FreqList = false;
  std::string ListFile;
  double DiscreteDwell = 0;
  Modulation ModType = Modulation::None;
  float AmDepth = 0;  ///< percent
  float AmModFreq = 0;
  float FmDev = 0, FmModFreq = 0;
  float PulseWidth = 0, PulsePeriod = 0;
  bool ConstPeak = false;
  hylden::LevelingMode LevelingMode = hylden::LevelingMode::Substitution;
  float InitLevOffset = 0;
  float LevelInc = 0;
  float InterDwell = 0;
  hylden::LevelingMethod LevelingMethod = hylden::LevelingMethod::SigGen;
  bool Extrapolate = false;
  double ExtrapolateTo = 0;
  bool MonitorProbe = false;
  bool LimitCurrent = false;
  float LimitMargin = 0;
  float EUTCircuitImpedance = 0;
  bool ModOffBetweenFreqs = false;
  bool UseAMdepth = false;
  std::string Spare1, Spare2, Spare3, Spare4, Spare5;

  bool Modulates(Modulation modulation) const { return ModType == modulation; }
  bool LevelsBy(hylden::LevelingMethod method) const { return LevelingMethod == method; }
  /// Forward or net power holds the level; an unknown code levels by the generator.
  bool LevelsByPower() const {
    return LevelsBy(hylden::LevelingMethod::ForwardPower) || LevelsBy(hylden::LevelingMethod::NetPower);
  }
};

constexpr std::string_view FileKind(const TestDefinition&) {
  return "test definition";
}

template <class F>
void Fields(F& f, TestDefinition& t) {
  f.Text(t.CalInfoFile);
  f.Double(t.StartFreq);
  f.Double(t.StopFreq);
  f.Flag(t.FreqSweep);
  f.Code(t.StepType);
  f.Double(t.LinearStep);
  f.Double(t.LogStep);
  f.Double(t.SweepDwell);
  f.Flag(t.FreqList);
  f.Text(t.ListFile);
  f.Double(t.DiscreteDwell);
  f.Code(t.ModType);
  f.Single(t.AmDepth);
  f.Single(t.AmModFreq);
  f.Single(t.FmDev);
  f.Single(t.FmModFreq);
  f.Single(t.PulseWidth);
  f.Single(t.PulsePeriod);
  f.Flag(t.ConstPeak);
  f.Code(t.LevelingMode);
  f.Single(t.InitLevOffset);
  f.Single(t.LevelInc);
  f.Single(t.InterDwell);
  f.Code(t.LevelingMethod);
  f.Flag(t.Extrapolate);
  f.Double(t.ExtrapolateTo);
  f.Flag(t.MonitorProbe);
  f.Flag(t.LimitCurrent);
  f.Single(t.LimitMargin);
  f.Single(t.EUTCircuitImpedance);
  f.FlagOrEmpty(t.ModOffBetweenFreqs);
  f.FlagOrEmpty(t.UseAMdepth);
  f.OptionalText(t.Spare1);
  f.OptionalText(t.Spare2);
  f.OptionalText(t.Spare3);
  f.OptionalText(t.Spare4);
  f.OptionalText(t.Spare5);
}

/// The frequencies of a calibration, MHz.
struct CalibratedRange {
  double lowest = -std::numeric_limits<double>::infinity(), highest = std::numeric_limits<double>::infinity();
};

/// The fields of frmTestDef. Numbers are taken whether they are in use or not.
/// @param range  of the calibration; a start or stop frequency outside becomes its limit, with a notice
void FormFields(FormWalker& f, TestDefinition& t, const std::optional<CalibratedRange>& range = {});

/// The outcome of a validation: the first failure, if any, and the messages shown on the way (limits taken over from
/// the calibration record).
struct TestValidation {
  std::optional<EntryFailure> Failure;
  std::vector<std::string> Notices;
};

/// Checks the entries in the form's order, storing each field as soon as it has been read, up to the first failure.
/// @param entries       a start or stop frequency outside the calibration record becomes the record's limit
/// @param calFreqRange  the calibration info's range text, "0.15 - 80"
TestValidation ValidateTestDefinition(FormEntries& entries, const std::string& calFreqRange, TestDefinition& test);

/// Takes entries as they stand, complete or not, with the frequencies that the calibration allows.
/// @return the first entry that is no number
std::optional<EntryFailure> TakeTyped(const FormEntries& entries, const std::string& calFreqRange,
                                      TestDefinition& test);

/// After a click on chkConstPeak: a constant peak needs modulation off between frequencies.
void ConstPeakClicked(FormEntries& entries);
/// After a click on chkModOffBetweenFreqs: without it there is no constant peak.
void ModOffBetweenFreqsClicked(FormEntries& entries);

/// The fields that name other files.
inline std::vector<std::string*> FileFields(TestDefinition& r) {
  return {&r.CalInfoFile, &r.ListFile};
}

}  // namespace hylden
