#pragma once

#include <string>
#include <vector>

namespace hylden {

/// A point over frequency: MHz, and a value in the unit of its curve; one that is no number leaves a gap.
struct CurvePoint {
  double Freq = 0, Value = 0;
  bool operator==(const CurvePoint&) const = default;
};

enum class FreqAxis { Linear, Log };
enum class ValueAxis { Left, Right };

/// Values over frequency.
struct Curve {
  std::string Name, Unit;
  std::vector<CurvePoint> Points;  ///< by rising frequency
  ValueAxis Axis = ValueAxis::Left;
  FreqAxis StraightOn = FreqAxis::Log;  ///< where a straight line joins two points
};

/// A horizontal line across all frequencies.
struct CurveLimit {
  std::string Name;
  double Value = 0;
  ValueAxis Axis = ValueAxis::Left;
};

/// A text at a point.
struct CurveMark {
  CurvePoint At;
  std::string Text;
  ValueAxis Axis = ValueAxis::Left;
  bool operator==(const CurveMark&) const = default;
};

}  // namespace hylden
