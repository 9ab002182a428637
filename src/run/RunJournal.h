#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/Journals.h"
#include "run/JournalFile.h"

namespace hylden {

class RunDisplay;
class Shell;
class UnsavedRows;

/// The journal of one run: its rows on the disk as they are recorded, for the next start of the program should this one
/// not come to save them. It goes when they are in a file or not wanted; what nobody has been asked about stays. The
/// run never waits for it.
class RunJournal {
 public:
  /// @param rows  of the run; must live as long, together with what it asks
  RunJournal(Shell& shell, UnsavedRows& rows);
  /// Leaves the journal behind when there are unsaved rows.
  ~RunJournal();
  RunJournal(const RunJournal&) = delete;
  RunJournal& operator=(const RunJournal&) = delete;

  /// A new run records, and the journal of the one before is not needed any more. Its file comes with the first row.
  /// @param head  without program, time and notice
  void Begin(JournalHead head);
  /// A run continues one that ended early, and that one's journal with this row.
  void Continue(std::unique_ptr<JournalWriter> file, int row);
  bool IsOn() const { return on_; }
  /// A row is complete, or has changed since: the last word about a number counts.
  void Row(int number, std::string_view values);
  void Remove();
  /// Every step has its row: nothing is left to be continued.
  void Complete() { complete_ = true; }
  /// Tells, once for a run, that its journal could not be written: in the run log, and on the display.
  void TellTrouble(RunDisplay& display);

 private:
  void Settle();
  std::string FileName() const;

  Shell& shell_;
  UnsavedRows& rows_;
  JournalHead head_;
  std::unique_ptr<JournalWriter> file_;
  bool on_ = false, complete_ = false;
};

}  // namespace hylden
