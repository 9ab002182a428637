#include "text/Leftovers.h"

#include <charconv>
#include <string_view>
#include <system_error>

#if __has_include(<unistd.h>)
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace hylden {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kBegin = ".hylden-", kEnd = ".tmp";

#if __has_include(<unistd.h>)
/// Another computer may write into the same folder, with the same process numbers.
std::string Computer() {
  char name[256] = {};
  return gethostname(name, sizeof name - 1) == 0 ? name : "";
}

long Process() {
  return getpid();
}

bool IsGone(long process) {
  return process > 0 && kill(static_cast<pid_t>(process), 0) != 0 && errno == ESRCH;
}
#else
std::string Computer() {
  return {};
}

long Process() {
  return 0;
}

bool IsGone(long) {
  return false;
}
#endif

std::string Prefix() {
  return std::string(kBegin) + Computer() + "-";
}

/// The process that a temporary name of this computer tells; 0 for any other name.
long ProcessOf(std::string_view name, std::string_view prefix) {
  if (!name.starts_with(prefix) || !name.ends_with(kEnd)) return 0;
  name.remove_prefix(prefix.size());
  long process = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
  return error == std::errc() && *end == '-' ? process : 0;
}

}  // namespace

std::string TemporaryName(int number) {
  return Prefix() + std::to_string(Process()) + "-" + std::to_string(number) + std::string(kEnd);
}

void RemoveLeftovers(const fs::path& folder) {
  const std::string prefix = Prefix();
  std::error_code failed;
  fs::directory_iterator entry(folder.empty() ? "." : folder, failed);
  for (; !failed && entry != fs::directory_iterator(); entry.increment(failed)) {
    std::error_code ignored;
    if (IsGone(ProcessOf(entry->path().filename().string(), prefix))) fs::remove(entry->path(), ignored);
  }
}

}  // namespace hylden
