#pragma once

#include <string>
#include <string_view>

namespace hylden {

/// Bytes of a file or of an instrument as UTF-8: valid UTF-8 stays (without its byte-order mark), anything else is read
/// as Windows-1252. Every byte value has a character, so nothing is lost.
std::string DecodeText(std::string_view bytes);

/// UTF-8 as Windows-1252 bytes; a character outside that code page becomes "?".
std::string EncodeWindows1252(std::string_view utf8);

}  // namespace hylden
