#pragma once

namespace hylden {

/// A finite number as the decimal digits that the program shows of it: 0.d1d2d3... times 10^point.
/// The digits have no trailing zeros; zero has none at all.
struct Decimal {
  bool negative = false;
  char digits[15] = {};
  int count = 0;
  int point = 0;
};

/// The digits that count: 15 of a double, 7 of a single. @pre the value is finite
Decimal DecimalOf(double value);
Decimal DecimalOf(float value);

}  // namespace hylden
