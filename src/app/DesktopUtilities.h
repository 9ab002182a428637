#pragma once

#include <string>
#include <vector>

#include "documents/qt/frmEquipment.h"

namespace hylden {

class Station;

/// What was found of something that the program needs of its computer.
struct SystemFinding {
  std::string What, State;
  bool IsGood = true;
};
/// Looks over system, program and data directories, manual and bus.
std::vector<SystemFinding> CheckSystem(Station& station, const std::string& helpFile);

/// A desktop entry that starts a program on an equipment file and, if one is named, a test definition.
std::string ShortcutText(const std::string& program, const std::string& equipFile, const std::string& testFile);

/// The utilities of the equipment form's menu. What they come to is told.
void RunUtility(Utility utility, Station& station, const std::string& helpFile);

}  // namespace hylden
