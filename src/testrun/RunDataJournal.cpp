#include "testrun/RunDataJournal.h"

#include "run/JournalValues.h"

namespace hylden {

namespace {

constexpr std::string_view kStep = "step ", kThreshold = "threshold ";

}  // namespace

std::string JournalLineOf(const RunEntry& entry) {
  return std::string(IsThreshold(entry) ? kThreshold : kStep) +
         std::visit([](const auto& e) { return RowLineOf(e); }, entry);
}

std::optional<RunEntry> RunEntryOf(std::string_view line) {
  if (line.starts_with(kStep)) return RowOfLine<StepEntry>(line.substr(kStep.size()));
  if (line.starts_with(kThreshold)) return RowOfLine<ThresholdEntry>(line.substr(kThreshold.size()));
  return std::nullopt;
}

}  // namespace hylden
