#include "testrun/RunExport.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "measure/Conversions.h"
#include "testrun/RunData.h"
#include "text/Pattern.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

constexpr std::string_view kFreqPattern = "#0.0#####", kLevelPattern = "##0.0";

/// A cell as it stands between separators: in quotes where it holds one, or a quote, or an end of line.
std::string Quoted(const std::string& text, char separator) {
  if (text.find_first_of("\"\r\n") == std::string::npos && text.find(separator) == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + '"';
}

/// Which quantity ended the ramp of a step, as a word.
std::string ReachedText(const StepMarks& marks) {
  if (StayedBelow(marks)) return marks.InducedAboveLimit ? "induced current" : "forward power cap";
  if (marks.PowerAboveTarget) return "power";
  return marks.SigGenAtCalibration ? "generator level" : "";
}

/// Puts the lines of the table together.
class CsvLines {
 public:
  CsvLines(const std::map<int, std::string>& rowTimes, DecimalSign sign) : rowTimes_(rowTimes), sign_(sign) {
    Add({"Kind", "Row", "Frequency (MHz)", "Generator level (dBm)", "Test level (dBuV)", "Induced current (dBuA)",
         "Forward power (dBm)", "Reverse power (dBm)", "Reached", "Threshold (dB)", "Comment", "Time"});
  }

  void Add(int row, const StepEntry& step) {
    std::vector<std::string> cells = {"step", std::to_string(row), Number(step.Freq, kFreqPattern)};
    cells.resize(kComment + 1);
    if (step.Result) {
      const StepResult& result = *step.Result;
      cells[3] = Level(result.SigGenLevel);
      cells[4] = Level(result.TestLevel);
      cells[5] = Level(result.Induced);
      cells[6] = Level(result.FwdPwr);
      cells[7] = Level(result.RevPwr);
      cells[8] = ReachedText(result.Marks);
    } else {
      cells[8] = "not held";
    }
    AddWithTime(row, std::move(cells));
  }
  void Add(int row, const ThresholdEntry& threshold) {
    std::vector<std::string> cells = {"threshold", std::to_string(row), Number(threshold.Freq, kFreqPattern)};
    cells.resize(kComment + 1);
    cells[kComment - 1] = Number(threshold.OffsetDb, kLevelPattern);
    cells[kComment] = threshold.Comment;
    AddWithTime(row, std::move(cells));
  }

  std::string Text() const { return JoinLines(lines_); }

 private:
  static constexpr std::size_t kComment = 10;

  template <class Value>
  std::string Number(Value value, std::string_view pattern) const {
    std::string text = Format(value, pattern);
    if (sign_ == DecimalSign::Comma) std::replace(text.begin(), text.end(), '.', ',');
    return text;
  }
  std::string Level(const std::optional<double>& level) const {
    return level && !IsMissing(*level) ? Number(*level, kLevelPattern) : std::string();
  }

  void AddWithTime(int row, std::vector<std::string> cells) {
    const auto time = rowTimes_.find(row);
    cells.push_back(time == rowTimes_.end() ? std::string() : time->second);
    Add(cells);
  }
  void Add(const std::vector<std::string>& cells) {
    const char separator = sign_ == DecimalSign::Comma ? ';' : ',';
    std::string line;
    for (const std::string& cell : cells) {
      if (&cell != &cells.front()) line += separator;
      line += Quoted(cell, separator);
    }
    lines_.push_back(std::move(line));
  }

  const std::map<int, std::string>& rowTimes_;
  DecimalSign sign_;
  std::vector<std::string> lines_;
};

}  // namespace

std::string RunCsv(const RunData& data, const std::map<int, std::string>& rowTimes, DecimalSign sign) {
  CsvLines lines(rowTimes, sign);
  int row = 0;
  for (const RunEntry& entry : data.Entries()) {
    ++row;
    std::visit([&](const auto& e) { lines.Add(row, e); }, entry);
  }
  return lines.Text();
}

Done FileRunCsv(const RunData& data, const std::map<int, std::string>& rowTimes, DecimalSign sign,
                const std::string& path) {
  return Trapped("FileRunCsv", path, [&] { ReplaceFile(path, RunCsv(data, rowTimes, sign)); });
}

}  // namespace hylden
