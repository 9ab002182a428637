#include "testrun/qt/ArrowKeyHook.h"

#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QMenuBar>
#include <optional>
#include <utility>

#include "platform/Dialogs.h"
#include "shell/qt/frmHelp.h"

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

bool NeedsArrows(const QWidget& widget) {
  const QWidget& window = *widget.window();
  return QApplication::activePopupWidget() || qobject_cast<const QMenuBar*>(&widget) ||
         qobject_cast<const QDialog*>(&window) || qobject_cast<const frmHelp*>(&window) ||
         widget.testAttribute(Qt::WA_InputMethodEnabled);  // takes text
}

/// Also on the way up from such a widget: what it leaves alone goes to its parents.
bool IsForOthers(const QWidget& widget) {
  const QWidget* const focus = widget.window()->focusWidget();
  return NeedsArrows(widget) || (focus && widget.isAncestorOf(focus) && NeedsArrows(*focus));
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

bool ArrowKeyHook::eventFilter(QObject* watched, QEvent* event) {
  // The override is asked for first: accepted, no shortcut takes the press away.
  const bool asked = event->type() == QEvent::ShortcutOverride;
  if (!asked && event->type() != QEvent::KeyPress) return false;
  const auto arrow = ArrowOf(*static_cast<QKeyEvent*>(event));
  const auto* const widget = qobject_cast<const QWidget*>(watched);
  // The window system's own windows pass the press on to the widget that has the focus.
  if (!arrow || !widget || IsForOthers(*widget)) return false;
  event->accept();
  if (!asked) onKey_(*arrow);
  return true;
}

}  // namespace hylden
