#include "text/Encoding.h"

#include <cstdint>
#include <cstring>

#include "text/Characters.h"

namespace hylden {
namespace {

/// The first position from `at` on that holds no ASCII character; most files have none, so eight bytes are taken at
/// once.
std::size_t AsciiEnd(std::string_view text, std::size_t at) {
  for (std::uint64_t block = 0; at + sizeof block <= text.size(); at += sizeof block) {
    std::memcpy(&block, text.data() + at, sizeof block);
    if ((block & 0x8080808080808080U) != 0) break;
  }
  while (at < text.size() && static_cast<std::uint8_t>(text[at]) < 0x80) ++at;
  return at;
}

bool IsUtf8(std::string_view text) {
  for (std::size_t at = AsciiEnd(text, 0); at < text.size(); at = AsciiEnd(text, at)) {
    const std::size_t length = CharacterAt(text, at).length;
    if (length == 0) return false;
    at += length;
  }
  return true;
}

}  // namespace

std::string DecodeText(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF") && IsUtf8(bytes)) bytes.remove_prefix(3);
  if (IsUtf8(bytes)) return std::string(bytes);
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  for (const char byte : bytes) AppendUtf8(text, FromWindows1252(static_cast<std::uint8_t>(byte)));
  return text;
}

std::string EncodeWindows1252(std::string_view utf8) {
  std::string bytes;
  bytes.reserve(utf8.size());
  for (std::size_t at = 0; at < utf8.size();) {
    const Utf8Character next = CharacterAt(utf8, at);
    const bool isCharacter = next.length > 0;
    bytes += isCharacter ? static_cast<char>(ToWindows1252(next.code).value_or(std::uint8_t{'?'})) : '?';
    at += isCharacter ? next.length : 1;
  }
  return bytes;
}

}  // namespace hylden
