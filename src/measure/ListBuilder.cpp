#include "measure/ListBuilder.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "measure/ReadFreq.h"
#include "shell/FormFields.h"
#include "text/Numbers.h"
#include "text/Pattern.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

std::string ListText(double frequencyMHz) {
  return Format(frequencyMHz, "#0.0#####");
}

std::vector<double> Harmonics(double fundamental, std::size_t count) {
  std::vector<double> list(count);
  for (std::size_t k = 0; k < count; ++k) list[k] = SweepPoint(fundamental * static_cast<double>(k + 1));
  return list;
}

std::vector<double> LinearRange(double start, double end, double step) {
  std::vector<double> list;
  while (true) {
    const double next = SweepPoint(start + static_cast<double>(list.size()) * step);
    if (!(next < end)) break;
    list.push_back(next);
  }
  list.push_back(end);
  return list;
}

/// How many frequencies the part has, roughly.
double SizeOf(const ListPart& part) {
  switch (part.Kind) {
    case ListPartKind::Linear:
      return (part.End - part.Start) / part.Step;
    case ListPartKind::Log:
      return std::log(part.End / part.Start) / std::log1p(part.Step / 100);
    case ListPartKind::Harmonics:
      break;
  }
  return NearestWhole(part.Step);
}

const char* StepUnit(ListPartKind kind) {
  return kind == ListPartKind::Linear ? "MHz" : kind == ListPartKind::Log ? "%" : "";
}

}  // namespace

void FormFields(FormWalker& f, ListPart& part) {
  f.Choice({"optLinear", "optLog", "optHarmonics"}, part.Kind);
  f.Number("txtRangeStart", part.Start, Above(0).In("MHz"));
  if (f.Uses(part.Kind != ListPartKind::Harmonics, {"txtRangeEnd"}))
    f.Number("txtRangeEnd", part.End, Above(0).In("MHz"));
  f.Number("txtStepSize", part.Step, Above(0).In(StepUnit(part.Kind)));
  f.Check("txtStepSize", !FrequenciesOf(part).empty(),
          {.Also = "with at least one and at most 1000000 frequencies between start and end"});
}

std::vector<double> FrequenciesOf(const ListPart& part) {
  if (!(part.Start > 0) || !(part.Step > 0) || !(SizeOf(part) < static_cast<double>(kMostSweepPoints))) return {};
  switch (part.Kind) {
    case ListPartKind::Linear:
      return LinearRange(part.Start, part.End, part.Step);
    case ListPartKind::Log:
      return LogSweep(part.Start, part.End, part.Step);
    case ListPartKind::Harmonics:
      break;
  }
  return Harmonics(part.Start, static_cast<std::size_t>(NearestWhole(part.Step)));
}

std::vector<double> TidyList(std::vector<double> list) {
  ReadFreq::SortFreqList(list);
  std::vector<double> tidy;
  for (std::size_t i = 0; i < list.size() && list[i] != 0; ++i) {
    tidy.push_back(list[i]);
    if (i + 1 < list.size() && ShortestText(list[i]) == ShortestText(list[i + 1])) ++i;
  }
  return tidy;
}

std::vector<std::string> ListLines(const std::vector<double>& list) {
  std::vector<std::string> lines(list.size());
  std::transform(list.begin(), list.end(), lines.begin(), ListText);
  return lines;
}

std::string ListSummary(const std::vector<double>& list) {
  if (list.empty()) return "No frequencies yet";
  const auto [lowest, highest] = std::minmax_element(list.begin(), list.end());
  if (list.size() == 1) return "1 frequency, " + ListText(*lowest) + " MHz";
  return std::to_string(list.size()) + " frequencies, " + ListText(*lowest) + " to " + ListText(*highest) + " MHz";
}

void ListBuilder::Open(std::vector<double> list, const std::string& file) {
  now_ = {std::move(list), file, false, true};
  before_.clear();
}

void ListBuilder::AddFile(const std::vector<double>& list, const std::string& file) {
  const bool isFirst = now_.List.empty();
  Append(list);
  if (!isFirst) return;
  now_.File = file;
  now_.Unsaved = false;
}

void ListBuilder::Append(const std::vector<double>& more) {
  std::vector<double> list = now_.List;
  list.insert(list.end(), more.begin(), more.end());
  Change(TidyList(std::move(list)));
}

void ListBuilder::Clear() {
  const bool wasUnsaved = now_.Unsaved;
  Change({});
  now_.Unsaved = wasUnsaved;
}

void ListBuilder::Remove(std::size_t first, std::size_t count) {
  std::vector<double> list = now_.List;
  const auto begin = list.begin() + static_cast<std::ptrdiff_t>(first);
  list.erase(begin, begin + static_cast<std::ptrdiff_t>(count));
  Change(std::move(list));
}

/// Another list, which is in no file.
void ListBuilder::Change(std::vector<double> list) {
  constexpr std::size_t kMostSteps = 20;
  if (before_.size() == kMostSteps) before_.pop_front();
  before_.push_back(std::move(now_));
  now_ = {std::move(list), {}, true, false};
}

std::size_t ListBuilder::Undo() {
  const std::vector<double> undone = std::move(now_.List);
  now_ = std::move(before_.back());
  before_.pop_back();
  const auto differ = std::mismatch(undone.begin(), undone.end(), now_.List.begin(), now_.List.end());
  return static_cast<std::size_t>(differ.first - undone.begin());
}

Done ListBuilder::Save(const std::string& file) {
  return Trapped("frmBuildList.SaveFile", file, [&] {
    ReplaceFile(file, JoinLines(ListLines(now_.List)));
    now_.File = file;
    now_.Unsaved = false;
    // What was in this file before is in none now.
    for (State& state : before_) state = {std::move(state.List), {}, true, false};
  });
}

}  // namespace hylden
