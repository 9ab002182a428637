#pragma once

#include <string>
#include <string_view>

namespace hylden {

/// A number written with a digit pattern: '#' is an optional digit, '0' a required one, any text before and after the
/// digits stands as it is ("##0.0 " keeps its trailing blank). The value is rounded half away from zero on its decimal
/// text (15 significant digits, 7 for a single), not on its binary value: 0.15 under "##0.0" is "0.2". A value of
/// which only zeros remain has no minus. A value that is not finite is written as its shortest text.
std::string Format(double value, std::string_view pattern);
std::string Format(float value, std::string_view pattern);

}  // namespace hylden
