#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace hylden {

/// The small letter of an ASCII capital; any other byte as it is, so that UTF-8 stays whole.
constexpr char LowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// ASCII letters only: another spelling of an accented letter is another name.
inline std::string LowerCase(std::string text) {
  for (char& c : text) c = LowerCase(c);
  return text;
}

/// Whether two texts differ in the case of ASCII letters at most.
inline bool SameIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return LowerCase(x) == LowerCase(y); });
}

}  // namespace hylden
