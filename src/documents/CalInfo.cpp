#include "documents/CalInfo.h"

#include <utility>

#include "shell/Shell.h"
#include "text/RecordFile.h"

namespace hylden {

bool CalInfo::LoadDef(const std::string& path) {
  if (path.empty()) {
    shell_.dialogs.Tell("WARNING: \rNo calibration filename specified\rin test definition file.");
    return false;
  }
  try {
    CalInfoRec read;
    LoadRecord(path, read);
    Record = std::move(read);
  } catch (const std::exception& error) {
    shell_.ReportError(error, "CalInfo.LoadDef", path);
    return false;
  }
  return true;
}

}  // namespace hylden
