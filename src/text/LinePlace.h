#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace hylden {

/// Which line of a file a message is about, `, line 3: "10;20"`; it may be that of any file, a picture too, so only its
/// start is shown, on one line.
/// @param number  counted from 1
/// @param of      stands behind the number
std::string LinePlace(std::size_t number, std::string_view line, const std::string& of = {});

}  // namespace hylden
