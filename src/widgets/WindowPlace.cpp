#include "widgets/WindowPlace.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <cmath>

#include "shell/FormPosition.h"

namespace hylden {

namespace {

/// One scale for all screens: window places are those of the whole desktop.
double TwipsPerPixel() {
  return kTwipsPerInch / QGuiApplication::primaryScreen()->logicalDotsPerInch();
}

TwipSize InTwips(const QSize& size, double twipsPerPixel) {
  return {size.width() * twipsPerPixel, size.height() * twipsPerPixel};
}

/// The first one is where a window goes that has no place of its own.
std::vector<TwipScreen> Screens(const QWidget& window, double twipsPerPixel) {
  std::vector<TwipScreen> screens;
  const auto add = [&](const QScreen& screen) {
    const QRect area = screen.geometry();
    screens.push_back({{area.x() * twipsPerPixel, area.y() * twipsPerPixel}, InTwips(area.size(), twipsPerPixel)});
  };
  add(*window.screen());
  for (const QScreen* const screen : QGuiApplication::screens()) add(*screen);
  return screens;
}

}  // namespace

void PlaceWindow(QWidget& window, std::string_view position) {
  const double scale = TwipsPerPixel();
  const QSize size = window.isVisible() ? window.frameGeometry().size() : window.size();
  const auto place = SetFormPosition(position, InTwips(size, scale), Screens(window, scale));
  if (place)
    window.move(static_cast<int>(std::lround(place->left / scale)), static_cast<int>(std::lround(place->top / scale)));
}

std::string WindowPosition(const QWidget& window) {
  const double scale = TwipsPerPixel();
  return FormPositionText({window.x() * scale, window.y() * scale});
}

}  // namespace hylden
