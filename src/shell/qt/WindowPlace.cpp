#include "shell/qt/WindowPlace.h"

#include <QScreen>
#include <QWidget>
#include <cmath>

#include "shell/FormPosition.h"

namespace hylden {

namespace {

double TwipsPerPixel(const QScreen& screen) {
  return kTwipsPerInch / screen.logicalDotsPerInch();
}

TwipSize InTwips(const QSize& size, double twipsPerPixel) {
  return {size.width() * twipsPerPixel, size.height() * twipsPerPixel};
}

}  // namespace

void PlaceWindow(QWidget& window, std::string_view position) {
  const QScreen& screen = *window.screen();
  const double scale = TwipsPerPixel(screen);
  const QSize size = window.isVisible() ? window.frameGeometry().size() : window.size();
  const auto place = SetFormPosition(position, InTwips(size, scale), InTwips(screen.size(), scale));
  if (place)
    window.move(static_cast<int>(std::lround(place->left / scale)), static_cast<int>(std::lround(place->top / scale)));
}

std::string WindowPosition(const QWidget& window) {
  const double scale = TwipsPerPixel(*window.screen());
  return FormPositionText({window.x() * scale, window.y() * scale});
}

}  // namespace hylden
