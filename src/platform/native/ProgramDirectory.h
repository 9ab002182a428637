#pragma once

#include <string>

#include "platform/Directories.h"

namespace hylden {

/// Where the program keeps its settings and finds its help: the directory named by HYLDEN_HOME; else the executable's
/// own when it can be written; else the user's configuration directory for hylden, which is made when it is missing.
/// Without a trailing separator.
std::string ProgramDirectory();

/// The program directory; where that is the hidden one of the user, the data directories start in the folder "Hylden"
/// of the user's documents, which is made when it is missing, and the settings beside the executable serve a user who
/// has none.
Directories ProgramDirectories();
/// The same for a program whose executable lies elsewhere.
Directories ProgramDirectories(const std::string& executableDirectory);

}  // namespace hylden
