#include "app/DesktopApplication.h"

#include "instruments/Gpib.h"

namespace hylden {

bool DesktopApplication::notify(QObject* receiver, QEvent* event) {
  try {
    return QApplication::notify(receiver, event);
  } catch (const ProgramEnd&) {
    if (onProgramEnd) onProgramEnd();
  } catch (const std::exception& error) {
    if (onException) onException(error);
  }
  return true;
}

}  // namespace hylden
