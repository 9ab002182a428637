#pragma once

#include <string>

namespace hylden {

/// Where the program keeps its settings and finds its help: the directory named by HYLDEN_HOME; else the executable's
/// own when it can be written; else the user's configuration directory for hylden, which is made when it is missing.
/// Without a trailing separator.
std::string ProgramDirectory();

}  // namespace hylden
