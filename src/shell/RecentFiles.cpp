#include "shell/RecentFiles.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "shell/INISettings.h"

namespace hylden {

namespace {

constexpr char kSection[] = "RecentFiles";
constexpr std::size_t kLongestValue = 127;

bool Exists(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error);
}

}  // namespace

std::vector<std::string> RecentFiles::List() const {
  std::vector<std::string> files;
  for (int number = 1; number <= kMost; ++number) {
    std::string path = settings_.Store().GetSettingStr(kSection, Key(number), "");
    if (!path.empty() && Exists(path)) files.push_back(std::move(path));
  }
  return files;
}

void RecentFiles::Add(const std::string& path) {
  if (path.empty() || path.size() > kLongestValue) return;
  std::vector<std::string> files = List();
  if (!files.empty() && files.front() == path) return;
  std::erase(files, path);
  files.insert(files.begin(), path);
  files.resize(kMost);
  for (int number = 1; number <= kMost; ++number)
    settings_.Store().SaveSettingStr(kSection, Key(number), files[static_cast<std::size_t>(number - 1)]);
}

}  // namespace hylden
