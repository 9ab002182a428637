#include "text/LinePlace.h"

#include <algorithm>

#include "text/Characters.h"

namespace hylden {

std::string LinePlace(std::size_t number, std::string_view line, const std::string& of) {
  constexpr std::size_t kShown = 60;
  std::size_t end = std::min(line.size(), kShown);
  while (end < line.size() && end > 0 && ContinuesCharacter(line[end])) --end;
  std::string shown(line.substr(0, end));
  std::replace_if(
      shown.begin(), shown.end(), [](unsigned char c) { return c < ' '; }, ' ');
  return ", line " + std::to_string(number) + of + ": \"" + shown + (end < line.size() ? "...\"" : "\"");
}

}  // namespace hylden
