#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "documents/CalInfo.h"
#include "documents/EquipRecord.h"
#include "documents/TestDefinition.h"
#include "documents/clsCalFile.h"
#include "shell/Failure.h"

namespace hylden {

class RunData;

/// Who tested what for whom: asked of the operator, for reports. All of it may be empty.
struct RunParticulars {
  std::string Lab, Customer, Product, Operator;
  std::string Ambient;               ///< "23 °C, 45 %"
  std::vector<std::string> Remarks;  ///< lines
  bool operator==(const RunParticulars&) const = default;
};

/// A document as it was when the run began.
template <class Record>
struct DocumentCopy {
  std::string File;  ///< full path
  Record Is = {};
};

/// An instrument that the test drove.
struct RunInstrument {
  std::string Role;  ///< "signal generator"
  std::string Name;  ///< of its definition
  std::string File;
};

/// How a run came to its end, as the information beside it says.
namespace runend {
inline constexpr std::string_view kFinished = "finished", kEndedEarly = "ended early", kRecovered = "recovered";
}

/// What run data do not hold (.runinfo): what the run was made of, when and where it was, and whom it was for.
struct RunInfo {
  std::string Program;          ///< name and version
  std::string Notice;           ///< that no instrument was driven; empty otherwise
  std::string User;             ///< the account
  std::string Started, Ended;   ///< local date and time, "2026-11-23 18:35:07"
  std::string Outcome;          ///< one of runend
  double PredictedSeconds = 0;  ///< what the run was to take; 0: not known
  double ActualSeconds = 0;     ///< what it took, without manual mode
  int PlannedSteps = 0;
  int CompletedSteps = 0;  ///< of those planned, not counting repetitions; 0: not known
  std::set<int> Seams;     ///< the rows at which it was continued
  RunParticulars Particulars;
  std::optional<DocumentCopy<TestDefinition>> Test;
  std::optional<DocumentCopy<EquipRecord>> Station;
  std::optional<DocumentCopy<CalInfoRec>> Calibration;
  std::string CalibrationDate;  ///< of the record's file
  std::vector<CalPoint> CalPoints;
  std::vector<RunInstrument> Instruments;
  std::map<int, std::string> RowTimes;  ///< of complete rows, by their number
};

/// The name of the information beside a run data file: "radio.run" has "radio.runinfo".
std::string RunInfoFile(const std::string& runFile);

/// By which the information names run data.
std::string RunChecksum(const RunData& data);

/// The text of a .runinfo.
/// @param runText  what the run data file holds: the information names it by its checksum
std::string RunInfoText(RunInfo info, std::string_view runText);

/// What lies beside a run data file.
struct RunInfoBeside {
  std::optional<RunInfo> Info;  ///< nothing where there is none, or none that can be read
  /// Why it can't be read, wholly or in part, or that it is of other run data; empty otherwise.
  std::string Trouble = {};
  std::string Checksum = {};  ///< of the run data then
};
/// @param runText  what the run data file holds now
RunInfoBeside ReadRunInfo(const std::string& runFile, std::string_view runText);

/// Writes the information beside a run data file that has just been written.
/// @param checksum  of the run data that it is of, where they may have changed since: it is then refused
Done FileRunInfo(const RunInfo& info, const std::string& runFile, const std::string& checksum = {});

}  // namespace hylden
