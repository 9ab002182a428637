#pragma once

#include <filesystem>
#include <string>

namespace hylden {

/// The name of a file that this process writes before it stands in another one's place. It says whose it is, so that
/// a process which was killed meanwhile can be cleaned up after.
/// @param number  tells apart what one process writes into one folder
std::string TemporaryName(int number);

/// Removes from a folder what processes of this computer that are gone have left there under such names. What can't be
/// removed stays.
void RemoveLeftovers(const std::filesystem::path& folder);

}  // namespace hylden
