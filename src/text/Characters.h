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

/// Whether a byte of UTF-8 goes on with the character before it.
constexpr bool ContinuesCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// How many characters a text of UTF-8 has.
std::size_t CharacterCount(std::string_view utf8);
/// At most so many characters of the text.
std::string_view FirstCharacters(std::string_view utf8, std::size_t most);

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
