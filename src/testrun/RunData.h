#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hylden {

class Shell;

/// The columns of the run data.
enum class RunColumn : int { Freq = 0, SigGen = 1, TestLevel = 2, Induced = 3, FwdPwr = 4, RevPwr = 5 };
using RunRow = std::array<std::string, 6>;

/// Which quantities first met a step's levelling criterion.
struct StepMarks {
  bool SigGenAtCalibration = false;  ///< the generator reached its calibrated level
  bool InducedAboveLimit = false;
  bool PowerAboveTarget = false;
  bool ForwardCapHeld = false;  ///< the forward power stood at its cap in a net power ramp
};

/// What a step applied; quantities that were not measured are left out.
struct StepResult {
  float SigGenLevel = 0;               ///< dBm
  float TestLevel = 0;                 ///< dBuV
  std::optional<double> Induced = {};  ///< dBuA
  std::optional<double> FwdPwr = {};   ///< dBm
  std::optional<double> RevPwr = {};   ///< dBm
  StepMarks Marks = {};
};

/// The record of a test run: a header row, then a row for each step and each marked threshold, in the order in which
/// they happened. Rows are only ever added at the end; row numbers stay valid until Clear.
class RunData {
 public:
  RunData() { Clear(); }

  /// The header row only.
  void Clear();
  const std::vector<RunRow>& Rows() const { return rows_; }
  bool IsEmpty() const { return rows_.size() < 2; }

  /// A row for a step that begins; returns its number.
  int AddStep(double frequencyMHz);
  void FillStep(int row, const StepResult& result);
  /// A row for a threshold, level offset in dB; returns its number.
  int AddThreshold(const std::string& frequencyText, double offsetDb);
  /// Line ends in the comment become blanks, so that a threshold stays on one line of the file.
  void SetComment(int row, std::string comment);

  static bool IsThreshold(const RunRow& row);

 private:
  std::vector<RunRow> rows_;
};

/// The first line of the run data file and of the printed reports.
inline constexpr std::string_view kRunDataTitle = "                   Test Run Data";
/// The lines under the title: the note and the column header, or the thresholds' header; then the rows.
std::vector<std::string> RunHeaderLines(bool thresholdsOnly);
std::vector<std::string> RunRowLines(const RunData& data, bool thresholdsOnly);

/// The text of a run data file (.run).
std::string RunFileText(const RunData& data, bool thresholdsOnly);

/// Writes a run data file; a failure leaves an old file whole and the data as they are.
/// @return false after a report
bool FileRunData(Shell& shell, const RunData& data, const std::string& path, bool thresholdsOnly);

/// The save command: asks for a file and writes all rows to it. Without rows: "No run data to save".
/// @return false when there were rows and they were not written
bool SaveRunData(Shell& shell, const RunData& data);

}  // namespace hylden
