#pragma once

#include <string>
#include <vector>

namespace hylden {

struct CablePoint;

/// The text of an insertion-loss file (.los): a form to fill in by hand, then one line for each point. It serves as a
/// factor table.
/// @param fileName  the full path, which the first line shows
std::string InsertionLossText(const std::vector<CablePoint>& points, const std::string& fileName);

}  // namespace hylden
