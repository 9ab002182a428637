#pragma once

#include <string_view>

class QWidget;

namespace hylden {

class Shell;

/// Puts a run window at its remembered place. @return false when there is none
bool RestorePlace(Shell& shell, std::string_view windowKey, QWidget& window);
/// Remembers where a run window is. Settings that can't be written lose the place and disturb no run.
void RememberPlace(Shell& shell, std::string_view windowKey, const QWidget& window);

}  // namespace hylden
