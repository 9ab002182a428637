#pragma once

#include <string>
#include <string_view>

#include "shell/Shell.h"
#include "text/RecordFile.h"

namespace hylden {

/// Loads a definition; a failure is reported. Fields read before a failure keep their new values.
template <class Definition>
bool LoadDefinition(Shell& shell, const std::string& path, Definition& definition, std::string_view context) {
  try {
    LoadRecord(path, definition);
    return true;
  } catch (const std::exception& error) {
    shell.ReportError(error, context, path);
    return false;
  }
}

/// Saves a definition; a failure is reported and leaves the old file whole.
template <class Definition>
bool SaveDefinition(Shell& shell, const std::string& path, const Definition& definition, std::string_view context) {
  try {
    SaveRecord(path, definition);
    return true;
  } catch (const std::exception& error) {
    shell.ReportError(error, context, path);
    return false;
  }
}

}  // namespace hylden
