#pragma once

#include <vector>

namespace hylden {

/// A point over frequency: MHz, and a value in the unit of its curve.
struct CurvePoint {
  double Freq = 0, Value = 0;
  bool operator==(const CurvePoint&) const = default;
};

enum class FreqAxis { Linear, Log };

/// The line through points of rising frequency as it looks on an axis, as points that straight lines join there.
/// @param straightOn  the axis on which values between two points lie on a straight line; on the other one they are
///                    bent. What has no place on a logarithmic axis, a frequency of 0 or less, is left out.
std::vector<CurvePoint> LineThrough(const std::vector<CurvePoint>& points, FreqAxis straightOn, FreqAxis shownOn);

}  // namespace hylden
