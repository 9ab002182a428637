#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace hylden::gpib {

constexpr std::int64_t kForeverMs = 1'000'000'000;

/// The time limit of an ibtmo code, ms: none, then 10 us, 30 us ... 1000 s.
constexpr std::int64_t TimeLimitMs(int code) {
  constexpr std::array<std::int64_t, 18> kLimits = {kForeverMs, 0,   0,    0,    0,     1,     3,      10,     30,
                                                    100,        300, 1000, 3000, 10000, 30000, 100000, 300000, 1000000};
  return kLimits[static_cast<std::size_t>(std::clamp(code, 0, 17))];
}

}  // namespace hylden::gpib
