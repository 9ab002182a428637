#pragma once

#include <memory>
#include <string>

#include "platform/Dialogs.h"
#include "platform/Journals.h"
#include "run/JournalFile.h"

namespace hylden {

/// A run that ended early, as its journal has it, for the run that continues it behind its rows.
template <class Rows>
struct FormerRun {
  JournalHead Head;
  Rows Recorded;  ///< complete, in their order
  /// Its journal, which is continued, too. It stays, as it is, when the run does not come to it.
  std::unique_ptr<JournalWriter> Journal;
};

/// Whether a run may be continued: as the same run on the same station. @return the first difference
Done MayContinue(const JournalHead& then, const JournalHead& now);

/// Asks whether the run to come continues the one before, which ended early, at this step. Yes: it does; No: it begins
/// afresh; Cancel: nothing runs.
MessageAnswer AskToContinue(Dialogs& dialogs, std::size_t step, double frequencyMHz);

/// What the run log says of a run that is continued, and the display of one that waits for it.
std::string ContinuedText(std::size_t step, double frequencyMHz);
std::string ContinuesText(std::size_t step, double frequencyMHz);
/// What the operator is told of a journal that can't be continued.
std::string NotContinuedText(const Failure& why);

inline constexpr const char* kNothingToContinue = "Every step has its row: the journal can be saved only.";
inline constexpr const char* kOtherRows = "The rows of the journal are not those of the planned steps.";

}  // namespace hylden
