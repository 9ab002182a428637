#include "script/Unicode.h"

#include <algorithm>
#include <array>

namespace hylden::script {
namespace {

// Bytes 0x80 to 0x9F; the five that the code page leaves open stand for the control characters of the same number.
constexpr std::array<char16_t, 32> kWindows1252High = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                       0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                       0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                       0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr char32_t kNone = 0xFFFFFFFF;

std::size_t SequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

/// The character at the start of the bytes, or kNone; length receives its bytes.
char32_t DecodeOne(std::string_view bytes, std::size_t& length) {
  const auto lead = static_cast<unsigned char>(bytes[0]);
  length = SequenceLength(lead);
  if (length == 1) return lead;
  if (length == 0 || length > bytes.size()) return kNone;
  char32_t code = lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(bytes[i]);
    if ((next & 0xC0) != 0x80) return kNone;
    code = (code << 6) | (next & 0x3Fu);
  }
  const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  return overlong || surrogate || code > 0x10FFFF ? kNone : code;
}

void Append(std::u16string& text, char32_t code) {
  if (code < 0x10000) {
    text.push_back(static_cast<char16_t>(code));
    return;
  }
  text.push_back(static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10)));
  text.push_back(static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
}

void Append(std::string& utf8, char32_t code) {
  const auto byte = [&utf8](char32_t value) { utf8.push_back(static_cast<char>(value)); };
  if (code < 0x80) return byte(code);
  if (code < 0x800) {
    byte(0xC0 | (code >> 6));
    return byte(0x80 | (code & 0x3F));
  }
  if (code < 0x10000) {
    byte(0xE0 | (code >> 12));
  } else {
    byte(0xF0 | (code >> 18));
    byte(0x80 | ((code >> 12) & 0x3F));
  }
  byte(0x80 | ((code >> 6) & 0x3F));
  byte(0x80 | (code & 0x3F));
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
    const auto lead = static_cast<unsigned char>(utf8[i]);
    if (lead < 0x80) {
      text.push_back(lead);
      ++i;
      continue;
    }
    std::size_t length = 0;
    const char32_t code = DecodeOne(utf8.substr(i), length);
    if (code == kNone) {
      text.push_back(FromWindows1252(lead));
      ++i;
    } else {
      Append(text, code);
      i += length;
    }
  }
  return text;
}

std::string ToUtf8(std::u16string_view text) {
  std::string utf8;
  utf8.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      Append(utf8, 0x10000 + ((c - 0xD800u) << 10) + (text[i + 1] - 0xDC00u));
      ++i;
    } else {
      Append(utf8, IsHighSurrogate(c) || IsLowSurrogate(c) ? char32_t{0xFFFD} : char32_t{c});
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

char16_t FromWindows1252(std::uint8_t byte) {
  return byte >= 0x80 && byte <= 0x9F ? kWindows1252High[byte - 0x80u] : char16_t{byte};
}

std::optional<std::uint8_t> ToWindows1252(char16_t c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<std::uint8_t>(c);
  const auto found = std::find(kWindows1252High.begin(), kWindows1252High.end(), c);
  if (found == kWindows1252High.end()) return std::nullopt;
  return static_cast<std::uint8_t>(0x80 + (found - kWindows1252High.begin()));
}

}  // namespace hylden::script
