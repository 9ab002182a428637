#pragma once

#include <cstdint>
#include <random>

namespace hylden {

/// Normally distributed reading noise. The transformation is our own, so that a seed gives the same noise on every
/// machine.
class ReadingNoise {
 public:
  ReadingNoise(double sigmaDb, std::uint64_t seed) : sigmaDb_(sigmaDb), engine_(seed) {}
  /// The deviation of the next reading, dB.
  double Next();

 private:
  double Uniform();

  double sigmaDb_;
  std::mt19937_64 engine_;
};

}  // namespace hylden
