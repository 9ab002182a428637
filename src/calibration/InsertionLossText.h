#pragma once

#include <string>
#include <vector>

#include "shell/Failure.h"

namespace hylden {

class INISettings;
struct CablePoint;

/// The text of an insertion-loss file (.los): a form to fill in by hand, then one line for each point. It serves as a
/// factor table.
/// @param fileName  the full path, which the first line shows
std::string InsertionLossText(const std::vector<CablePoint>& points, const std::string& fileName);

/// How a file for an insertion loss is asked for.
/// @param name  that is proposed
FileRequest InsertionLossRequest(INISettings& settings, const std::string& name = {});

/// Writes an insertion-loss file; a failure leaves an old file whole.
Done FileInsertionLoss(const std::vector<CablePoint>& points, const std::string& path);

}  // namespace hylden
