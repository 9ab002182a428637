#include "calibration/FactorLoading.h"

#include "measure/InterpClass.h"
#include "shell/Shell.h"

namespace hylden {

bool LoadCoveringTable(Shell& shell, InterpClass& table, const std::string& path, const FrequencyRange& range,
                       const char* loadText, const char* coverText) {
  const bool loaded = table.InitInterp(path);
  if (loaded && table.MinFreq() <= range.Lowest && table.MaxFreq() >= range.Highest) return true;
  shell.dialogs.Tell(loaded ? coverText : loadText);
  return false;
}

}  // namespace hylden
