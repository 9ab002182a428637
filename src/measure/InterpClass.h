#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "measure/Interpolation.h"
#include "shell/Failure.h"

namespace hylden {

class Shell;

/// A point of a factor table: MHz, and the unit of the file's kind (dB for losses and factors).
struct FactorPoint {
  double Freq = 0;
  float Value = 0;
};

/// A data line of the factor table format (see docs/formats/factor-table.md): its first two numbers. Not Ok for any
/// other line, and for a number that is too large for its type.
struct ParsedFactorLine {
  bool Ok = false;
  double Freq = 0;
  float Value = 0;
};
ParsedFactorLine ParseFactorLine(std::string_view line);
/// Reads the first numbers of a line that consists of numbers and separators. @return false for any other line, for one
/// with fewer numbers, for a number that is too large, and where a comma may be a decimal sign ("10,5 2,3")
bool ReadNumbers(std::string_view line, std::initializer_list<double*> numbers);

/// A frequency-indexed factor table loaded from a text file (.los .fac .prb .pwr .lev), sorted by rising frequency
/// (equal frequencies keep their file order). It is usable from two points on.
class InterpClass {
 public:
  explicit InterpClass(Shell& shell) : shell_(shell) {}

  /// Replaces the table by the file's; where that fails, silently for an empty name, there is none.
  Done InitInterp(const std::string& fileName);
  /// The value at a frequency in MHz; none in an unusable table, and, silently, outside the table. Lookups at rising
  /// frequencies take constant time.
  Result<float> InterpVal(double frequency, FreqScale scale, DuplicateRule rule = DuplicateRule::Larger);
  /// -1 when the table is unusable.
  double MaxFreq() const;
  double MinFreq() const;
  /// Empty when the table is unusable.
  const std::vector<FactorPoint>& Points() const { return points_; }
  /// Copies of the columns with one element more than there are points, which is 0; a single 0 when unusable.
  void GetTable(std::vector<double>& frequencies, std::vector<float>& values);
  /// Writes the table in the factor table format.
  Done SaveFile(const std::string& fileName) const;

 private:
  Shell& shell_;
  /// Empty, or at least two points in rising order.
  std::vector<FactorPoint> points_;
  FrequencyCursor cursor_;
};

}  // namespace hylden
