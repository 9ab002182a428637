#pragma once

#include <optional>
#include <string>

#include "documents/EquipRecord.h"
#include "documents/FilesBeside.h"
#include "shell/FormEntries.h"

namespace hylden {

class Shell;
struct Instruments;

/// A check before a run that failed: the message, and the tab of the equipment form where it is mended.
struct StartFailure {
  std::string Text;
  int EquipmentTab = 0;
};

/// The check that every run with the station's amplifier begins with: its band switch.
std::optional<StartFailure> CheckAmplifier(const EquipRecord& equipment);
/// The entries that show a record.
FormEntries EntriesOf(const EquipRecord& record);
/// Tells of an entry of a loaded station that can't be used: file, entry, value and range.
std::string BadEntryText(const EntryFailure& failure, const EquipRecord& station, const std::string& file);

/// The station's equipment configuration and its file.
class Equip {
 public:
  /// @param instruments  only looked at: what they have loaded
  Equip(Shell& shell, const Instruments& instruments) : shell_(shell), instruments_(instruments) {}

  /// 1 when all fields were read, 0 after a report; the record is then as it was: half a station drives nothing. Files
  /// named without a directory are also looked for beside the equipment file.
  int LoadDef(const std::string& path);
  int SaveDef(const std::string& path);

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
