#include "shell/FitsSettings.h"

#include "shell/Shell.h"

namespace hylden {

bool FitsSettings(Shell& shell, const std::string& path) {
  if (clsSetting::Fits(path)) return true;
  shell.dialogs.Tell("The path is longer than 127 characters and can't be kept in the settings:\r\n" + path,
                     MessageIcon::Exclamation);
  return false;
}

}  // namespace hylden
