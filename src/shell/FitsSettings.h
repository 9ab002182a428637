#pragma once

#include <string>

namespace hylden {

class Shell;

/// Whether the settings can keep the path: they hand back no more than 127 characters of a value. @return false after
/// a message
bool FitsSettings(Shell& shell, const std::string& path);

}  // namespace hylden
