#pragma once

#include <optional>
#include <string>
#include <vector>

#include "documents/CalInfo.h"
#include "documents/Equip.h"
#include "documents/TestDefinition.h"

namespace hylden {

class Shell;

/// What the test definition form holds when it is validated: the texts of its boxes, its ticks and choices.
struct TestDefinitionEntries {
  std::string CalFile;
  std::string StartFreq, StopFreq;
  bool FreqSweep = false;
  bool LinStep = false, LogStepChosen = false;
  std::string LinearStep, LogStep, SweepDwell;
  bool FreqList = false;
  std::string ListFile, DiscreteDwell;
  std::int32_t ModType = 0;
  std::string AmDepth, AmModFreq, FmDev, FmModFreq, PulseWidth, PulsePeriod;
  bool ConstPeak = false, ModOffBetweenFreqs = false, UseAMdepth = false;
  bool RealTimeLevel = false;
  std::string InitLevOffset, LevelInc, InterDwell;
  bool Extrapolate = false;
  std::string ExtrapolateTo;
  std::int32_t LevelingMethod = 0;
  bool MonitorProbe = false, LimitCurrent = false;
  std::string LimitMargin, EUTCircuitImpedance;
};

/// The outcome of a validation: the first failure, if any, and the messages shown on the way (limits taken over from
/// the calibration record).
struct TestValidation {
  std::optional<EntryFailure> Failure;
  std::vector<std::string> Notices;
};

/// Checks the entries in the form's order, storing each field as soon as it has been read, up to the first failure.
/// @param entries       a start or stop frequency outside the calibration record becomes the record's limit
/// @param calFreqRange  the calibration info's range text, "0.15 - 80"
TestValidation ValidateTestDefinition(TestDefinitionEntries& entries, const std::string& calFreqRange,
                                      TestDefinition& test);
/// The entries that show a definition; a code that no option stands for leaves its options unselected.
TestDefinitionEntries EntriesOf(const TestDefinition& test);

/// Which controls of the test definition form can be used, given what is chosen.
struct EnabledControls {
  bool ModOffBetweenFreqs = false;  ///< chkModOffBetweenFreqs
  bool AmControls = false;          ///< chkConstPeak, txtAmDepth, txtAmModFreq
  bool UseAMdepth = false;          ///< chkUseAMdepth
  bool FmControls = false;          ///< txtFmDev, txtFmModFreq
  bool PulseControls = false;       ///< txtPulsePeriod, txtPulseWidth
  bool ProbeControls = false;       ///< chkLimitCurrent, txtEUTCircuitImpedance
  bool LimitMargin = false;         ///< txtLimitMargin and its labels
  bool operator==(const EnabledControls&) const = default;
};
EnabledControls EnabledControlsFor(const TestDefinitionEntries& entries);
/// After a click on chkConstPeak: a constant peak needs modulation off between frequencies.
void ConstPeakClicked(TestDefinitionEntries& entries);
/// After a click on chkModOffBetweenFreqs: without it there is no constant peak.
void ModOffBetweenFreqsClicked(TestDefinitionEntries& entries);

/// Whether the station has what the test needs; the first thing missing, in checking order.
std::optional<StartFailure> CheckStart(const TestDefinition& test, const EquipRecord& equipment);
/// The same, and whether the definitions of the instruments could be loaded.
std::optional<StartFailure> CheckStart(const TestDefinition& test, const Equip& equipment);

/// The test definition, its file, and its printed summary.
class TestSetup {
 public:
  TestSetup(Shell& shell, const CalInfo& calInfo) : shell_(shell), calInfo_(calInfo) {}

  /// Files named without a directory are also looked for beside the definition.
  /// @return false after a report; the definition is then as it was
  bool LoadDef(const std::string& path);
  bool SaveDef(const std::string& path);
  /// The "Test Run Parameters" summary of the prepared run, lines ended by CR LF; empty after a failure.
  std::string StringPrintTestSetup();
  /// Prints the summary of a definition that need not be the record.
  void PrintTestSetup(const TestDefinition& test);
  /// Whether the file last loaded or saved is read-only.
  bool TestFileReadOnly() const;

  /// The definition as the prepared run follows it: without a list that it does not visit.
  TestDefinition AsRun() const;

  TestDefinition Definition;
  /// What was loaded or saved last.
  TestDefinition Saved;
  std::string TestFileName;
  bool ListUnused = false;  ///< the prepared run visits nothing of the definition's list: it holds too few frequencies

 private:
  Shell& shell_;
  const CalInfo& calInfo_;
  FilesBeside files_;
};

}  // namespace hylden
