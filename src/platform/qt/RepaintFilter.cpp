#include "platform/qt/RepaintFilter.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWindow>
#include <new>

namespace hylden {

namespace {

bool Halts(const QObject* object) {
  return object && object->isWidgetType() && object->property(kHaltsProperty).toBool();
}

QWidget* WidgetOf(const QObject* window) {
  for (QWidget* const widget : QApplication::topLevelWidgets())
    if (widget->windowHandle() == window) return widget;
  return nullptr;
}

/// Whether a mouse event of a window is one for its Halt button: there, or where it was pressed there before.
bool IsAtHalt(const QObject* window, const QPoint& position) {
  QWidget* const widget = WidgetOf(window);
  if (!widget) return false;
  if (Halts(widget->childAt(position))) return true;
  for (const QAbstractButton* const button : widget->findChildren<QAbstractButton*>())
    if (Halts(button) && button->isDown()) return true;
  return false;
}

/// Escape is Halt in the windows of a run, and nothing but that now; Space presses a Halt button that has the keys.
bool IsHaltKey(const QObject* watched, const QKeyEvent& event) {
  if (event.key() == Qt::Key_Escape) return true;
  const QWidget* const window = watched->isWindowType() ? WidgetOf(watched) : nullptr;
  return window && event.key() == Qt::Key_Space && Halts(window->focusWidget());
}

}  // namespace

RepaintFilter::RepaintFilter() {
  QCoreApplication::instance()->installEventFilter(this);
}

RepaintFilter::~RepaintFilter() {
  QCoreApplication::instance()->removeEventFilter(this);
  if (auto* const quit = quits_ ? new (std::nothrow) QEvent(QEvent::Quit) : nullptr)
    QCoreApplication::postEvent(QCoreApplication::instance(), quit);
}

bool RepaintFilter::eventFilter(QObject* watched, QEvent* event) {
  if (Halts(watched)) return false;
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
      return !watched->isWindowType() || !IsAtHalt(watched, static_cast<QMouseEvent*>(event)->position().toPoint());
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
      return !IsHaltKey(watched, *static_cast<QKeyEvent*>(event));
    case QEvent::Timer:
      return !watched->isWindowType();  // a window's own brings on its painting
    case QEvent::Close:
      event->ignore();
      return true;
    case QEvent::Quit:
      quits_ = true;
      return true;
    case QEvent::Shortcut:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::NonClientAreaMouseButtonPress:
    case QEvent::NonClientAreaMouseButtonRelease:
    case QEvent::NonClientAreaMouseButtonDblClick:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::InputMethod:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
    case QEvent::FileOpen:
    case QEvent::SockAct:
    case QEvent::SockClose:
      return true;
    default:
      return false;
  }
}

}  // namespace hylden
