#pragma once

#include <cstdint>

namespace hylden::script {

/// The language's random numbers: a 24-bit linear congruential sequence that starts anew with every engine.
class Random {
 public:
  /// The next number, at least 0 and below 1.
  float Next();
  /// The number last given.
  float Last() const;
  /// Starts the sequence that belongs to a negative number.
  void Restart(float number);
  /// Mixes a number into the sequence; the same number gives different sequences at different times.
  void Mix(float number);

 private:
  std::uint32_t state_ = 0x50000;
};

}  // namespace hylden::script
