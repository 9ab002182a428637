#pragma once

#include <string>
#include <string_view>

class QWidget;

namespace hylden {

/// Moves a window to its stored place ("left,top" in twips); one that no screen shows centres it.
void PlaceWindow(QWidget& window, std::string_view position);

/// The text that PlaceWindow reads back.
std::string WindowPosition(const QWidget& window);

}  // namespace hylden
