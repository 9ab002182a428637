#include "widgets/WindowPlace.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <cmath>

#include "shell/FormPosition.h"
#include "shell/Shell.h"

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

/// Puts a window right, once, that the window manager has put by its contents where its frame should be: remembered by
/// its frame, it would creep by a title bar at each opening.
class FrameKeeper : public QObject {
 public:
  explicit FrameKeeper(QWidget& window) : QObject(&window), window_(window), place_(window.pos()) {
    window.installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    QWindow* const handle = window_.windowHandle();
    if (watched == &window_ && event->type() == QEvent::Show) handle->installEventFilter(this);
    if (watched != handle || event->type() != QEvent::Expose || !handle->isExposed()) return false;
    const QMargins frame = handle->frameMargins();
    if (handle->position() == place_) handle->setPosition(place_ + QPoint(frame.left(), frame.top()));
    handle->removeEventFilter(this);
    window_.removeEventFilter(this);
    deleteLater();
    return false;
  }

 private:
  QWidget& window_;
  QPoint place_;
};

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

QPoint PlaceBeside(const QRect& runWindow, QSize size, const QRect& screen) {
  // The title bars of both, and the notice of the bench, may come on top of their sizes.
  constexpr int kGap = 30, kFrame = 60;
  const int width = size.width() + kGap, height = size.height() + kFrame;
  const QPoint corner = runWindow.bottomRight();
  if (corner.y() + kGap + height <= screen.bottom()) return {corner.x() - width, corner.y() + kGap};
  if (corner.x() + kGap + width <= screen.right()) return {corner.x() + kGap, corner.y() - height};
  return corner - QPoint(width + 30, height);
}

void KeepFrame(QWidget& window) {
  new FrameKeeper(window);
}

bool RestorePlace(Shell& shell, std::string_view windowKey, QWidget& window) {
  try {
    return RestorePlace(shell.settings.GetFormPosition(windowKey), window);
  } catch (const RuntimeError&) {
    return false;
  }
}

bool RestorePlace(const std::string& position, QWidget& window) {
  PlaceWindow(window, position);
  if (!position.empty()) KeepFrame(window);
  return !position.empty();
}

void RememberPlace(Shell& shell, std::string_view windowKey, const QWidget& window) {
  RememberPlace(shell, windowKey, WindowPosition(window));
}

void RememberPlace(Shell& shell, std::string_view windowKey, const std::string& position) {
  try {
    if (!position.empty()) shell.settings.SaveFormPosition(windowKey, position);
  } catch (const RuntimeError&) {
    // The next one opens where it was designed.
  }
}

}  // namespace hylden
