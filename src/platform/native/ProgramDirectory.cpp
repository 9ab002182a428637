#include "platform/native/ProgramDirectory.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace hylden {

namespace fs = std::filesystem;

namespace {

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

std::string WithoutTrailingSeparator(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

fs::path UserConfiguration() {
  const std::string config = Environment("XDG_CONFIG_HOME");
  if (!config.empty()) return fs::path(config) / "hylden";
  const std::string home = Environment("HOME");
  return fs::path(home.empty() ? "." : home) / ".config" / "hylden";
}

}  // namespace

std::string ProgramDirectory() {
  if (const std::string chosen = Environment("HYLDEN_HOME"); !chosen.empty()) return WithoutTrailingSeparator(chosen);
  std::error_code error;
  const fs::path executable = fs::read_symlink("/proc/self/exe", error);
  const fs::path own = executable.parent_path();
  if (!error && !own.empty() && access(own.c_str(), W_OK) == 0) return own.string();
  const fs::path user = UserConfiguration();
  fs::create_directories(user, error);
  return user.string();
}

}  // namespace hylden
