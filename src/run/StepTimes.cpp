#include "run/StepTimes.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "run/JournalValues.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

constexpr const char* kTitle = "Hylden times 1";
constexpr std::size_t kMostOfKey = 5, kMost = 500;
// A step that took so much more than the one in the middle has stalled.
constexpr double kStalledTimes = 3, kStalledSeconds = 0.5;

/// A figure, and how many steps tell it.
using Weighted = std::pair<double, double>;

/// The figure in the middle of the weights.
double Middle(std::vector<Weighted> figures) {
  std::sort(figures.begin(), figures.end());
  double half = 0;
  for (const Weighted& figure : figures) half += figure.second / 2;
  for (const auto& [value, weight] : figures)
    if ((half -= weight) <= 0) return value;
  return 0;
}

double OverheadOf(const MeasuredStep& step) {
  return step.Seconds - step.Waits * step.Expected.Wait - std::max(step.Expected.Dwell, step.Readings);
}

StepCost CostOf(const std::vector<MeasuredStep>& steps, StepKind kind) {
  std::vector<Weighted> overheads;
  overheads.reserve(steps.size());
  for (const MeasuredStep& step : steps)
    if (step.Expected.Kind == kind) overheads.emplace_back(OverheadOf(step), 1);
  const double stalled = kStalledTimes * Middle(overheads) + kStalledSeconds;
  StepCost cost;
  double overhead = 0, waits = 0, expected = 0;
  for (const MeasuredStep& step : steps) {
    if (step.Expected.Kind != kind || OverheadOf(step) > stalled) continue;
    ++cost.Steps;
    overhead += OverheadOf(step);
    waits += step.Waits;
    expected += step.Expected.Waits;
  }
  if (cost.Steps == 0) return cost;
  cost.Each = overhead / std::max(1.0, waits);
  cost.MoreWaits = (waits - expected) / cost.Steps;
  return cost;
}

StepCost TypicalCost(const std::vector<RunTimes>& runs, StepCost RunTimes::*of) {
  std::vector<Weighted> steps, each, more;
  for (const RunTimes& run : runs) {
    const StepCost& cost = run.*of;
    if (cost.Steps < 1) continue;
    const double weight = cost.Steps;
    steps.emplace_back(weight, 1);
    each.emplace_back(cost.Each, weight);
    more.emplace_back(cost.MoreWaits, weight);
  }
  return {static_cast<int>(Middle(steps)), Middle(each), Middle(more)};
}

std::optional<double> TypicalTime(const std::vector<RunTimes>& runs, std::optional<double> RunTimes::*of) {
  std::vector<Weighted> times;
  for (const RunTimes& run : runs)
    if (run.*of) times.emplace_back(*(run.*of), 1);
  return times.empty() ? std::nullopt : std::optional(Middle(times));
}

const StepCost& CostFor(StepKind kind, const RunTimes& times) {
  const StepCost& cost = kind == StepKind::First ? times.First : kind == StepKind::Change ? times.Change : times.Next;
  return cost.Steps > 0 ? cost : times.Next;
}

}  // namespace

RunTimes TimesOf(const std::vector<MeasuredStep>& steps) {
  RunTimes times;
  std::vector<Weighted> readings;
  readings.reserve(steps.size());
  for (const MeasuredStep& step : steps) readings.emplace_back(step.Readings, 1);
  times.Readings = Middle(readings);
  times.First = CostOf(steps, StepKind::First);
  times.Next = CostOf(steps, StepKind::Next);
  times.Change = CostOf(steps, StepKind::Change);
  return times;
}

std::optional<RunTimes> TypicalTimes(const std::vector<RunTimes>& all, const std::string& key) {
  std::vector<RunTimes> runs;
  std::copy_if(all.begin(), all.end(), std::back_inserter(runs), [&](const RunTimes& run) { return run.Key == key; });
  if (runs.empty()) return std::nullopt;
  std::vector<Weighted> readings;
  readings.reserve(runs.size());
  for (const RunTimes& run : runs)
    readings.emplace_back(run.Readings, run.First.Steps + run.Next.Steps + run.Change.Steps);
  RunTimes typical;
  typical.Up = TypicalTime(runs, &RunTimes::Up);
  typical.Down = TypicalTime(runs, &RunTimes::Down);
  typical.Readings = Middle(readings);
  typical.First = TypicalCost(runs, &RunTimes::First);
  typical.Next = TypicalCost(runs, &RunTimes::Next);
  typical.Change = TypicalCost(runs, &RunTimes::Change);
  typical.Key = key;
  return typical;
}

std::optional<double> SecondsOf(const ExpectedStep& step, const RunTimes& times) {
  const StepCost& cost = CostFor(step.Kind, times);
  if (cost.Steps < 1) return std::nullopt;
  const double waits = std::max(1.0, step.Waits + cost.MoreWaits);
  return waits * (step.Wait + cost.Each) + std::max(step.Dwell, times.Readings);
}

void AddTimes(std::vector<RunTimes>& runs, RunTimes times) {
  const auto isOfKey = [&](const RunTimes& run) { return run.Key == times.Key; };
  if (static_cast<std::size_t>(std::count_if(runs.begin(), runs.end(), isOfKey)) >= kMostOfKey)
    runs.erase(std::find_if(runs.begin(), runs.end(), isOfKey));
  if (runs.size() >= kMost) runs.erase(runs.begin());
  runs.push_back(std::move(times));
}

std::string TimesText(const std::vector<RunTimes>& runs) {
  std::vector<std::string> lines = {kTitle};
  lines.reserve(runs.size() + 1);
  for (const RunTimes& run : runs) lines.push_back(RowLineOf(run));
  return JoinLines(lines);
}

std::vector<RunTimes> TimesOfText(const std::string& text) {
  std::vector<RunTimes> runs;
  LineReader lines(text);
  if (lines.AtEnd() || lines.NextLine() != kTitle) return runs;
  while (!lines.AtEnd())
    if (auto run = RowOfLine<RunTimes>(lines.NextLine())) AddTimes(runs, std::move(*run));
  // What is no time would make one of everything else.
  std::erase_if(runs, [](const RunTimes& run) {
    const auto isNone = [](double value) { return !(std::abs(value) < 1e6); };
    const auto isNoCost = [&](const StepCost& cost) {
      return cost.Steps < 0 || isNone(cost.Each) || isNone(cost.MoreWaits);
    };
    return isNone(run.Up.value_or(0)) || isNone(run.Down.value_or(0)) || isNone(run.Readings) || isNoCost(run.First) ||
           isNoCost(run.Next) || isNoCost(run.Change);
  });
  return runs;
}

}  // namespace hylden
