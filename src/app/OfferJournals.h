#pragma once

#include <optional>

#include "app/Recovery.h"

namespace hylden {

class JournalFolder;
class Shell;

/// Offers the operator, one after the other, what programs that are gone have left in their journals. A journal is
/// removed when its rows are saved or twice declined; one that can't be read is told and left alone. A test or a level
/// calibration that did not come to its end can be continued, one of them at a start.
/// @return the one that is to be continued
std::optional<ResumedJournal> OfferJournals(Shell& shell, JournalFolder& folder);

}  // namespace hylden
