#pragma once

#include <string>
#include <vector>

namespace hylden {

struct CalInfoRec;
struct TestDefinition;

/// The page spells out the modulation lines that the text, which goes into run data, has in short.
enum class SummaryForm { Text, Page };

/// The lines of the "Test Run Parameters" summary of a test and the calibration that it replays.
std::vector<std::string> TestSummaryLines(const TestDefinition& test, const CalInfoRec& calInfo, SummaryForm form);

}  // namespace hylden
