#pragma once

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

#include "calibration/CableCalibration.h"
#include "documents/CalInfo.h"
#include "documents/SaveCal.h"
#include "run/JournalFile.h"
#include "testrun/RunData.h"

namespace hylden {

/// Where programs with this program directory keep their journals.
std::string JournalsIn(const std::string& programDirectory);

/// What a journal holds, as its run would have had it.
struct Recovery {
  struct Record {
    CalRows Rows;
    CalInfoRec Info;
  };

  JournalHead Head;
  std::variant<RunData, Record, std::vector<CablePoint>> Rows;
  std::size_t Recorded = 0;  ///< rows in the journal
  std::size_t Count = 0;     ///< those that a file would hold
  double LastMHz = 0;        ///< of the row recorded last
  bool Gapless = true;       ///< every row up to the last can be read
  std::size_t Damaged = 0;   ///< lines of the journal that can't be read

  /// There are enough for a file.
  bool FillsFile() const;
};

/// @param bytes  of the journal. @return why nothing can be recovered of it
Result<Recovery> RecoveryOf(std::string bytes);
/// What it is of, as a line: run, time, rows, last frequency.
std::string DescriptionOf(const Recovery& recovery);
/// The file as the run would have saved these rows; of a level calibration the record with its description.
Done SaveRecovery(const Recovery& recovery, const std::string& path);

}  // namespace hylden
