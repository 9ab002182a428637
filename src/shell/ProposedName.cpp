#include "shell/ProposedName.h"

#include <cstdio>
#include <filesystem>

#include "platform/Clock.h"
#include "shell/FormInput.h"

namespace hylden {

std::string ProposedName(const std::string& document, const Clock& clock, std::string_view suffix) {
  const LocalTime now = clock.Now();
  char when[80];
  std::snprintf(when, sizeof when, "%04d-%02d-%02d %02d-%02d", now.year, now.month, now.day, now.hour, now.minute);
  const std::string stem = std::filesystem::path(FileNameOnly(document)).stem().string();
  return (stem.empty() ? "" : stem + " ") + when + std::string(suffix);
}

}  // namespace hylden
