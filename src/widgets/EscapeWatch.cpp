#include "widgets/EscapeWatch.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenuBar>
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
  const bool menu = QApplication::activePopupWidget() || qobject_cast<QMenuBar*>(watched);
  const auto* const widget = qobject_cast<const QWidget*>(watched);
  if (menu || !widget || !isOurs_(*widget->window())) return false;
  event->accept();
  // Held down since it closed a menu or a text box, the key means no run.
  if (!asked && !static_cast<QKeyEvent*>(event)->isAutoRepeat()) onEscape_();
  return true;
}

}  // namespace hylden
