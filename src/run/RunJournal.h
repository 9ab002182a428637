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
  /// The rows are those of a run that ended early, whose journal this is. It stays as it is until the run goes on.
  void Take(JournalHead head, std::unique_ptr<JournalWriter> file);
  /// The run whose rows these are goes on, and with it its journal.
  /// @return false when that is gone, since they were saved or not wanted: they have to come again
  bool GoOn();
  /// The run goes on with this row.
  void Seam(int row);
  /// Of the run whose rows these are.
  const JournalHead& Head() const { return head_; }
  bool IsOn() const { return on_; }
  /// A row is complete, or has changed since: the last word about a number counts.
  void Row(int number, std::string_view values);
  void Remove();
  /// Every step has its row: nothing is left to be continued.
  void Complete() { complete_ = true; }
  /// Tells, once for a run, that its journal could not be written: in the run log, and on the display. To be called
  /// behind each row, and at the end.
  void TellTrouble(RunDisplay& display);

 private:
  void Settle();
  std::string FileName() const;

  Shell& shell_;
  UnsavedRows& rows_;
  JournalHead head_;
  std::unique_ptr<JournalWriter> file_;
  bool on_ = false, complete_ = false, told_ = false;
};

}  // namespace hylden
