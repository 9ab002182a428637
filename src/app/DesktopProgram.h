#pragma once

#include <string>
#include <vector>

namespace hylden {

class DesktopApplication;

/// The desktop program on this machine, from its arguments to its end.
/// @return the exit status
int RunDesktop(DesktopApplication& application, const std::vector<std::string>& arguments);

}  // namespace hylden
