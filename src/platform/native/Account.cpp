#include "platform/native/Account.h"

#include <pwd.h>
#include <unistd.h>

#include <array>

namespace hylden {

std::string AccountName() {
  std::array<char, 4096> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found) return {};
  return entry.pw_name;
}

}  // namespace hylden
