#pragma once

#include <memory>
#include <optional>

#include "app/Recovery.h"
#include "platform/Journals.h"

namespace hylden {

class ConsoleStation;

/// A journal that is to be continued: what it holds, and where the run goes on with it.
struct ResumedJournal {
  Recovery Former;
  std::unique_ptr<JournalWriter> Journal;
};
/// The journal that "--resume" names, if it is of this kind and without a gap. @return nothing after a message; the
/// journal stays as it was
std::optional<ResumedJournal> TakeJournal(ConsoleStation& station, JournalKind kind);

}  // namespace hylden
