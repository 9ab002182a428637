#include "text/Decimal.h"

#include <charconv>

namespace hylden {
namespace {

template <class Real>
Decimal DigitsOf(Real value, int significant) {
  Decimal result;
  if (value == 0) return result;
  char text[32];
  const auto written = std::to_chars(text, text + sizeof text, value, std::chars_format::scientific, significant - 1);
  const char* at = text;
  result.negative = *at == '-';
  if (result.negative) ++at;
  for (; *at != 'e'; ++at)
    if (*at != '.') result.digits[result.count++] = *at;
  while (result.count > 0 && result.digits[result.count - 1] == '0') --result.count;
  ++at;
  if (*at == '+') ++at;
  int exponent = 0;
  std::from_chars(at, written.ptr, exponent);
  result.point = exponent + 1;
  return result;
}

}  // namespace

Decimal DecimalOf(double value) {
  return DigitsOf(value, 15);
}

Decimal DecimalOf(float value) {
  return DigitsOf(value, 7);
}

}  // namespace hylden
