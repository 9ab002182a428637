#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "shell/Failure.h"

namespace hylden {

class FormWalker;

enum class ListPartKind : int { Linear = 0, Log = 1, Harmonics = 2 };

/// What Add appends to a list: a range in steps, or the harmonics of a fundamental.
struct ListPart {
  ListPartKind Kind = ListPartKind::Harmonics;
  double Start = 0;  ///< MHz; the fundamental of harmonics
  double End = 0;    ///< MHz; none for harmonics
  double Step = 0;   ///< MHz, percent, or the number of harmonics
};

/// A part on its form: frequencies and step are above 0, and the step is wide enough for kMostSweepPoints.
void FormFields(FormWalker& f, ListPart& part);

/// The part's frequencies, MHz: from the start in steps while they are below the end, and the end; the harmonics from
/// the first. Empty when there would be more than kMostSweepPoints.
std::vector<double> FrequenciesOf(const ListPart& part);

/// The frequencies in rising order, of each two neighbours with the same decimal text the first: an odd one of a run
/// stays beside it. A frequency of 0 ends the list before it.
std::vector<double> TidyList(std::vector<double> list);

/// One frequency per line, at most six decimals.
std::vector<std::string> ListLines(const std::vector<double>& list);

/// "3 frequencies, 30.0 to 90.0 MHz".
std::string ListSummary(const std::vector<double>& list);

/// A frequency list that is being composed, with the file that it is in.
class ListBuilder {
 public:
  const std::vector<double>& List() const { return now_.List; }
  /// The file that the list came from or was saved to; empty while it has changes that are in none.
  const std::string& File() const { return now_.File; }
  bool IsUnsaved() const { return now_.Unsaved; }
  /// The list is exactly the file that it was opened with.
  bool IsUnchanged() const { return now_.Unchanged; }

  /// Begins with what was read of a file.
  void Open(std::vector<double> list, const std::string& file);
  void Add(const ListPart& part) { Append(FrequenciesOf(part)); }
  /// Puts a file's frequencies to the list; the first ones are the file.
  void AddFile(const std::vector<double>& list, const std::string& file);
  void Clear();
  /// Takes lines out; the first is 0.
  void Remove(std::size_t first, std::size_t count);
  bool CanUndo() const { return !before_.empty(); }
  /// Takes back the last change; the last 20 are kept. @return the first line that has changed
  std::size_t Undo();
  /// The list is in this file now; nothing is changed when it can't be written.
  Done Save(const std::string& file);
  /// The caller is to go on with what it had.
  void LetFileGo() { now_.File.clear(); }

 private:
  struct State {
    std::vector<double> List;
    std::string File;
    bool Unsaved = false, Unchanged = false;
  };

  void Append(const std::vector<double>& more);
  void Change(std::vector<double> list);

  State now_;
  std::deque<State> before_;
};

}  // namespace hylden
