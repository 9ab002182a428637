#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hylden {

/// One character of a UTF-8 text.
struct Utf8Character {
  char32_t code = 0;
  std::size_t length = 0;  ///< bytes taken; 0 when they are no character of UTF-8
};

/// The character that begins at a byte of the text. @pre the byte exists
Utf8Character CharacterAt(std::string_view utf8, std::size_t at);

/// Appends a character. @pre it is one of Unicode, and no surrogate
void AppendUtf8(std::string& utf8, char32_t code);

/// The character of a Windows-1252 byte. Every byte has one: the five that the code page leaves open stand for the
/// control of that number.
char16_t FromWindows1252(std::uint8_t byte);
/// The byte of a character; nothing when it is outside the code page.
std::optional<std::uint8_t> ToWindows1252(char32_t code);

}  // namespace hylden
