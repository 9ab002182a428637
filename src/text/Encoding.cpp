#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "text/TextFile.h"

namespace hylden {
namespace {

/// Characters of the bytes 0x80 to 0x9F in Windows-1252; the five unassigned bytes stand for the control of that
/// number.
constexpr std::array<std::uint16_t, 32> kUpperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

struct Character {
  std::uint32_t code = 0;
  std::size_t length = 0;  // bytes taken; 0 when they are no character of UTF-8
};

std::uint8_t ByteAt(std::string_view text, std::size_t at) {
  return static_cast<std::uint8_t>(text[at]);
}

Character NextCharacter(std::string_view text, std::size_t at) {
  const std::uint8_t first = ByteAt(text, at);
  if (first < 0x80) return {first, 1};
  if (first < 0xC2 || first > 0xF4) return {};
  const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  if (at + length > text.size()) return {};
  std::uint32_t code = first & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    const std::uint8_t next = ByteAt(text, at + i);
    if ((next & 0xC0) != 0x80) return {};
    code = code << 6 | (next & 0x3FU);
  }
  const bool tooLong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (tooLong || surrogate || code > 0x10FFFF) return {};
  return {code, length};
}

/// The first position from `at` on that holds no ASCII character; most files have none, so eight bytes are taken at
/// once.
std::size_t AsciiEnd(std::string_view text, std::size_t at) {
  for (std::uint64_t block = 0; at + sizeof block <= text.size(); at += sizeof block) {
    std::memcpy(&block, text.data() + at, sizeof block);
    if ((block & 0x8080808080808080U) != 0) break;
  }
  while (at < text.size() && ByteAt(text, at) < 0x80) ++at;
  return at;
}

bool IsUtf8(std::string_view text) {
  for (std::size_t at = AsciiEnd(text, 0); at < text.size(); at = AsciiEnd(text, at)) {
    const std::size_t length = NextCharacter(text, at).length;
    if (length == 0) return false;
    at += length;
  }
  return true;
}

/// @pre the code is below 0x10000, as all of Windows-1252 are
void AppendUtf8(std::string& text, std::uint32_t code) {
  if (code < 0x80) {
    text += static_cast<char>(code);
  } else if (code < 0x800) {
    text += static_cast<char>(0xC0 | code >> 6);
    text += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    text += static_cast<char>(0xE0 | code >> 12);
    text += static_cast<char>(0x80 | (code >> 6 & 0x3F));
    text += static_cast<char>(0x80 | (code & 0x3F));
  }
}

char Windows1252Byte(std::uint32_t code) {
  if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) return static_cast<char>(code);
  for (std::size_t i = 0; i < kUpperControls.size(); ++i)
    if (kUpperControls[i] == code) return static_cast<char>(0x80 + i);
  return '?';
}

}  // namespace

std::string DecodeText(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF") && IsUtf8(bytes)) bytes.remove_prefix(3);
  if (IsUtf8(bytes)) return std::string(bytes);
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    const std::uint8_t byte = ByteAt(bytes, at);
    AppendUtf8(text, byte >= 0x80 && byte < 0xA0 ? kUpperControls[byte - 0x80U] : byte);
  }
  return text;
}

std::string EncodeWindows1252(std::string_view utf8) {
  std::string bytes;
  bytes.reserve(utf8.size());
  for (std::size_t at = 0; at < utf8.size();) {
    const Character next = NextCharacter(utf8, at);
    bytes += next.length == 0 ? '?' : Windows1252Byte(next.code);
    at += next.length == 0 ? 1 : next.length;
  }
  return bytes;
}

}  // namespace hylden
