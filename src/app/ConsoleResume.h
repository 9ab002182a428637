#pragma once

#include <optional>

#include "app/Recovery.h"

namespace hylden {

class ConsoleStation;

/// The journal that "--resume" names, if it is of this kind and without a gap. @return nothing after a message; the
/// journal stays as it was
std::optional<ResumedJournal> TakeJournal(ConsoleStation& station, JournalKind kind);

}  // namespace hylden
