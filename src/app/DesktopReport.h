#pragma once

#include <optional>
#include <string>
#include <vector>

namespace hylden {

/// Makes the report of a run if the arguments ask for one: without windows, and without a screen.
/// @return the exit status (0 made, 1 failed, 2 wrong arguments), after a message; nothing where they ask for something
/// else
std::optional<int> AnswerReport(const std::vector<std::string>& arguments);

}  // namespace hylden
