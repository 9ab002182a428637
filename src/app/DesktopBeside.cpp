#include "app/DesktopBeside.h"

#include <QApplication>
#include <QWidget>
#include <QWindow>

namespace hylden {

void StandBeside(QWidget& window) {
  window.winId();  // the handle is there only once the window has been made
  const QWidget* const modal = QApplication::activeModalWidget();
  window.windowHandle()->setTransientParent(modal ? modal->windowHandle() : nullptr);
}

void ShowBeside(QWidget& window) {
  StandBeside(window);
  window.show();
  window.raise();
  window.activateWindow();
}

}  // namespace hylden
