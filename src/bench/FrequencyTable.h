#pragma once

#include <initializer_list>
#include <vector>

namespace hylden {

/// A quantity over frequency: points of MHz and value at rising frequencies, straight lines between them, the end
/// values held beyond the ends. At a pair of equal frequencies the second value holds from there on.
class FrequencyTable {
 public:
  struct Point {
    double FreqMHz = 0;
    double Value = 0;
  };

  FrequencyTable() = default;
  FrequencyTable(std::initializer_list<Point> points) : points_(points) {}

  /// Appends a point. @return false, and the table stays as it is, when its frequency lies below the last one
  bool Append(double freqMHz, double value);
  /// The value at a frequency; 0 in an empty table.
  double At(double freqMHz) const;
  const std::vector<Point>& Points() const { return points_; }

 private:
  std::vector<Point> points_;
};

}  // namespace hylden
