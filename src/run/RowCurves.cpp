#include "run/RowCurves.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace hylden {

namespace {
constexpr double kGap = std::numeric_limits<double>::quiet_NaN();
}  // namespace

void RowCurves::AddCurve(std::string name, std::string unit) {
  curves_.push_back({std::move(name), std::move(unit), {}});
  rows_.emplace_back();
}

void RowCurves::AddAim(std::string name, std::string unit, std::vector<CurvePoint> points) {
  curves_.push_back({std::move(name), std::move(unit), std::move(points)});
}

std::vector<RowCurves::Added> RowCurves::AddRow(int row, double frequencyMHz, const Values& values) {
  std::vector<Added> added;
  if (!std::isfinite(frequencyMHz)) return added;
  for (std::size_t curve = 0; curve < std::min(values.size(), rows_.size()); ++curve)
    if (values[curve] || !curves_[curve].Points.empty())
      added.push_back(AddValue(curve, row, frequencyMHz, values[curve].value_or(kGap)));
  return added;
}

RowCurves::Added RowCurves::AddValue(std::size_t curve, int row, double frequencyMHz, double value) {
  std::vector<CurvePoint>& points = curves_[curve].Points;
  const auto above = [](double freq, const CurvePoint& other) { return freq < other.Freq; };
  const auto at = std::upper_bound(points.begin(), points.end(), frequencyMHz, above);
  rows_[curve].insert(rows_[curve].begin() + (at - points.begin()), row);
  points.insert(at, {frequencyMHz, value});
  return {curve, {frequencyMHz, value}};
}

int RowCurves::RowOf(std::size_t curve, std::size_t point) const {
  return curve < rows_.size() && point < rows_[curve].size() ? rows_[curve][point] : 0;
}

std::optional<std::pair<std::size_t, std::size_t>> RowCurves::PlaceOf(int row) const {
  for (std::size_t curve = 0; curve < rows_.size(); ++curve) {
    const auto found = std::find(rows_[curve].begin(), rows_[curve].end(), row);
    if (found == rows_[curve].end()) continue;
    const auto point = static_cast<std::size_t>(found - rows_[curve].begin());
    if (std::isfinite(curves_[curve].Points[point].Value)) return std::pair(curve, point);
  }
  return std::nullopt;
}

}  // namespace hylden
