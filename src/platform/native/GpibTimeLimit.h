#pragma once

#include <chrono>
#include <cmath>

namespace hylden {

/// What a time-limit code of the bus means: 10 us for 1, 30 us for 2, 100 us for 3, and so on up to 1000 s for 17.
/// 0, no limit at all, is taken for the longest: nothing is waited for in vain for ever.
inline std::chrono::microseconds GpibTimeLimit(int code) {
  constexpr int kLongest = 17;
  if (code <= 0 || code > kLongest) code = kLongest;
  const double decade = 10 * std::pow(10, (code - 1) / 2);
  return std::chrono::microseconds(std::llround(code % 2 == 0 ? 3 * decade : decade));
}

}  // namespace hylden
