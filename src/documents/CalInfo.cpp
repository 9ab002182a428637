#include "documents/CalInfo.h"

#include "documents/clsCalFile.h"
#include "text/RecordFile.h"

namespace hylden {

Done CalInfo::LoadDef(const std::string& path) {
  if (path.empty()) return Because("WARNING: \rNo calibration filename specified\rin test definition file.");
  return Trapped("CalInfo.LoadDef", path, [&] {
    SettleRecord(path);
    CalInfoRec read;
    LoadRecord(path, read);
    Record = std::move(read);
  });
}

}  // namespace hylden
