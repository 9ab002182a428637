#include "bench/ReadingNoise.h"

#include <cmath>
#include <numbers>

namespace hylden {

/// From (0, 1]: its logarithm is finite.
double ReadingNoise::Uniform() {
  return (static_cast<double>(engine_() >> 11) + 1) * 0x1p-53;
}

double ReadingNoise::Next() {
  if (sigmaDb_ <= 0) return 0;
  // Box and Muller; the second value of the pair is let go for the sake of a stateless step.
  const double radius = std::sqrt(-2 * std::log(Uniform()));
  return sigmaDb_ * radius * std::cos(2 * std::numbers::pi * Uniform());
}

}  // namespace hylden
