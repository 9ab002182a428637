#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "run/RunParts.h"
#include "shell/Failure.h"

namespace hylden {

/// What a journal keeps the rows of.
enum class JournalKind { Test, LevelCalibration, InsertionLoss };
/// As the journal has it: "level calibration".
std::string_view TextOf(JournalKind kind);

/// What a journal says before its rows: what run it is of, and what saving it takes besides them.
struct JournalHead {
  JournalKind Kind = JournalKind::Test;
  std::string Program = {};            ///< name and version
  std::string Name = {};               ///< the file of the test or the setup; empty without one
  std::string Started = {};            ///< local date and time
  std::string File = {};               ///< whole path of the test or the setup; empty without one
  std::string Equipment = {};          ///< the same of the station's equipment file
  std::size_t Planned = 0;             ///< steps
  std::string Notice = {};             ///< that no instrument is driven; empty otherwise
  std::vector<std::string> Info = {};  ///< of a level calibration: the lines of its .hyinfo
  RunParts Parts = {};                 ///< what the run is made of
};

/// A journal as it was read.
struct Journal {
  JournalHead Head;
  std::map<int, std::string> Rows;  ///< by number, each as it was written last
  std::set<int> Seams;              ///< the rows at which the run was continued
  std::size_t Damaged = 0;          ///< lines that are not whole; the last one, torn by the end, does not count
};

/// The lines of a journal: those before its rows, and that of a row. A row that comes again replaces the former one.
std::string HeadLines(const JournalHead& head);
std::string RowLine(int number, std::string_view values);
/// The line behind which a run that was continued goes on, with this row.
std::string SeamLine(int row);

/// Reads a journal. What is whole counts, whatever stands around it; one that ends within its head has no rows.
/// @return why it is none that can be read: another form, damage in its head, something else altogether
Result<Journal> ReadJournal(std::string bytes);

}  // namespace hylden
