#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "shell/Failure.h"
#include "testrun/RunData.h"

namespace hylden {

/// A run data file (.run) as it was read back. Levels have the one decimal of the file.
struct SavedRun {
  RunData Data;
  bool ThresholdsOnly = false;
  /// What could not be read as it stands, a sentence each with its line: "Line 7 is none of run data: ...".
  std::vector<std::string> Troubles;
};

/// Reads run data back. What can't be read is told and costs itself only: a line that is none of run data, a cell that
/// is no number, a row whose generator or test level is none. A step without any level is one that was not held.
/// @return why it is no run data file at all, with the line
Result<SavedRun> RunDataOf(std::string_view text);
Result<SavedRun> ReadRunData(const std::string& path);

}  // namespace hylden
