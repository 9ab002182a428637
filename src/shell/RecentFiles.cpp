#include "shell/RecentFiles.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "shell/INISettings.h"

namespace hylden {

namespace {

constexpr char kSection[] = "RecentFiles";

bool Exists(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error);
}

}  // namespace

std::vector<std::string> RecentFiles::List() const {
  std::map<std::string, std::string> kept = Kept();
  std::vector<std::string> files;
  for (int number = 1; number <= kMost; ++number) {
    std::string& path = kept[Key(number)];
    if (!path.empty() && Exists(path)) files.push_back(std::move(path));
  }
  return files;
}

std::map<std::string, std::string> RecentFiles::Kept() const {
  std::map<std::string, std::string> kept;
  for (auto& [key, path] : settings_.GetAll(kSection)) kept.emplace(key, path);
  return kept;
}

bool RecentFiles::Add(const std::string& path) {
  if (!clsSetting::Fits(path)) return false;
  std::vector<std::string> files = List();
  if (path.empty() || (!files.empty() && files.front() == path)) return true;
  std::erase(files, path);
  files.insert(files.begin(), path);
  files.resize(kMost);
  std::map<std::string, std::string> kept = Kept();
  std::vector<std::pair<std::string, std::string>> changed;
  for (int number = 1; number <= kMost; ++number) {
    const std::string& file = files[static_cast<std::size_t>(number - 1)];
    if (kept[Key(number)] != file) changed.emplace_back(Key(number), file);
  }
  settings_.SaveAll(kSection, changed);
  return true;
}

}  // namespace hylden
