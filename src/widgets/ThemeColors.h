#pragma once

#include <QColor>
#include <QPalette>

namespace hylden {

/// Whether the theme writes light text on a dark ground.
bool IsDark(const QPalette& palette);

/// Red that is readable on the theme's ground: for values that need the operator's eye.
QColor HighlightRed(const QPalette& palette);

}  // namespace hylden
