#include "platform/qt/EscapeWatch.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMenu>
#include <utility>

namespace hylden {

EscapeWatch::EscapeWatch(std::function<bool(const QWidget&)> isOurs, std::function<void()> onEscape)
    : isOurs_(std::move(isOurs)), onEscape_(std::move(onEscape)) {}

void EscapeWatch::Start() {
  QCoreApplication::instance()->installEventFilter(this);
}

void EscapeWatch::Stop() {
  QCoreApplication::instance()->removeEventFilter(this);
}

bool EscapeWatch::eventFilter(QObject* watched, QEvent* event) {
  const bool asked = event->type() == QEvent::ShortcutOverride;
  if ((!asked && event->type() != QEvent::KeyPress) || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape)
    return false;
  if (qobject_cast<QMenu*>(watched)) {
    if (!asked) onEscape_();
    return false;  // the menu closes, too
  }
  const auto* const widget = qobject_cast<const QWidget*>(watched);
  if (!widget || !isOurs_(*widget->window())) return false;
  event->accept();
  if (!asked) onEscape_();
  return true;
}

}  // namespace hylden
