#pragma once

#include <cstdio>
#include <filesystem>

namespace hylden {

// What was written is in the machine's memory at first: a power cut loses it, and may leave a file of the right name
// and no content. These return when it is on the disk.

/// @return 0, or the number of the error; a file that has no disk below it needs none
int SyncFile(std::FILE* file);
/// The names in a folder. @return 0, or the number of the error; a folder that can't be synced on its file system, or
/// not be read by this user, is left to the system
int SyncFolder(const std::filesystem::path& folder);

}  // namespace hylden
