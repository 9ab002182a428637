#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "calibration/CableSetup.h"

namespace hylden {

/// What hylden-run was asked for.
struct RunOptions {
  enum class Job { Test, Calibration, CableLoss, BusInfo, Recovery, Export };

  Job What = Job::Test;
  std::string EquipmentFile, OutputFile;        ///< may be empty for BusInfo
  std::string TraceFile;                        ///< for all that goes over the bus; empty: none
  std::string TestFile;                         ///< of a test
  std::string SetupFile;                        ///< of a level calibration
  std::string CouplingFactor;                   ///< of its user-defined coupling method, dB; empty: none given
  std::string Journal;                          ///< to be recovered; empty: all are listed
  bool Discard = false;                         ///< that journal, unsaved
  std::string Resume;                           ///< the journal of the run that is continued; empty: none is
  bool KeepJournal = false;                     ///< of a run that ends early, though its rows are saved
  FormEntries Cable = EntriesOf(CableSetup());  ///< of an insertion-loss calibration
  std::string RunFile, CsvFile;                 ///< of an export: run data, and the table that is made of them
  bool DecimalComma = false;                    ///< in that table
  bool UseBench = false;
  std::string BenchFile;  ///< empty: the bench's ordinary values
  bool VirtualTime = false;
  bool Yes = false;
  std::optional<std::int32_t> Seed = {};  ///< of the bench's reading noise
};

/// The program's exit status.
enum class ExitState : int { Finished = 0, Failed = 1, Usage = 2, Halted = 3 };

/// Does a job on a terminal or without one: a test or a calibration, from its files to the file that it makes, or a
/// look at the bus.
ExitState RunOnConsole(const RunOptions& options);

}  // namespace hylden
