#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hylden {

/// CRC-32 as in ISO 3309 (the one of zip, gzip and PNG).
std::uint32_t Crc32(std::string_view bytes);

/// A line as a journal holds it: the text, " *", the CRC-32 of the text in eight hexadecimal digits, CR LF.
std::string SealedLine(std::string_view text);
/// The text of a line without its end; nothing when it is not whole.
std::optional<std::string> UnsealedLine(std::string_view line);

}  // namespace hylden
