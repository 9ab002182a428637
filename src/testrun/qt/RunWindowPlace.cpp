#include "testrun/qt/RunWindowPlace.h"

#include <QWidget>

#include "shell/Shell.h"
#include "shell/qt/WindowPlace.h"

namespace hylden {

bool RestorePlace(Shell& shell, std::string_view windowKey, QWidget& window) {
  try {
    const std::string position = shell.settings.GetFormPosition(windowKey);
    PlaceWindow(window, position);
    return !position.empty();
  } catch (const RuntimeError&) {
    return false;
  }
}

void RememberPlace(Shell& shell, std::string_view windowKey, const QWidget& window) {
  try {
    shell.settings.SaveFormPosition(windowKey, WindowPosition(window));
  } catch (const RuntimeError&) {
    // The next one opens where it was designed.
  }
}

}  // namespace hylden
