#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "measure/Curve.h"

namespace hylden {

/// Curves that grow with the rows of a run, and lead back to them, and those that are there from the beginning. Rows
/// may come in any order of frequency and repeat frequencies.
class RowCurves {
 public:
  /// A point that a row has added.
  struct Added {
    std::size_t Curve = 0;
    CurvePoint Point;
  };
  using Values = std::vector<std::optional<double>>;

  const std::vector<Curve>& Curves() const { return curves_; }
  const std::vector<CurveMark>& Marks() const { return marks_; }
  const std::vector<CurveLimit>& Limits() const { return limits_; }

  /// The row of a point, counted from 1; 0 for one of no row.
  int RowOf(std::size_t curve, std::size_t point) const;
  /// The curve and the point of a row; nothing where it has none.
  std::optional<std::pair<std::size_t, std::size_t>> PlaceOf(int row) const;

  /// A curve of rows; they come before all others.
  void AddCurve(std::string name, std::string unit);
  /// A curve of no row.
  void AddAim(std::string name, std::string unit, std::vector<CurvePoint> points);
  void AddLimit(CurveLimit limit) { limits_.push_back(std::move(limit)); }
  /// Adds a row's value to each of the curves of rows. One that is missing leaves a gap; of what has no value at all
  /// there is no curve. At the highest frequency so far it costs the same however many rows there are.
  /// @return the points that are new, each behind those of its frequency
  std::vector<Added> AddRow(int row, double frequencyMHz, const Values& values);
  /// The same for one value of a curve of rows.
  Added AddValue(std::size_t curve, int row, double frequencyMHz, double value);

 protected:
  std::vector<Curve> curves_;
  std::vector<std::vector<int>> rows_;  ///< of the points of each curve of rows
  std::vector<CurveMark> marks_;
  std::vector<CurveLimit> limits_;
};

}  // namespace hylden
