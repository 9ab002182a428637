#pragma once

#include <string>

namespace hylden {

class InterpClass;
class Shell;

/// The frequencies that a run needs of its tables, MHz.
struct FrequencyRange {
  double Lowest = 0, Highest = 0;
};

/// Loads a factor table, which has to cover the range.
/// @param loadText, coverText  what the operator is told when it can't be loaded, or doesn't cover the range
/// @return false after the message
bool LoadCoveringTable(Shell& shell, InterpClass& table, const std::string& path, const FrequencyRange& range,
                       const char* loadText, const char* coverText);

}  // namespace hylden
