#include "text/Characters.h"

#include <algorithm>
#include <array>
#include <functional>

namespace hylden {
namespace {

/// Characters of the bytes 0x80 to 0x9F in Windows-1252.
constexpr std::array<char16_t, 32> kUpperControls = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                     0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                     0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                     0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::uint8_t ByteAt(std::string_view text, std::size_t at) {
  return static_cast<std::uint8_t>(text[at]);
}

}  // namespace

std::size_t CharacterCount(std::string_view utf8) {
  return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), std::not_fn(ContinuesCharacter)));
}

std::string_view FirstCharacters(std::string_view utf8, std::size_t most) {
  std::size_t end = 0;
  for (; end < utf8.size(); ++end)
    if (!ContinuesCharacter(utf8[end]) && most-- == 0) break;
  return utf8.substr(0, end);
}

Utf8Character CharacterAt(std::string_view utf8, std::size_t at) {
  const std::uint8_t first = ByteAt(utf8, at);
  if (first < 0x80) return {first, 1};
  if (first < 0xC2 || first > 0xF4) return {};
  const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  if (at + length > utf8.size()) return {};
  char32_t code = first & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if (!ContinuesCharacter(utf8[at + i])) return {};
    code = code << 6 | (ByteAt(utf8, at + i) & 0x3FU);
  }
  const bool tooLong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (tooLong || surrogate || code > 0x10FFFF) return {};
  return {code, length};
}

void AppendUtf8(std::string& utf8, char32_t code) {
  const auto append = [&utf8](char32_t byte) { utf8 += static_cast<char>(byte); };
  if (code < 0x80) return append(code);
  if (code < 0x800) {
    append(0xC0 | code >> 6);
  } else if (code < 0x10000) {
    append(0xE0 | code >> 12);
    append(0x80 | (code >> 6 & 0x3F));
  } else {
    append(0xF0 | code >> 18);
    append(0x80 | (code >> 12 & 0x3F));
    append(0x80 | (code >> 6 & 0x3F));
  }
  append(0x80 | (code & 0x3F));
}

char16_t FromWindows1252(std::uint8_t byte) {
  return byte >= 0x80 && byte <= 0x9F ? kUpperControls[byte - 0x80U] : char16_t{byte};
}

std::optional<std::uint8_t> ToWindows1252(char32_t code) {
  if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) return static_cast<std::uint8_t>(code);
  const auto found = std::find(kUpperControls.begin(), kUpperControls.end(), code);
  if (found == kUpperControls.end()) return std::nullopt;
  return static_cast<std::uint8_t>(0x80 + (found - kUpperControls.begin()));
}

}  // namespace hylden
