#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "measure/Curve.h"

namespace hylden {

/// How far a curve lies above another one of the same unit. Where a frequency stands in a curve several times, its last
/// point counts.
struct CurveDifference {
  Curve Values;                            ///< at the frequencies of the curve
  std::size_t Common = 0;                  ///< of them, those at which both have a point
  std::size_t Interpolated = 0;            ///< those at which the other one lies between two points, over log frequency
  std::size_t LeftOut = 0;                 ///< those at which the other one has no value; they are not in Values
  std::optional<CurvePoint> Largest = {};  ///< by amount
};
CurveDifference DifferenceOf(const Curve& curve, const Curve& other);

/// "at 161 common frequencies, 2 interpolated; largest 1.0 dB at 12.5 MHz"
std::string DifferenceText(const CurveDifference& difference);

}  // namespace hylden
