#include "testrun/RunDataFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include "text/Numbers.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

/// MHz, dB, dBm and the like.
constexpr double kBeyondAny = 1e6;

constexpr std::string_view kMark = "**", kCapMark = "+2", kThreshold = "Threshold ", kDb = "dB";
constexpr std::size_t kCells = 6, kMostOfALine = 120;

/// The first `most` cells of a line; the last one has what is left of it.
std::vector<std::string_view> CellsIn(std::string_view line, std::size_t most) {
  std::vector<std::string_view> cells;
  while (cells.size() + 1 < most) {
    const auto end = line.find(',');
    if (end == std::string_view::npos) break;
    cells.push_back(line.substr(0, end));
    line.remove_prefix(end + 1);
  }
  cells.push_back(line);
  return cells;
}

/// Takes a mark off the end of a cell. @return whether it was there
bool TakeMark(std::string_view& cell, std::string_view mark) {
  cell = Trim(cell);
  if (!cell.ends_with(mark)) return false;
  cell = Trim(cell.substr(0, cell.size() - mark.size()));
  return true;
}

/// Reads the cells of one step, and notes what is no number.
class StepCells {
 public:
  explicit StepCells(const std::vector<std::string_view>& cells) {
    std::copy_n(cells.begin(), std::min(cells.size(), kCells), cells_.begin());
  }

  /// @return nothing where the levels, or the frequency, can't be read
  std::optional<StepEntry> Read() {
    const auto freq = Level(RunColumn::Freq);
    if (!freq) return std::nullopt;
    StepEntry step{*freq};
    if (std::all_of(cells_.begin() + 1, cells_.end(), [](std::string_view cell) { return Trim(cell).empty(); }))
      return step;
    StepResult result;
    result.Marks.SigGenAtCalibration = TakeMark(At(RunColumn::SigGen), kMark);
    result.Marks.InducedAboveLimit = TakeMark(At(RunColumn::Induced), kMark);
    result.Marks.ForwardCapHeld = TakeMark(At(RunColumn::FwdPwr), kCapMark);
    result.Marks.PowerAboveTarget = TakeMark(At(RunColumn::FwdPwr), kMark);
    const auto level = Level(RunColumn::SigGen), applied = Level(RunColumn::TestLevel);
    result.Induced = Level(RunColumn::Induced);
    result.FwdPwr = Level(RunColumn::FwdPwr);
    result.RevPwr = Level(RunColumn::RevPwr);
    if (!level || !applied) return std::nullopt;
    result.SigGenLevel = static_cast<float>(*level);
    result.TestLevel = static_cast<float>(*applied);
    step.Result = result;
    return step;
  }
  /// The first cell that is no number; empty where all are.
  const std::string& Bad() const { return bad_; }

 private:
  std::string_view& At(RunColumn column) { return cells_[static_cast<std::size_t>(column)]; }

  std::optional<double> Level(RunColumn column) {
    const std::string_view cell = Trim(At(column));
    if (cell.empty()) return std::nullopt;
    if (IsNumeric(cell) && std::abs(ToDouble(cell)) < kBeyondAny) return ToDouble(cell);
    if (bad_.empty()) bad_ = cell;
    return std::nullopt;
  }

  std::array<std::string_view, kCells> cells_;
  std::string bad_;
};

std::optional<ThresholdEntry> ThresholdOf(std::string_view line) {
  const auto cells = CellsIn(line, 3);
  if (cells.size() < 2 || !IsNumeric(cells[0])) return std::nullopt;
  std::string_view offset = Trim(cells[1]);
  if (!offset.starts_with(kThreshold) || !offset.ends_with(kDb)) return std::nullopt;
  offset = offset.substr(kThreshold.size(), offset.size() - kThreshold.size() - kDb.size());
  if (!IsNumeric(offset) || std::abs(ToDouble(offset)) >= kBeyondAny) return std::nullopt;
  std::string_view comment = cells.size() > 2 ? cells[2] : std::string_view();
  if (comment.starts_with(' ')) comment.remove_prefix(1);
  return ThresholdEntry{ToDouble(cells[0]), ToDouble(offset), std::string(comment)};
}

/// The units of a line of headings: what stands in parentheses.
std::vector<std::string> UnitsIn(std::string_view line) {
  std::vector<std::string> units;
  for (auto begin = line.find('('); begin != std::string_view::npos; begin = line.find('(', begin + 1)) {
    const auto end = line.find(')', begin);
    if (end == std::string_view::npos) break;
    units.emplace_back(line.substr(begin + 1, end - begin - 1));
  }
  return units;
}

/// Whether these are the headings of levels in other units than ours.
bool HasOtherUnits(std::string_view line) {
  const auto units = UnitsIn(line);
  return line.starts_with("Freq(") && units.size() > 1 && units != UnitsIn(RunHeaderLines(false).back());
}

/// Reads the lines behind the title.
class RunLines {
 public:
  explicit RunLines(SavedRun& run) : run_(run) {}

  void Read(std::string_view line, bool isWhole) {
    ++number_;
    if (Trim(line).empty() || IsHeader(line)) return;
    if (auto threshold = ThresholdOf(line)) {
      run_.Data.Add(*std::move(threshold));
      if (!isWhole) Tell("has no end: its comment may be cut");
      return;
    }
    const auto cells = CellsIn(line, kCells);
    if (cells.size() < kCells || !IsNumeric(cells[0]))
      return Tell(isWhole ? "is none of run data" : "is cut, and left out");
    ReadStep(cells);
    if (!isWhole) Tell("has no end: its last level may be cut");
  }

 private:
  bool IsHeader(std::string_view line) {
    if (number_ > kHeaderLines) return false;
    const auto isOf = [line](bool thresholdsOnly) {
      const auto lines = RunHeaderLines(thresholdsOnly);
      return std::find(lines.begin(), lines.end(), line) != lines.end();
    };
    if (isOf(true)) run_.ThresholdsOnly = true;
    return isOf(true) || isOf(false);
  }

  void ReadStep(const std::vector<std::string_view>& cells) {
    StepCells cellsOfStep(cells);
    std::optional<StepEntry> step = cellsOfStep.Read();
    const std::string& bad = cellsOfStep.Bad();
    std::string what = bad.empty() ? "" : "holds \"" + bad + "\" instead of a number";
    if (!step) what = (bad.empty() ? "lacks a level" : what) + ", and is left out";
    if (!what.empty()) Tell(what);
    if (step) run_.Data.Add(*step);
  }

  void Tell(const std::string& what) { run_.Troubles.push_back("Line " + std::to_string(number_) + " " + what + "."); }

  static constexpr std::size_t kHeaderLines = 3;

  SavedRun& run_;
  std::size_t number_ = 1;
};

bool EndsLine(std::string_view text) {
  return text.ends_with('\n') || text.ends_with('\r');
}

}  // namespace

Result<SavedRun> RunDataOf(std::string_view text) {
  SavedRun run;
  LineReader lines{std::string(text)};
  if (lines.AtEnd() || Trim(lines.NextLine()) != Trim(kRunDataTitle))
    return Because("This is no run data file: its first line is not \"" + std::string(Trim(kRunDataTitle)) + "\".");
  RunLines rows(run);
  while (!lines.AtEnd()) {
    const std::string_view line = lines.NextLine();
    if (HasOtherUnits(line))
      return Because("The levels of these run data have other units, they are not read:\r\n" +
                     std::string(line.substr(0, kMostOfALine)));
    rows.Read(line, !lines.AtEnd() || EndsLine(text));
  }
  return run;
}

Result<SavedRun> ReadRunData(const std::string& path) {
  std::string text;
  if (Done read = Trapped("ReadRunData", path, [&] { text = ReadTextFile(path); }); !read)
    return Because(std::move(read).error());
  return RunDataOf(text);
}

}  // namespace hylden
