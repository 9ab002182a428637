#include "shell/INISettings.h"

#include <utility>

#include "text/ExistingPath.h"

namespace hylden {

namespace {

/// Without the trailing separator; a root keeps its own.
std::string DirectoryName(std::string path) {
  const auto isRoot = [](const std::string& p) { return p.size() == 1 || (p.size() == 3 && p[1] == ':'); };
  while ((path.ends_with('/') || path.ends_with('\\')) && !isRoot(path)) path.pop_back();
  return path;
}

}  // namespace

INISettings::INISettings(Directories directories)
    : directories_(std::move(directories)), store_(DirectoryName(directories_.Program), "hylden", directories_.Common) {
  directories_.Program = DirectoryName(directories_.Program);
  directories_.Data = DirectoryName(directories_.Data);
  store_.Init("Hylden", 1);
}

template <class Value, class Read>
Value INISettings::Guarded(Value fallback, Read read) {
  try {
    fallback = read();
  } catch (const SettingError& error) {
    Remember(unreadable_, "The settings can't be read; the program goes on with its defaults.\r\n" + store_.PathRead() +
                              "\r\n" + error.Description());
  }
  TellTroubles();
  return fallback;
}

void INISettings::Remember(Trouble& trouble, const std::string& text) {
  if (trouble.Text.empty()) trouble.Text = text;
}

void INISettings::TellTroubles() {
  for (Trouble* const trouble : {&unreadable_, &notKept_}) {
    if (trouble->Told || trouble->Text.empty() || !onTrouble) continue;
    trouble->Told = true;  // what shows it may ask for settings
    trouble->Told = onTrouble(trouble->Text);
  }
}

std::string INISettings::Get(const std::string& section, const std::string& key, const std::string& fallback) {
  return Guarded(fallback, [&] { return store_.GetSettingStr(section, key, fallback); });
}

std::vector<std::pair<std::string, std::string>> INISettings::GetAll(const std::string& section) {
  return Guarded(std::vector<std::pair<std::string, std::string>>(), [&] { return store_.GetSettingAll(section); });
}

void INISettings::SaveAll(const std::string& section, const std::vector<std::pair<std::string, std::string>>& values) {
  if (!IsKept(section, values))
    Remember(notKept_, "A setting could not be kept: this file can't be written.\r\n" + store_.Path());
  TellTroubles();
}

void INISettings::SaveQuietly(const std::string& section,
                              const std::vector<std::pair<std::string, std::string>>& values) {
  (void)IsKept(section, values);
}

bool INISettings::IsKept(const std::string& section, const std::vector<std::pair<std::string, std::string>>& values) {
  try {
    return store_.SaveSettings(section, values);
  } catch (const SettingError&) {
    return false;
  }
}

std::string INISettings::GetDataDir(std::string_view kind) {
  std::string chosen = Get(std::string(kind), "Dir", "");
  return chosen.empty() ? FilesDirectory() : chosen;
}

void INISettings::SaveDataDir(std::string_view kind, const std::string& path) {
  Save(std::string(kind), "Dir", path);
}

std::string INISettings::GetDefaultEquipFile() {
  const std::string name = Get("Equip", "File", "");
  const std::string path = PathNamedIn(directories_.Program + "/", name);
  // Settings that were taken over still mean the files beside the administrator's.
  return path != name || directories_.Common.empty() ? path : PathNamedIn(directories_.Common + "/", name);
}

void INISettings::SaveDefaultEquipFile(const std::string& path) {
  Save("Equip", "File", path);
}

std::int16_t INISettings::GetLogToFile() {
  return Guarded(std::int16_t{0}, [&] { return store_.GetSettingInt("System", "LogToFile", 0); });
}

std::string INISettings::GetFormPosition(std::string_view window) {
  return Get(std::string(window), "Position", "");
}

void INISettings::SaveFormPosition(std::string_view window, const std::string& position) {
  Save(std::string(window), "Position", position);
}

}  // namespace hylden
