#include "testrun/RunData.h"

#include <algorithm>

#include "measure/Conversions.h"
#include "shell/Shell.h"
#include "text/Pattern.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

constexpr std::string_view kLevelPattern = "##0.0";
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

std::string Joined(const RunRow& row, std::size_t cells) {
  std::string line = row[0];
  for (std::size_t i = 1; i < cells; ++i) line.append(", ").append(row[i]);
  return line;
}

}  // namespace

void RunData::Clear() {
  rows_.assign(1, {"Freq MHz", "SG,dBm", "Lev dBuv", "Meas dBuA", "FPwr dBm", "RPwr dBm"});
}

int RunData::AddStep(double frequencyMHz) {
  rows_.push_back({Format(frequencyMHz, "#0.0#####")});
  return static_cast<int>(rows_.size()) - 1;
}

void RunData::FillStep(int row, const StepResult& result) {
  RunRow& cells = rows_.at(static_cast<std::size_t>(row));
  const StepMarks& marks = result.Marks;
  Cell(cells, RunColumn::SigGen) = Format(result.SigGenLevel, kLevelPattern);
  Cell(cells, RunColumn::TestLevel) = Format(result.TestLevel, kLevelPattern);
  Cell(cells, RunColumn::Induced) = LevelText(result.Induced);
  Cell(cells, RunColumn::FwdPwr) = LevelText(result.FwdPwr);
  Cell(cells, RunColumn::RevPwr) = LevelText(result.RevPwr);
  if (marks.SigGenAtCalibration) Cell(cells, RunColumn::SigGen) += kMark;
  if (marks.InducedAboveLimit) Cell(cells, RunColumn::Induced) += kMark;
  if (marks.ForwardCapHeld)
    Cell(cells, RunColumn::FwdPwr) += kCapMark;
  else if (marks.PowerAboveTarget)
    Cell(cells, RunColumn::FwdPwr) += kMark;
}

int RunData::AddThreshold(const std::string& frequencyText, double offsetDb) {
  rows_.push_back({frequencyText, "Threshold " + Format(offsetDb, "#0.0") + "dB"});
  return static_cast<int>(rows_.size()) - 1;
}

void RunData::SetComment(int row, std::string comment) {
  std::replace_if(
      comment.begin(), comment.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
  rows_.at(static_cast<std::size_t>(row))[2] = std::move(comment);
}

bool RunData::IsThreshold(const RunRow& row) {
  return !row[1].empty() && row[1].front() == 'T';
}

std::vector<std::string> RunHeaderLines(bool thresholdsOnly) {
  if (thresholdsOnly) return {"Freq(MHz), Threshold, Comment"};
  return {"Note: Data with asterisks indicates item first meeting leveling criteria.",
          "Freq(MHz), SigGen(dBm), TestLev(dBuv), Probe(dBuA), FwdPwr(dBm), RevPwr(dBm)"};
}

std::vector<std::string> RunRowLines(const RunData& data, bool thresholdsOnly) {
  std::vector<std::string> lines;
  lines.reserve(data.Rows().size());
  for (std::size_t i = 1; i < data.Rows().size(); ++i) {
    const RunRow& row = data.Rows()[i];
    const bool threshold = RunData::IsThreshold(row);
    if (threshold || !thresholdsOnly) lines.push_back(Joined(row, threshold ? kThresholdCells : row.size()));
  }
  return lines;
}

std::string RunFileText(const RunData& data, bool thresholdsOnly) {
  std::vector<std::string> lines{std::string(kRunDataTitle)};
  for (std::string& line : RunHeaderLines(thresholdsOnly)) lines.push_back(std::move(line));
  for (std::string& line : RunRowLines(data, thresholdsOnly)) lines.push_back(std::move(line));
  return JoinLines(lines);
}

bool FileRunData(Shell& shell, const RunData& data, const std::string& path, bool thresholdsOnly) {
  try {
    ReplaceFile(path, RunFileText(data, thresholdsOnly));
    return true;
  } catch (const std::exception& error) {
    shell.ReportError(error, "FileRunData", path);
    return false;
  }
}

bool SaveRunData(Shell& shell, const RunData& data) {
  if (data.IsEmpty()) {
    shell.dialogs.Tell("No run data to save");
    return true;
  }
  const auto path = shell.dialogs.SaveFile({"Select run file", "Test Run Files (*.run)|*.run|All Files|*.*",
                                            shell.settings.GetDataDir(datakind::kTestResults)});
  return path && FileRunData(shell, data, *path, false);
}

}  // namespace hylden
