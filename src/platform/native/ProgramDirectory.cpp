#include "platform/native/ProgramDirectory.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace hylden {

namespace fs = std::filesystem;

namespace {

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

/// The user's home; where the environment has none, as under some services, the one of the system's list of users: the
/// working directory would be another one at the next start, which could not find what this one has left.
std::string HomeFolder() {
  if (std::string home = Environment("HOME"); !home.empty()) return home;
  const passwd* const user = getpwuid(getuid());
  return user && user->pw_dir ? user->pw_dir : "";
}

std::string WithoutTrailingSeparator(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

fs::path ConfigurationFolder() {
  const std::string config = Environment("XDG_CONFIG_HOME");
  if (!config.empty()) return config;
  const std::string home = HomeFolder();
  return fs::path(home.empty() ? "." : home) / ".config";
}

/// The executable's own directory; empty when it is not known.
std::string OwnDirectory() {
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error).parent_path().string();
}

/// The folder of the user's documents, whose name depends on the user's language.
fs::path DocumentsFolder() {
  constexpr std::string_view kEntry = "XDG_DOCUMENTS_DIR=\"", kHome = "$HOME";
  const std::string home = HomeFolder();
  std::ifstream folders(ConfigurationFolder() / "user-dirs.dirs");
  for (std::string line; std::getline(folders, line);) {
    if (!line.starts_with(kEntry)) continue;
    std::string path = line.substr(kEntry.size(), line.find('"', kEntry.size()) - kEntry.size());
    if (path.starts_with(kHome)) path.replace(0, kHome.size(), home);
    return path;
  }
  return fs::path(home) / "Documents";
}

/// Empty when there is no place for it.
std::string UserDataFolder() {
  const std::string home = HomeFolder();
  if (home.empty()) return {};
  std::error_code error;
  const fs::path documents = DocumentsFolder();
  const fs::path folder = (fs::is_directory(documents, error) ? documents : fs::path(home)) / "Hylden";
  fs::create_directories(folder, error);
  return fs::is_directory(folder, error) ? folder.string() : std::string();
}

/// Where an installed program's files are, beside the folder of the executables; empty for one that is not installed.
std::string InstalledFiles(const std::string& executableDirectory) {
  const fs::path files = fs::path(executableDirectory).parent_path() / "share" / "hylden";
  std::error_code error;
  return !executableDirectory.empty() && fs::is_directory(files, error) ? files.string() : std::string();
}

/// Where an administrator puts the settings of all users: beside the executable, else where a system keeps them.
std::string CommonDirectory(const std::string& executableDirectory, bool isInstalled) {
  std::error_code error;
  const bool isBeside = fs::exists(fs::path(executableDirectory) / "Hylden.ini", error);
  return isInstalled && !isBeside ? "/etc/hylden" : executableDirectory;
}

/// An installed program never writes among the system's files, not even for root.
Directories OwnDirectories(const std::string& executableDirectory, bool isInstalled) {
  if (const std::string chosen = Environment("HYLDEN_HOME"); !chosen.empty()) return WithoutTrailingSeparator(chosen);
  if (!isInstalled && !executableDirectory.empty() && access(executableDirectory.c_str(), W_OK) == 0)
    return executableDirectory;
  const fs::path user = ConfigurationFolder() / "hylden";
  std::error_code error;
  fs::create_directories(user, error);
  Directories directories(user.string());
  directories.Data = UserDataFolder();
  directories.Common = CommonDirectory(executableDirectory, isInstalled);
  return directories;
}

}  // namespace

std::string ProgramDirectory() {
  return ProgramDirectories().Program;
}

Directories ProgramDirectories() {
  return ProgramDirectories(OwnDirectory());
}

Directories ProgramDirectories(const std::string& executableDirectory) {
  const std::string installed = InstalledFiles(executableDirectory);
  Directories directories = OwnDirectories(executableDirectory, !installed.empty());
  directories.Shared = installed.empty() ? executableDirectory : installed;
  return directories;
}

}  // namespace hylden
