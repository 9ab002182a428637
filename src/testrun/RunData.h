#pragma once

#include <array>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "shell/Failure.h"

namespace hylden {

class INISettings;
class Shell;
struct RunInfo;

/// The columns of the run data, as table and file show them.
enum class RunColumn : int { Freq = 0, SigGen = 1, TestLevel = 2, Induced = 3, FwdPwr = 4, RevPwr = 5 };
using RunRow = std::array<std::string, 6>;
inline constexpr std::array<const char*, 6> kRunHeadings = {"Freq MHz",  "SG,dBm",   "Lev dBuv",
                                                            "Meas dBuA", "FPwr dBm", "RPwr dBm"};

/// Whether two frequencies, MHz, are the same in run data, whose files keep six decimals.
bool IsSameFrequency(double oneMHz, double otherMHz);
/// Half of their last decimal.
inline constexpr double kSameMHz = 5e-7;

/// Which quantities first met a step's levelling criterion.
struct StepMarks {
  bool SigGenAtCalibration = false;  ///< the generator reached its calibrated level
  bool InducedAboveLimit = false;
  bool PowerAboveTarget = false;
  bool ForwardCapHeld = false;  ///< the forward power stood at its cap in a net power ramp
};

/// Whether a limit kept the step below its test level: the level that it holds was aimed at, and not applied.
inline bool StayedBelow(const StepMarks& marks) {
  return marks.ForwardCapHeld || (marks.InducedAboveLimit && !marks.SigGenAtCalibration && !marks.PowerAboveTarget);
}

/// What a step applied; quantities that were not measured are left out.
struct StepResult {
  float SigGenLevel = 0;               ///< dBm
  float TestLevel = 0;                 ///< dBuV
  std::optional<double> Induced = {};  ///< dBuA
  std::optional<double> FwdPwr = {};   ///< dBm
  std::optional<double> RevPwr = {};   ///< dBm
  StepMarks Marks = {};
};

/// A step of the run; its result once it is complete.
struct StepEntry {
  double Freq = 0;  ///< MHz
  std::optional<StepResult> Result = {};
};
template <class F>
void RowValues(F& f, StepEntry& step) {
  StepResult& result = step.Result ? *step.Result : step.Result.emplace();
  f.Value(step.Freq);
  f.Value(result.SigGenLevel);
  f.Value(result.TestLevel);
  f.Value(result.Induced);
  f.Value(result.FwdPwr);
  f.Value(result.RevPwr);
  f.Flag(result.Marks.SigGenAtCalibration);
  f.Flag(result.Marks.InducedAboveLimit);
  f.Flag(result.Marks.PowerAboveTarget);
  f.Flag(result.Marks.ForwardCapHeld);
}
/// A susceptibility threshold that the operator marked.
struct ThresholdEntry {
  double Freq = 0;      ///< MHz
  double OffsetDb = 0;  ///< from the level reached at the step
  std::string Comment = {};
};
template <class F>
void RowValues(F& f, ThresholdEntry& threshold) {
  f.Value(threshold.Freq);
  f.Value(threshold.OffsetDb);
  f.Text(threshold.Comment);
}
using RunEntry = std::variant<StepEntry, ThresholdEntry>;

inline bool IsThreshold(const RunEntry& entry) {
  return std::holds_alternative<ThresholdEntry>(entry);
}
/// The cells of an entry, as table and file show them. A threshold has three.
RunRow CellsOf(const RunEntry& entry);

/// What a test run recorded: the steps and the marked thresholds, in the order in which they happened. Rows are only
/// ever added at the end; their numbers, counted from 1, stay valid until Clear.
class RunData {
 public:
  /// Called with the number of a row that is complete now, or has changed since.
  std::function<void(int row)> onRow;

  void Clear() { entries_.clear(), seams_.clear(); }
  const std::vector<RunEntry>& Entries() const { return entries_; }
  bool IsEmpty() const { return entries_.empty(); }

  /// The run was continued with this row, which need not be there yet.
  void AddSeam(int row) { seams_.insert(row); }
  const std::set<int>& Seams() const { return seams_; }

  /// A row for a step that begins; returns its number.
  int AddStep(double frequencyMHz);
  /// Takes the step at the end back that was not completed, if there is one.
  void DropIncomplete();
  /// An entry from elsewhere, as it is.
  void Add(RunEntry entry) { entries_.push_back(std::move(entry)); }
  void FillStep(int row, const StepResult& result);
  /// A row for a threshold; returns its number.
  int AddThreshold(double frequencyMHz, double offsetDb);
  /// Line ends in the comment become blanks, so that a threshold stays on one line of the file.
  void SetComment(int row, std::string comment);

 private:
  template <class Entry>
  Entry& At(int row) {
    return std::get<Entry>(entries_.at(static_cast<std::size_t>(row - 1)));
  }

  void TellRow(int row) const {
    if (onRow) onRow(row);
  }

  std::vector<RunEntry> entries_;
  std::set<int> seams_;
};

/// The first line of the run data file and of the printed reports.
inline constexpr std::string_view kRunDataTitle = "                   Test Run Data";
/// The lines under the title: the note and the column header, or the thresholds' header; then the rows.
std::vector<std::string> RunHeaderLines(bool thresholdsOnly);
std::vector<std::string> RunRowLines(const RunData& data, bool thresholdsOnly);

/// The text of a run data file (.run).
std::string RunFileText(const RunData& data, bool thresholdsOnly);

/// Writes a run data file; a failure leaves an old file whole.
Done FileRunData(const RunData& data, const std::string& path, bool thresholdsOnly);

/// How a file for run data is asked for.
/// @param name  that is proposed
FileRequest RunDataRequest(INISettings& settings, const std::string& name = {});

/// The save command: asks for a file and writes all rows to it, and beside it what they do not tell. Without rows:
/// "No run data to save". The name of the test and the time are proposed.
/// @param file  takes the path that was chosen, once the rows are there
/// @return false when there were rows and they were not written
bool SaveRunData(Shell& shell, const RunData& data, const RunInfo& info, std::string* file = nullptr);

}  // namespace hylden
