#pragma once

#include <optional>
#include <string>

#include "documents/CalInfo.h"
#include "documents/Equip.h"
#include "documents/TestDefinition.h"

namespace hylden {

class Shell;

/// Whether the station has what the test needs; the first thing missing, in checking order.
std::optional<StartFailure> CheckStart(const TestDefinition& test, const EquipRecord& equipment);
/// The same, and whether the definitions of the instruments could be loaded.
std::optional<StartFailure> CheckStart(const TestDefinition& test, const Equip& equipment);

/// The test definition, its file, and its printed summary.
class TestSetup {
 public:
  TestSetup(Shell& shell, const CalInfo& calInfo) : shell_(shell), calInfo_(calInfo) {}

  /// Files named without a directory are also looked for beside the definition; one that fails leaves it as it was.
  Done LoadDef(const std::string& path);
  /// Begins a new definition with what a template holds; the calibration stays where the template names none.
  Done NewFrom(const std::string& path);
  Done SaveDef(const std::string& path);
  /// The "Test Run Parameters" summary of the prepared run, lines ended by CR LF.
  std::string StringPrintTestSetup() const;
  /// Prints the summary of a definition that need not be the record.
  Done PrintTestSetup(const TestDefinition& test);
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
