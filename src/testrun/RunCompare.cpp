#include "testrun/RunCompare.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "testrun/RunData.h"
#include "text/Numbers.h"

namespace hylden {

namespace {

/// The difference of two levels in any decibels is in dB.
bool IsInDecibels(const std::string& unit) {
  return unit.starts_with("dB");
}

/// Levels of run data are singles: what that leaves of a difference in dB is no difference.
double Rounded(double value, bool inDecibels) {
  constexpr double kSteps = 1000;
  return inDecibels ? std::round(value * kSteps) / kSteps : value;
}

/// A curve looked up at rising frequencies.
class RisingLookUp {
 public:
  enum class How { AtPoint, Between, Nowhere };
  struct Found {
    How Is = How::Nowhere;
    double Value = 0;
  };

  explicit RisingLookUp(const std::vector<CurvePoint>& points) : points_(points) {}

  Found At(double frequencyMHz) {
    while (next_ < points_.size() && points_[next_].Freq < frequencyMHz + kSameMHz) ++next_;
    if (next_ == 0) return {};
    const CurvePoint& below = points_[next_ - 1];
    if (IsSameFrequency(below.Freq, frequencyMHz)) return Of(How::AtPoint, below.Value);
    if (next_ == points_.size() || below.Freq <= 0) return {};
    const CurvePoint& above = points_[next_];
    const double share = std::log(frequencyMHz / below.Freq) / std::log(above.Freq / below.Freq);
    return Of(How::Between, below.Value + share * (above.Value - below.Value));
  }

 private:
  static Found Of(How how, double value) { return std::isfinite(value) ? Found{how, value} : Found{}; }

  const std::vector<CurvePoint>& points_;
  std::size_t next_ = 0;
};

}  // namespace

CurveDifference DifferenceOf(const Curve& curve, const Curve& other) {
  CurveDifference difference;
  const bool inDecibels = IsInDecibels(curve.Unit);
  difference.Values = {curve.Name + " - " + other.Name, inDecibels ? "dB" : curve.Unit, {}, curve.Axis};
  RisingLookUp lookUp(other.Points);
  const std::vector<CurvePoint>& points = curve.Points;
  difference.Values.Points.reserve(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (i + 1 < points.size() && IsSameFrequency(points[i].Freq, points[i + 1].Freq)) continue;
    const RisingLookUp::Found found = lookUp.At(points[i].Freq);
    const CurvePoint point{points[i].Freq, Rounded(points[i].Value - found.Value, inDecibels)};
    if (found.Is == RisingLookUp::How::Nowhere || !std::isfinite(point.Value)) {
      ++difference.LeftOut;
      continue;
    }
    ++(found.Is == RisingLookUp::How::AtPoint ? difference.Common : difference.Interpolated);
    if (!difference.Largest || std::abs(point.Value) > std::abs(difference.Largest->Value)) difference.Largest = point;
    difference.Values.Points.push_back(point);
  }
  return difference;
}

std::string DifferenceText(const CurveDifference& difference) {
  if (!difference.Largest) return "no frequency at which both have a value";
  std::string text = "at " + std::to_string(difference.Common) + " common frequencies";
  if (difference.Interpolated > 0) text += ", " + std::to_string(difference.Interpolated) + " interpolated";
  if (difference.LeftOut > 0) text += ", " + std::to_string(difference.LeftOut) + " left out";
  return text + "; largest " + ShortestText(static_cast<float>(difference.Largest->Value)) + " " +
         difference.Values.Unit + " at " + ShortestText(difference.Largest->Freq) + " MHz";
}

}  // namespace hylden
