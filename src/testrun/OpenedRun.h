#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "shell/Failure.h"
#include "testrun/RunCurves.h"
#include "testrun/RunDataFile.h"
#include "testrun/RunInfo.h"

namespace hylden {

/// A run data file that was opened, with what lies beside it.
struct OpenedRun {
  std::string File;  ///< empty: the rows are in none yet
  SavedRun Run = {};
  RunInfoBeside Beside = {};

  const std::vector<RunEntry>& Rows() const { return Run.Data.Entries(); }
  /// What the curves show beside the rows: aims and impedance as far as the information has them.
  RunCurveContext CurveContext() const;
};

Result<OpenedRun> OpenRun(const std::string& file);

/// What is known of a run, in words: a heading, and lines of a name, which may be empty, and a text.
struct InfoSection {
  std::string Heading;
  std::vector<std::pair<std::string, std::string>> Lines;
};
std::vector<InfoSection> InfoSections(const OpenedRun& run);

}  // namespace hylden
