#include "script/Unicode.h"

#include <algorithm>

#include "text/Characters.h"

namespace hylden::script {
namespace {

void Append(std::u16string& text, char32_t code) {
  if (code < 0x10000) {
    text.push_back(static_cast<char16_t>(code));
    return;
  }
  text.push_back(static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10)));
  text.push_back(static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
}

bool IsHighSurrogate(char16_t c) {
  return c >= 0xD800 && c <= 0xDBFF;
}
bool IsLowSurrogate(char16_t c) {
  return c >= 0xDC00 && c <= 0xDFFF;
}

/// Latin Extended-A keeps each capital directly before its small letter; tells whether c belongs to such a pair and is
/// its capital or its small letter.
enum class PairRole { None, Capital, Small };
PairRole LatinPair(char16_t c) {
  if (c < 0x100 || c > 0x17E || c == 0x130 || c == 0x131 || c == 0x138 || c == 0x149 || c == 0x178) {
    return PairRole::None;
  }
  const bool capitalIsOdd = (c >= 0x139 && c <= 0x148) || c >= 0x179;
  const bool odd = (c & 1) != 0;
  return odd == capitalIsOdd ? PairRole::Capital : PairRole::Small;
}

}  // namespace

std::u16string FromUtf8(std::string_view utf8) {
  std::u16string text;
  text.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size();) {
    const Utf8Character next = CharacterAt(utf8, i);
    const bool isCharacter = next.length > 0;
    Append(text, isCharacter ? next.code : FromWindows1252(static_cast<std::uint8_t>(utf8[i])));
    i += isCharacter ? next.length : 1;
  }
  return text;
}

std::string ToUtf8(std::u16string_view text) {
  std::string utf8;
  utf8.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      AppendUtf8(utf8, 0x10000 + ((c - 0xD800u) << 10) + (text[i + 1] - 0xDC00u));
      ++i;
    } else {
      AppendUtf8(utf8, IsHighSurrogate(c) || IsLowSurrogate(c) ? char32_t{0xFFFD} : char32_t{c});
    }
  }
  return utf8;
}

std::u16string Widen(std::string_view ascii) {
  return std::u16string(ascii.begin(), ascii.end());
}

char16_t LowerCase(char16_t c) {
  if (c < 0x80) return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
  if (c >= 0xC0 && c <= 0xDE) return c == 0xD7 ? c : static_cast<char16_t>(c + 32);
  if (c == 0x178) return 0xFF;
  if (LatinPair(c) == PairRole::Capital) return static_cast<char16_t>(c + 1);
  if (c >= 0x391 && c <= 0x3A9 && c != 0x3A2) return static_cast<char16_t>(c + 32);
  if (c >= 0x410 && c <= 0x42F) return static_cast<char16_t>(c + 32);
  if (c >= 0x400 && c <= 0x40F) return static_cast<char16_t>(c + 80);
  return c;
}

char16_t UpperCase(char16_t c) {
  if (c < 0x80) return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c;
  if (c == 0xFF) return 0x178;
  if (c >= 0xE0 && c <= 0xFE) return c == 0xF7 ? c : static_cast<char16_t>(c - 32);
  if (LatinPair(c) == PairRole::Small) return static_cast<char16_t>(c - 1);
  if (c >= 0x3B1 && c <= 0x3C9) return c == 0x3C2 ? char16_t{0x3A3} : static_cast<char16_t>(c - 32);
  if (c >= 0x430 && c <= 0x44F) return static_cast<char16_t>(c - 32);
  if (c >= 0x450 && c <= 0x45F) return static_cast<char16_t>(c - 80);
  return c;
}

std::u16string Folded(std::u16string_view text) {
  std::u16string folded(text);
  std::transform(folded.begin(), folded.end(), folded.begin(), LowerCase);
  return folded;
}

}  // namespace hylden::script
