#pragma once

#include <string>

namespace hylden {

class Shell;

/// Whether a demo station came with the program.
bool HasDemoStation(const std::string& sharedDirectory);

/// Copies the demo station that came with the program, with settings that choose the simulated bench, into a directory.
/// A file that is there already is the user's, and stays. @throws std::exception when it can't be copied
void CopyDemoStation(const std::string& sharedDirectory, const std::string& directory);

/// Copies the demo station to the user's files and starts a second program on it, on the simulated bench: the present
/// station is not touched, nor its bus. What fails is told.
void OpenDemoStation(Shell& shell);

}  // namespace hylden
