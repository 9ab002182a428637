#pragma once

#include <string>
#include <string_view>

namespace hylden::script {

/// UTF-8 as UTF-16. A byte that is no part of valid UTF-8 is read as its Windows-1252 character.
std::u16string FromUtf8(std::string_view utf8);
/// UTF-16 as UTF-8; an unpaired surrogate becomes U+FFFD.
std::string ToUtf8(std::u16string_view text);
/// A text of ASCII characters only, widened.
std::u16string Widen(std::string_view ascii);

/// Case of the Latin, Greek and Cyrillic alphabets, character by character; the length never changes.
char16_t LowerCase(char16_t c);
char16_t UpperCase(char16_t c);
/// The text in lower case, for comparisons without regard to case.
std::u16string Folded(std::u16string_view text);

}  // namespace hylden::script
