#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "shell/Failure.h"

namespace hylden {

struct CalInfoRec;

/// A calibrated frequency as a calibration found it.
struct CalRow {
  double Freq = 0;                    ///< MHz
  double SigGenLevel = 0;             ///< dBm
  double TestLevel = 0;               ///< dBuV
  std::optional<double> FwdPwr = {};  ///< dBm; nothing where it is not recorded, so the next
  std::optional<double> RevPwr = {};
  bool Complete = true;                ///< the reverse power was read, where it is to be recorded
  std::optional<double> Reached = {};  ///< dBuV, within the tolerance band; in no file, so nothing for a former run's
};
/// Those of a complete row.
template <class F>
void RowValues(F& f, CalRow& row) {
  f.Value(row.Freq);
  f.Value(row.SigGenLevel);
  f.Value(row.TestLevel);
  f.Value(row.FwdPwr);
  f.Value(row.RevPwr);
}
using CalRows = std::vector<CalRow>;

/// The cells of a row, as the run's grid shows them and the record keeps them. What was not measured is empty.
std::array<std::string, 5> CellsOf(const CalRow& row);
/// The rows that a calibration record can be made of.
CalRows CompleteRows(const CalRows& rows);
/// The range that rows cover, as a record's description has it; empty without a row.
std::string RangeOf(const CalRows& rows);

/// The description of a record that holds these rows: fewer than were planned cover a range of their own.
CalInfoRec InfoOfRows(CalInfoRec planned, const CalRows& rows, std::size_t plannedRows);

/// The data file's text, one line per row.
std::string CalDataText(const CalRows& rows);

/// The info file that lies beside a record's data file; nothing where its name doesn't end with ".cal".
std::optional<std::string> InfoFileBeside(const std::string& dataFileName);

/// Writes a calibration record: the data file, one line per row as the run's grid shows it, in rising frequency, and
/// the info file beside it.
/// @param dataFileName  ends with ".cal"
/// @param rows  fewer than two: "No data to save"
Done SaveCal(const std::string& dataFileName, const CalRows& rows, const CalInfoRec& info);

}  // namespace hylden
