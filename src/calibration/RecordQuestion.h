#pragma once

#include <string>

namespace hylden {

class Dialogs;
class INISettings;
struct FileRequest;

/// How a file for a calibration record is asked for.
/// @param name  that is proposed
FileRequest RecordRequest(INISettings& settings, const std::string& name = {});

/// Asks before a description is replaced that lies beside a new data file of a calibration record.
bool MayReplaceInfo(Dialogs& dialogs, const std::string& dataFile);

}  // namespace hylden
