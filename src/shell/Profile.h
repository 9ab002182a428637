#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hylden::profile {

// Sections and keys in the text of a settings file. The text is the file's bytes; names and values go in and out as
// UTF-8. Names match without regard to ASCII case and blanks around them. A section that stands twice counts as one.

/// The key's value without blanks and one matching pair of quotes around it; nothing when there is no such key.
std::optional<std::string> Value(std::string_view text, std::string_view section, std::string_view key);
/// Names of the section's keys, in file order.
std::vector<std::string> Keys(std::string_view text, std::string_view section);
/// Names of all sections, in file order, each once.
std::vector<std::string> Sections(std::string_view text);
/// The text with the key set; only the key's own line changes, or is added at the end of its section. Line breaks in a
/// value become blanks. The value is written in the encoding of the file.
std::string WithValue(std::string_view text, std::string_view section, std::string_view key, std::string_view value);
/// The text without the key's line; nothing when there is no such key.
std::optional<std::string> WithoutKey(std::string_view text, std::string_view section, std::string_view key);

}  // namespace hylden::profile
