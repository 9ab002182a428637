#include "widgets/ThemeColors.h"

namespace hylden {

bool IsDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

QColor HighlightRed(const QPalette& palette) {
  return IsDark(palette) ? QColor(0xff, 0x6b, 0x61) : QColor(0xc0, 0x00, 0x00);
}

}  // namespace hylden
