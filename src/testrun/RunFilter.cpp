#include "testrun/RunFilter.h"

#include <algorithm>
#include <cstddef>

namespace hylden {

namespace {

/// A result that no step without one has.
const StepMarks& MarksOf(const RunEntry& entry) {
  static constexpr StepMarks kNone;
  const auto* const step = std::get_if<StepEntry>(&entry);
  return step && step->Result ? step->Result->Marks : kNone;
}

std::string Counted(std::size_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::size_t Count(RowFilter filter, const std::vector<RunEntry>& rows) {
  return static_cast<std::size_t>(
      std::count_if(rows.begin(), rows.end(), [filter](const RunEntry& row) { return Passes(filter, row); }));
}

}  // namespace

bool IsNotHeld(const RunEntry& entry) {
  const auto* const step = std::get_if<StepEntry>(&entry);
  return step && !step->Result;
}

bool Passes(RowFilter filter, const RunEntry& entry) {
  switch (filter) {
    case RowFilter::Thresholds:
      return IsThreshold(entry);
    case RowFilter::NotHeld:
      return IsNotHeld(entry);
    case RowFilter::AboveTarget:
      return MarksOf(entry).PowerAboveTarget;
    case RowFilter::HeldByCurrent:
      return MarksOf(entry).InducedAboveLimit;
    case RowFilter::All:
      break;
  }
  return true;
}

std::vector<int> RowsThrough(RowFilter filter, const std::vector<RunEntry>& rows) {
  std::vector<int> passing;
  passing.reserve(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i)
    if (Passes(filter, rows[i])) passing.push_back(static_cast<int>(i + 1));
  return passing;
}

std::string RowCounts(const std::vector<RunEntry>& rows) {
  const std::size_t thresholds = Count(RowFilter::Thresholds, rows), notHeld = Count(RowFilter::NotHeld, rows);
  std::string text = Counted(rows.size() - thresholds, "step");
  if (notHeld > 0) text += ", " + std::to_string(notHeld) + " of them not held";
  return text + ", " + Counted(thresholds, "threshold");
}

int StepRowOf(const std::vector<RunEntry>& rows, int row) {
  if (row < 1 || static_cast<std::size_t>(row) > rows.size()) return 0;
  const auto* const threshold = std::get_if<ThresholdEntry>(&rows[static_cast<std::size_t>(row - 1)]);
  if (!threshold) return row;
  for (int before = row - 1; before > 0; --before) {
    const auto* const step = std::get_if<StepEntry>(&rows[static_cast<std::size_t>(before - 1)]);
    if (step && step->Result && IsSameFrequency(step->Freq, threshold->Freq)) return before;
  }
  return 0;
}

}  // namespace hylden
