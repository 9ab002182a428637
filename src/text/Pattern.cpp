#include "text/Pattern.h"

#include <algorithm>
#include <cmath>

#include "text/Decimal.h"
#include "text/Numbers.h"

namespace hylden {
namespace {

struct DigitPattern {
  std::string_view before, after;
  int wholeDigits = 0;    // least number of digits before the point
  int leastDecimals = 0;  // required digits after the point
  int mostDecimals = 0;
  bool hasPoint = false;
  bool hasDigits = false;
};

bool IsPlace(char c) {
  return c == '#' || c == '0';
}

/// The places from `at` on; `at` ends behind them.
std::string_view TakePlaces(std::string_view pattern, std::size_t& at) {
  const std::size_t start = at;
  while (at < pattern.size() && IsPlace(pattern[at])) ++at;
  return pattern.substr(start, at - start);
}

/// The number of places from the first required one to the end (before the point).
int RequiredWhole(std::string_view places) {
  const std::size_t first = places.find('0');
  return first == std::string_view::npos ? 0 : static_cast<int>(places.size() - first);
}

DigitPattern ReadPattern(std::string_view pattern) {
  DigitPattern result;
  std::size_t at = 0;
  while (at < pattern.size() && !IsPlace(pattern[at]) &&
         !(pattern[at] == '.' && at + 1 < pattern.size() && IsPlace(pattern[at + 1])))
    ++at;
  result.before = pattern.substr(0, at);
  result.hasDigits = at < pattern.size();
  result.wholeDigits = RequiredWhole(TakePlaces(pattern, at));
  if (at < pattern.size() && pattern[at] == '.' && result.hasDigits) {
    result.hasPoint = true;
    const std::string_view decimals = TakePlaces(pattern, ++at);
    result.mostDecimals = static_cast<int>(decimals.size());
    result.leastDecimals = static_cast<int>(decimals.rfind('0') + 1);  // npos + 1 is 0
  }
  result.after = pattern.substr(at);
  return result;
}

/// Digit at a place of the number: 0 is the last one before the point, -1 the first one behind it.
char DigitAt(const Decimal& number, int place) {
  const int index = number.point - 1 - place;
  return index >= 0 && index < number.count ? number.digits[index] : '0';
}

/// Adds one at the last digit; returns whether a digit is carried out in front.
bool RoundUp(std::string& digits) {
  for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
    if (*digit != '9') {
      ++*digit;
      return false;
    }
    *digit = '0';
  }
  return true;
}

/// Digits of the number to `decimals` places behind the point, without leading zeros before it.
std::string RoundedDigits(const Decimal& number, int decimals) {
  std::string digits;
  for (int place = std::max(number.point, 0) - 1; place >= -decimals; --place) digits += DigitAt(number, place);
  if (DigitAt(number, -decimals - 1) >= '5' && RoundUp(digits)) digits.insert(digits.begin(), '1');
  return digits;
}

std::string Fill(const Decimal& number, const DigitPattern& pattern) {
  const std::string digits = RoundedDigits(number, pattern.mostDecimals);
  const std::size_t decimals = static_cast<std::size_t>(pattern.mostDecimals);
  std::string whole = digits.substr(0, digits.size() - decimals);
  std::string behind = digits.substr(digits.size() - decimals);
  const std::size_t required = static_cast<std::size_t>(pattern.wholeDigits);
  if (whole.size() < required) whole.insert(0, required - whole.size(), '0');
  while (behind.size() > static_cast<std::size_t>(pattern.leastDecimals) && behind.back() == '0') behind.pop_back();

  std::string text(pattern.before);
  if (number.negative && digits.find_first_not_of('0') != std::string::npos) text += '-';
  text += whole;
  if (pattern.hasPoint) text += '.';
  text += behind;
  return text.append(pattern.after);
}

template <class Real>
std::string FormatNumber(Real value, std::string_view pattern) {
  if (!std::isfinite(value)) return ShortestText(value);
  const DigitPattern read = ReadPattern(pattern);
  return read.hasDigits ? Fill(DecimalOf(value), read) : std::string(pattern);
}

}  // namespace

std::string Format(double value, std::string_view pattern) {
  return FormatNumber(value, pattern);
}

std::string Format(float value, std::string_view pattern) {
  return FormatNumber(value, pattern);
}

}  // namespace hylden
