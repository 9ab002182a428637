#pragma once

#include <vector>

#include "measure/Curve.h"

namespace hylden {

/// The line through points of rising frequency as it looks on an axis, as points that straight lines join there.
/// @param straightOn  the axis on which values between two points lie on a straight line; on the other one they are
///                    bent. What has no place on a logarithmic axis, a frequency of 0 or less, is left out.
std::vector<CurvePoint> LineThrough(const std::vector<CurvePoint>& points, FreqAxis straightOn, FreqAxis shownOn);

}  // namespace hylden
