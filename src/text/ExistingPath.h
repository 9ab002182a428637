#pragma once

#include <string>

namespace hylden {

/// The path as it exists on this machine: unchanged when it exists; otherwise, with "\" taken as separator too, a match
/// without regard to case; unchanged again when there is none.
std::string ExistingPath(const std::string& path);

/// Where a file is that another file names. A relative name that leads nowhere from the working directory is looked for
/// beside the file that names it. @return the name itself where it exists, or is found in neither place
std::string PathNamedIn(const std::string& namingFile, const std::string& name);

/// The path from the root of the machine, with "/" between its parts where it was relative: such a one begins in the
/// working directory.
std::string FullPath(const std::string& path);

/// The directory of a path, with the separator at its end; empty when the path has none.
std::string DirectoryOf(const std::string& path);

}  // namespace hylden
