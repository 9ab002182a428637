#include "calibration/RecordQuestion.h"

#include <filesystem>
#include <optional>
#include <system_error>

#include "documents/SaveCal.h"
#include "platform/Dialogs.h"
#include "run/RunQuestions.h"
#include "shell/INISettings.h"

namespace hylden {

FileRequest RecordRequest(INISettings& settings, const std::string& name) {
  return {"Enter Calibration Filename", "Calibration File (*.cal)|*.cal", settings.GetDataDir(datakind::kCalibrations),
          name};
}

bool MayReplaceInfo(Dialogs& dialogs, const std::string& dataFile) {
  const std::optional<std::string> infoFile = InfoFileBeside(dataFile);
  std::error_code ignored;
  // Where the data file is there, too, the file dialog has asked about the record.
  if (!infoFile || !std::filesystem::exists(*infoFile, ignored) || std::filesystem::exists(dataFile, ignored))
    return true;
  return dialogs.Show({*infoFile + " exists. Replace it?", question::kSaveCalibration, MessageIcon::Question,
                       MessageButtons::YesNo}) == MessageAnswer::Yes;
}

}  // namespace hylden
