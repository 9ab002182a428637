#pragma once

#include <optional>
#include <string>
#include <vector>

#include "documents/CalInfo.h"
#include "documents/Equip.h"
#include "documents/TestDefinition.h"
#include "shell/FormFields.h"

namespace hylden {

class Shell;

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

/// After a click on chkConstPeak: a constant peak needs modulation off between frequencies.
void ConstPeakClicked(FormEntries& entries);
/// After a click on chkModOffBetweenFreqs: without it there is no constant peak.
void ModOffBetweenFreqsClicked(FormEntries& entries);

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
