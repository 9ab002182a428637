#include "shell/INISettings.h"

#include <utility>

namespace hylden {

namespace {

/// Without the trailing separator; a root keeps its own.
std::string DirectoryName(std::string path) {
  const auto isRoot = [](const std::string& p) { return p.size() == 1 || (p.size() == 3 && p[1] == ':'); };
  while ((path.ends_with('/') || path.ends_with('\\')) && !isRoot(path)) path.pop_back();
  return path;
}

}  // namespace

INISettings::INISettings(std::string programDirectory)
    : programDirectory_(DirectoryName(std::move(programDirectory))), store_(programDirectory_, "hylden") {
  store_.Init("Hylden", 1);
}

std::string INISettings::GetDataDir(std::string_view kind) {
  return store_.GetSettingStr(std::string(kind), "Dir", programDirectory_);
}

void INISettings::SaveDataDir(std::string_view kind, const std::string& path) {
  store_.SaveSettingStr(std::string(kind), "Dir", path);
}

std::string INISettings::GetDefaultEquipFile() {
  return store_.GetSettingStr("Equip", "File", "");
}

void INISettings::SaveDefaultEquipFile(const std::string& path) {
  store_.SaveSettingStr("Equip", "File", path);
}

std::int16_t INISettings::GetLogToFile() {
  return store_.GetSettingInt("System", "LogToFile", 0);
}

std::string INISettings::GetFormPosition(std::string_view window) {
  return store_.GetSettingStr(std::string(window), "Position", "");
}

void INISettings::SaveFormPosition(std::string_view window, const std::string& position) {
  store_.SaveSettingStr(std::string(window), "Position", position);
}

}  // namespace hylden
