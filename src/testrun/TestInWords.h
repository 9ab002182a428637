#pragma once

#include <string>
#include <utility>
#include <vector>

namespace hylden {

struct CalInfoRec;
struct TestDefinition;

/// What a thing is, and its value in words: for a reader who does not know the program.
using WordEntries = std::vector<std::pair<std::string, std::string>>;

/// A file without its directories, for a reader elsewhere.
std::string FileNameOf(const std::string& path);
/// "1 step", "67 steps".
std::string CountText(std::size_t count, const std::string& what);

/// A test definition with all that is in use of it, in the order in which the test goes.
WordEntries TestInWords(const TestDefinition& test);
/// "amplitude modulation, 1 kHz, 80 %"; "no modulation".
std::string ModulationText(const TestDefinition& test);
/// What a calibration record tells of itself.
WordEntries CalibrationInWords(const CalInfoRec& calibration);
/// The level of a record: "10 V (140.0 dBµV)", or that of its file.
std::string CalibratedLevelText(const CalInfoRec& calibration);

}  // namespace hylden
