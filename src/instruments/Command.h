#pragma once

#include <string>
#include <string_view>

#include "text/Pattern.h"

namespace hylden {

/// Digit patterns of the values in commands; the trailing blank stands before the suffix. A range in volts or
/// millivolts may be so small that six decimals would round it away.
namespace commandpattern {
inline constexpr std::string_view kFreq = "####0.0##### ", kLevel = "##0.0 ", kModulation = "##0.0## ",
                                  kDepth = "##0.0 ", kMeterLevel = "####0.0##### ",
                                  kSmallMeterLevel = "####0.0########### ", kMeterFreq = "####0.0######### ";
}

/// A command that sets a value: prefix, blank, value, suffix.
template <class Number>
std::string SettingCommand(const std::string& prefix, Number value, std::string_view pattern,
                           const std::string& suffix) {
  return prefix + " " + Format(value, pattern) + suffix;
}

}  // namespace hylden
