#include "measure/Interpolation.h"

#include <cmath>

#include "measure/Conversions.h"

namespace hylden {

float Interpolate(double f1, float y1, double f2, float y2, double f, FreqScale scale) {
  // The base of the logarithms cancels out.
  if (scale == FreqScale::Log && f1 < 1e-6) return static_cast<float>(kNoValue);
  const double t = scale == FreqScale::Log ? std::log(f / f1) / std::log(f2 / f1) : (f - f1) / (f2 - f1);
  const double from = static_cast<double>(y1), to = static_cast<double>(y2);
  return static_cast<float>(from + t * (to - from));
}

float PickDuplicate(float a, float b, DuplicateRule rule) {
  switch (rule) {
    case DuplicateRule::Larger:
      return std::max(a, b);
    case DuplicateRule::Smaller:
      return std::min(a, b);
  }
  return 0;
}

}  // namespace hylden
