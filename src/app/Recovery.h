#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "calibration/CableCalibration.h"
#include "documents/CalInfo.h"
#include "documents/SaveCal.h"
#include "platform/Journals.h"
#include "run/FormerRun.h"
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
/// What keeps its rows from being continued; nothing where they can be, as far as the journal tells.
std::optional<std::string> Obstacle(const Recovery& recovery);
/// Whether steps of the run that it is of have no row, as far as the journal tells.
bool IsUnfinished(const Recovery& recovery);

/// A journal that is to be continued: what it holds, and where the run goes on with it.
struct ResumedJournal {
  Recovery Former;
  std::unique_ptr<JournalWriter> Journal;
};
/// The former run of such a journal of a test, or of a level calibration.
FormerRun<RunData> FormerTest(ResumedJournal journal);
FormerRun<CalRows> FormerCalibration(ResumedJournal journal);

/// What it is of, as a line: run, time, rows, last frequency.
std::string DescriptionOf(const Recovery& recovery);
/// The file as the run would have saved these rows; of a level calibration the record with its description.
Done SaveRecovery(const Recovery& recovery, const std::string& path);

}  // namespace hylden
