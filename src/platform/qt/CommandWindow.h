#pragma once

#include <QPointer>

class QWidget;

namespace hylden {

/// While it lives, a command of this window runs: boxes stand above the window, whichever one is active. The manual or
/// the bench panel may be, and would take a question about the work along when it closes.
class CommandWindow {
 public:
  explicit CommandWindow(QWidget& window);
  ~CommandWindow();
  CommandWindow(const CommandWindow&) = delete;
  CommandWindow& operator=(const CommandWindow&) = delete;

  /// The window that a box belongs to now: the modal one, which locks all others; else the window whose command began
  /// last and that can be seen, or one of its own that stays on top; else the active one. Null when there is none.
  static QWidget* ForBox();
  /// The window whose command began last and runs; null when none does.
  static QWidget* OfCommand();

 private:
  CommandWindow* outer_;
  QPointer<QWidget> window_;
};

}  // namespace hylden
