#include "app/ConsoleResume.h"

#include <algorithm>
#include <utility>

#include "app/ConsoleStation.h"

namespace hylden {

namespace {

/// What keeps the rows of a journal from being continued; nothing where they can be.
std::optional<std::string> Obstacle(const Result<Recovery>& recovery, JournalKind kind) {
  if (!recovery) return recovery.error().Boxes().front().text;
  if (recovery->Head.Kind != kind) return "It is the journal of another kind of run";
  if (recovery->Recorded == 0) return "It holds no row";
  if (!recovery->Gapless) return "A row of it is damaged: it can be saved only";
  return std::nullopt;
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
  if (const auto obstacle = Obstacle(recovery, kind)) {
    station.Tell(found->File->Path() + ": " + *obstacle);
    return std::nullopt;
  }
  return ResumedJournal{std::move(*recovery), folder.GoOn(std::move(*found))};
}

}  // namespace hylden
