#include "platform/qt/CommandWindow.h"

#include <QApplication>
#include <QWidget>

namespace hylden {

namespace {

/// Windows belong to the one application, and so does what runs in them.
CommandWindow* innermost = nullptr;

/// A window that stays on top of its parent would cover the parent's boxes.
QWidget* OnTopOf(QWidget* window) {
  for (QWidget* const child : window->findChildren<QWidget*>())
    if (child->isWindow() && child->isVisible() && child->windowFlags().testFlag(Qt::WindowStaysOnTopHint))
      return child;
  return window;
}

}  // namespace

CommandWindow::CommandWindow(QWidget& window) : outer_(innermost), window_(&window) {
  innermost = this;
}

CommandWindow::~CommandWindow() {
  innermost = outer_;
}

QWidget* CommandWindow::OfCommand() {
  return innermost ? innermost->window_.data() : nullptr;
}

QWidget* CommandWindow::ForBox() {
  if (QWidget* const modal = QApplication::activeModalWidget()) return modal;
  for (const CommandWindow* command = innermost; command; command = command->outer_)
    if (command->window_ && command->window_->isVisible()) return OnTopOf(command->window_);
  return QApplication::activeWindow();
}

}  // namespace hylden
