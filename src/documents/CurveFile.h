#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "measure/Curve.h"

namespace hylden {

/// Where a curve has no value.
inline constexpr double kGap = std::numeric_limits<double>::quiet_NaN();

/// One of the values that a file has over frequency.
struct CurveQuantity {
  const char *Name, *Unit;
  const char* Meaning;  ///< how it comes about, and what is read from it
  FreqAxis StraightOn = FreqAxis::Linear;
};

/// A file of values over frequency that can be laid over others of its kind. Frequencies are in MHz, and what the file
/// does not tell is kGap.
class CurveFile {
 public:
  explicit CurveFile(std::string path) : path_(std::move(path)) {}
  virtual ~CurveFile() = default;

  const std::string& Path() const { return path_; }
  /// The same for all files of a kind.
  virtual const std::vector<CurveQuantity>& Quantities() const = 0;
  /// What it holds, by rising frequency; a band change has two points.
  virtual std::vector<CurvePoint> Points(std::size_t quantity) const = 0;
  /// What a run finds there: between two points, and the larger one at a band change. Outside the points a gap.
  virtual double ValueAt(std::size_t quantity, double freqMHz) = 0;
  /// What it tells about itself, in a line.
  virtual std::string Description() const = 0;

 private:
  std::string path_;
};

}  // namespace hylden
