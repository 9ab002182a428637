#pragma once

#include <string>

namespace hylden {

/// An instrument's answer as a message shows it: in quotes, on one line, a question mark for what can't be shown.
std::string ShownAnswer(const std::string& answer);

}  // namespace hylden
