#pragma once

#include <map>
#include <string>

#include "shell/Failure.h"

namespace hylden {

class RunData;

/// The decimal sign of a table, by which the sign between its cells goes: "," with a point, ";" with a comma.
enum class DecimalSign { Point, Comma };

/// Run data as a table for other programs: CSV in UTF-8, a line of headings with units, then a line for each row. The
/// first cell says whether it is a step or a threshold. Levels have the decimals of the run data file; what was not
/// measured is an empty cell, and a comment has all its characters.
/// @param rowTimes  of complete rows, by their number
std::string RunCsv(const RunData& data, const std::map<int, std::string>& rowTimes, DecimalSign sign);

/// Writes the table; a failure leaves an old file whole.
Done FileRunCsv(const RunData& data, const std::map<int, std::string>& rowTimes, DecimalSign sign,
                const std::string& path);

}  // namespace hylden
