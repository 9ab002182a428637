#pragma once

#include <string>

namespace hylden {

/// "Hylden 1.1": the caption of the main menu.
std::string VersionTitle();

}  // namespace hylden
