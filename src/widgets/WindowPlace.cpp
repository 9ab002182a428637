#include "widgets/WindowPlace.h"

#include <QApplication>
#include <QEvent>
#include <QMainWindow>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabWidget>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>
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

/// What a window system adds around a window, where no window of the program tells.
constexpr QMargins kUsualFrame{2, 30, 2, 2};

QMargins FrameOf(const QWidget& window) {
  const QRect frame = window.frameGeometry(), contents = window.geometry();
  return {contents.left() - frame.left(), contents.top() - frame.top(), frame.right() - contents.right(),
          frame.bottom() - contents.bottom()};
}

/// Contents that are scrolled up and down where they do not fit; the one that has the keys comes into sight.
class TightArea : public QScrollArea {
 public:
  explicit TightArea(QWidget* parent) : QScrollArea(parent) {
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
      if (now && widget()->isAncestorOf(now)) ensureWidgetVisible(now);
    });
  }

  QSize minimumSizeHint() const override {
    constexpr int kFewestLines = 5;
    return {widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width(),
            fontMetrics().lineSpacing() * kFewestLines};
  }
  QSize sizeHint() const override { return widget()->sizeHint(); }
};

/// Nobody around goes on with the size that the contents had.
void ForgetSizes(QWidget& contents) {
  for (QWidget* around = &contents; around; around = around->isWindow() ? nullptr : around->parentWidget()) {
    if (around->layout()) around->layout()->invalidate();
    around->updateGeometry();
  }
}

/// The page stays what it is to its tab and its form; what lay on it lies in an area of its own.
void ScrollContents(QWidget& page) {
  auto* const area = new TightArea(&page);
  auto* const contents = new QWidget(area->viewport());  // within the window, so that the order of the boxes stays
  contents->setLayout(page.layout());
  area->setWidget(contents);
  contents->setAutoFillBackground(false);
  area->viewport()->setAutoFillBackground(false);
  auto* const layout = new QVBoxLayout(&page);
  layout->setContentsMargins({});
  layout->addWidget(area);
  ForgetSizes(page);
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

QRect PlaceOver(const QRect& caller, QSize size, const QRect& screen) {
  QRect place({}, size.boundedTo(screen.size()));
  place.moveCenter(caller.center());
  const QPoint last = screen.bottomRight() - QPoint(place.width(), place.height()) + QPoint(1, 1);
  place.moveTo(std::clamp(place.x(), screen.x(), last.x()), std::clamp(place.y(), screen.y(), last.y()));
  return place;
}

void ScrollWhatIsBeyond(QMainWindow& window, QSize room) {
  const auto fits = [&] { return window.minimumSizeHint().height() <= room.height(); };
  if (fits() || !window.centralWidget()) return;
  if (auto* const tight = dynamic_cast<HasTightLayout*>(&window)) {
    tight->Tighten();
    ForgetSizes(*window.centralWidget());
  }
  if (fits()) return;
  if (const auto* const tabs = window.findChild<QTabWidget*>())
    for (int page = 0; page < tabs->count(); ++page)
      if (tabs->widget(page)->layout()) ScrollContents(*tabs->widget(page));
  if (!fits() && window.centralWidget()->layout()) ScrollContents(*window.centralWidget());
}

void OpenOver(QMainWindow& window, const QWidget* caller) {
  const bool isPlaced = window.testAttribute(Qt::WA_Moved), isOver = !isPlaced && caller && caller->isVisible();
  const QScreen* screen = caller ? caller->screen() : window.screen();
  if (isPlaced)
    if (const QScreen* const there = QGuiApplication::screenAt(window.geometry().center())) screen = there;
  const QRect available = screen->availableGeometry();
  const QMargins frame = caller && caller->isVisible() ? FrameOf(*caller) : kUsualFrame;
  ScrollWhatIsBeyond(window, available.marginsRemoved(frame).size());
  const QSize wanted = window.size().expandedTo(window.minimumSizeHint()).grownBy(frame);
  const QRect asked(window.pos(), wanted);
  const QRect place = PlaceOver(isOver ? caller->frameGeometry() : asked, wanted, available);
  window.resize(place.size().shrunkBy(frame));
  if ((!isPlaced && !isOver) || window.isMaximized()) return;
  window.move(place.topLeft());
  KeepFrame(window);
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
