#pragma once

namespace hylden {

class JournalFolder;
class Shell;

/// Offers the operator, one after the other, what programs that are gone have left in their journals. A journal is
/// removed when its rows are saved or twice declined; one that can't be read is told and left alone.
void OfferJournals(Shell& shell, const JournalFolder& folder);

}  // namespace hylden
