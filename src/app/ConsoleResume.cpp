#include "app/ConsoleResume.h"

#include <algorithm>
#include <utility>

#include "app/ConsoleStation.h"

namespace hylden {

namespace {

/// What keeps the rows of a journal from being continued; nothing where they can be.
std::optional<std::string> ObstacleTo(JournalKind kind, const Result<Recovery>& recovery) {
  if (!recovery) return recovery.error().Boxes().front().text;
  if (recovery->Head.Kind != kind) return "It is the journal of another kind of run";
  return Obstacle(*recovery);
}

}  // namespace

std::optional<ResumedJournal> TakeJournal(ConsoleStation& station, JournalKind kind) {
  const std::string& name = station.Options().Resume;
  JournalFolder& folder = station.Journals();
  std::vector<AbandonedJournal> journals = folder.Abandoned();
  const auto found =
      std::find_if(journals.begin(), journals.end(), [&](const auto& journal) { return journal.Name == name; });
  if (found == journals.end()) {
    station.Tell("No such journal waits in " + folder.Folder() + ": " + name);
    return std::nullopt;
  }
  auto recovery = RecoveryOf(found->Bytes);
  if (const auto obstacle = ObstacleTo(kind, recovery)) {
    station.Tell(found->File->Path() + ": " + *obstacle);
    return std::nullopt;
  }
  return ResumedJournal{std::move(*recovery), folder.GoOn(std::move(*found))};
}

}  // namespace hylden
