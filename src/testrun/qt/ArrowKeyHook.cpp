#include "testrun/qt/ArrowKeyHook.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <optional>
#include <utility>

#include "platform/Dialogs.h"

namespace hylden {

namespace {

std::optional<ArrowKey> ArrowOf(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Left:
      return ArrowKey::Left;
    case Qt::Key_Right:
      return ArrowKey::Right;
    case Qt::Key_Up:
      return ArrowKey::Up;
    case Qt::Key_Down:
      return ArrowKey::Down;
    default:
      return std::nullopt;
  }
}

}  // namespace

ArrowKeyHook::ArrowKeyHook(std::function<void(ArrowKey)> onKey) : onKey_(std::move(onKey)) {}

bool ArrowKeyHook::Install(Dialogs& dialogs) {
  // The installed hook hangs on the application, where the next one finds it.
  if (QCoreApplication::instance()->findChild<ArrowKeyHook*>({}, Qt::FindDirectChildrenOnly)) {
    dialogs.Tell("Don't hook WH_KEYBOARD twice or you will be unable to unhook it.");
    return false;
  }
  setParent(QCoreApplication::instance());
  QCoreApplication::instance()->installEventFilter(this);
  return true;
}

void ArrowKeyHook::Remove() {
  if (!parent()) return;
  parent()->removeEventFilter(this);
  setParent(nullptr);
}

bool ArrowKeyHook::eventFilter(QObject*, QEvent* event) {
  // The override is asked for first: accepted, no shortcut takes the press away.
  const bool asked = event->type() == QEvent::ShortcutOverride;
  if (!asked && event->type() != QEvent::KeyPress) return false;
  const auto arrow = ArrowOf(*static_cast<QKeyEvent*>(event));
  if (!arrow) return false;
  event->accept();
  if (!asked) onKey_(*arrow);
  return true;
}

}  // namespace hylden
