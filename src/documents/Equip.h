#pragma once

#include <optional>
#include <string>

#include "documents/EquipRecord.h"
#include "documents/FilesBeside.h"
#include "shell/Failure.h"

namespace hylden {

class Shell;
struct Instruments;

/// The station's equipment configuration and its file.
class Equip {
 public:
  /// @param instruments  only looked at: what they have loaded
  Equip(Shell& shell, const Instruments& instruments) : shell_(shell), instruments_(instruments) {}

  /// One that fails leaves the record as it was: half a station drives nothing. Files named without a directory are
  /// also looked for beside the equipment file.
  Done LoadDef(const std::string& path);
  Done SaveDef(const std::string& path);

  /// Whether the instruments that a run needs have their definitions: the generator always, the others as asked for.
  /// @return the first one whose file could not be loaded
  std::optional<StartFailure> CheckDefinitions(bool meter, bool powerMeter) const;
  /// The form's entries as the record has them: what a freshly opened form would show.
  FormEntries Entries() const { return EntriesOf(Record); }
  /// Checks the entries in the form's order and takes them into the record, up to the first failure.
  std::optional<EntryFailure> TakeEntries(const FormEntries& entries);

  EquipRecord Record;
  /// What was loaded or saved last.
  EquipRecord Saved;
  /// The current equipment file, as forms show it; empty when there is none.
  std::string EquipFileName;

 private:
  Shell& shell_;
  const Instruments& instruments_;
  FilesBeside files_;
};

}  // namespace hylden
