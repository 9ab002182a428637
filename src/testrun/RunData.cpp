#include "testrun/RunData.h"

#include <algorithm>
#include <cmath>

#include "measure/Conversions.h"
#include "shell/ProposedName.h"
#include "shell/Shell.h"
#include "testrun/RunInfo.h"
#include "text/Pattern.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

constexpr std::string_view kFreqPattern = "#0.0#####", kLevelPattern = "##0.0";
constexpr std::string_view kMark = " **";
constexpr std::string_view kCapMark = " +2";
constexpr std::size_t kThresholdCells = 3;

std::string& Cell(RunRow& row, RunColumn column) {
  return row[static_cast<std::size_t>(column)];
}

/// Empty for what was not measured, and for what has no decibels (0 W).
std::string LevelText(const std::optional<double>& levelDb) {
  return levelDb && !IsMissing(*levelDb) ? Format(*levelDb, kLevelPattern) : std::string();
}

RunRow Cells(const ThresholdEntry& threshold) {
  return {Format(threshold.Freq, kFreqPattern), "Threshold " + Format(threshold.OffsetDb, "#0.0") + "dB",
          threshold.Comment};
}

RunRow Cells(const StepEntry& step) {
  RunRow cells{Format(step.Freq, kFreqPattern)};
  if (!step.Result) return cells;
  const StepMarks& marks = step.Result->Marks;
  Cell(cells, RunColumn::SigGen) = Format(step.Result->SigGenLevel, kLevelPattern);
  Cell(cells, RunColumn::TestLevel) = Format(step.Result->TestLevel, kLevelPattern);
  Cell(cells, RunColumn::Induced) = LevelText(step.Result->Induced);
  Cell(cells, RunColumn::FwdPwr) = LevelText(step.Result->FwdPwr);
  Cell(cells, RunColumn::RevPwr) = LevelText(step.Result->RevPwr);
  if (marks.SigGenAtCalibration) Cell(cells, RunColumn::SigGen) += kMark;
  if (marks.InducedAboveLimit) Cell(cells, RunColumn::Induced) += kMark;
  if (marks.ForwardCapHeld)
    Cell(cells, RunColumn::FwdPwr) += kCapMark;
  else if (marks.PowerAboveTarget)
    Cell(cells, RunColumn::FwdPwr) += kMark;
  return cells;
}

std::string Joined(const RunRow& row, std::size_t cells) {
  std::string line = row[0];
  for (std::size_t i = 1; i < cells; ++i) line.append(", ").append(row[i]);
  return line;
}

}  // namespace

bool IsSameFrequency(double oneMHz, double otherMHz) {
  return std::abs(oneMHz - otherMHz) < kSameMHz;
}

RunRow CellsOf(const RunEntry& entry) {
  return std::visit([](const auto& e) { return Cells(e); }, entry);
}

int RunData::AddStep(double frequencyMHz) {
  entries_.emplace_back(StepEntry{frequencyMHz});
  return static_cast<int>(entries_.size());
}

void RunData::FillStep(int row, const StepResult& result) {
  At<StepEntry>(row).Result = result;
  TellRow(row);
}

void RunData::DropIncomplete() {
  const auto* const last = entries_.empty() ? nullptr : std::get_if<StepEntry>(&entries_.back());
  if (last && !last->Result) entries_.pop_back();
}

int RunData::AddThreshold(double frequencyMHz, double offsetDb) {
  ThresholdEntry threshold;
  threshold.Freq = frequencyMHz;
  threshold.OffsetDb = offsetDb;
  entries_.emplace_back(std::move(threshold));
  const int row = static_cast<int>(entries_.size());
  TellRow(row);
  return row;
}

void RunData::SetComment(int row, std::string comment) {
  std::replace_if(
      comment.begin(), comment.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
  At<ThresholdEntry>(row).Comment = std::move(comment);
  TellRow(row);
}

std::vector<std::string> RunHeaderLines(bool thresholdsOnly) {
  if (thresholdsOnly) return {"Freq(MHz), Threshold, Comment"};
  return {"Note: Data with asterisks indicates item first meeting leveling criteria.",
          "Freq(MHz), SigGen(dBm), TestLev(dBuv), Probe(dBuA), FwdPwr(dBm), RevPwr(dBm)"};
}

std::vector<std::string> RunRowLines(const RunData& data, bool thresholdsOnly) {
  std::vector<std::string> lines;
  lines.reserve(data.Entries().size());
  for (const RunEntry& entry : data.Entries()) {
    const bool threshold = IsThreshold(entry);
    const RunRow cells = CellsOf(entry);
    if (threshold || !thresholdsOnly) lines.push_back(Joined(cells, threshold ? kThresholdCells : cells.size()));
  }
  return lines;
}

std::string RunFileText(const RunData& data, bool thresholdsOnly) {
  std::vector<std::string> lines{std::string(kRunDataTitle)};
  for (std::string& line : RunHeaderLines(thresholdsOnly)) lines.push_back(std::move(line));
  for (std::string& line : RunRowLines(data, thresholdsOnly)) lines.push_back(std::move(line));
  return JoinLines(lines);
}

Done FileRunData(const RunData& data, const std::string& path, bool thresholdsOnly) {
  return Trapped("FileRunData", path, [&] { ReplaceFile(path, RunFileText(data, thresholdsOnly)); });
}

FileRequest RunDataRequest(INISettings& settings, const std::string& name) {
  return {"Select run file", "Test Run Files (*.run)|*.run|All Files|*.*", settings.GetDataDir(datakind::kTestResults),
          name};
}

namespace {

/// What a report has kept beside an earlier save of the same run.
RunParticulars KeptParticulars(const RunInfo& info, const std::string& path) {
  try {
    const RunInfoBeside former = ReadRunInfo(path, ReadTextFile(path));
    if (former.Info && former.Info->Started == info.Started) return former.Info->Particulars;
  } catch (const RuntimeError&) {
    // There is none.
  }
  return {};
}

}  // namespace

bool SaveRunData(Shell& shell, const RunData& data, const RunInfo& info, std::string* file) {
  if (data.IsEmpty()) {
    shell.dialogs.Tell("No run data to save");
    return true;
  }
  const std::string name = ProposedName(info.Test ? info.Test->File : std::string(), shell.clock, ".run");
  const auto path = shell.dialogs.SaveFile(RunDataRequest(shell.settings, name));
  if (!path) return false;
  RunInfo kept = info;
  if (kept.Particulars == RunParticulars()) kept.Particulars = KeptParticulars(info, *path);
  if (!shell.Ok(FileRunData(data, *path, false))) return false;
  (void)shell.Ok(FileRunInfo(kept, *path));  // the rows are in their file, whatever becomes of it
  if (file) *file = *path;
  shell.Saved(*path);
  return true;
}

}  // namespace hylden
