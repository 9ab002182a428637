#include "text/Numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "text/Case.h"
#include "text/Decimal.h"
#include "text/RuntimeError.h"

namespace hylden {
namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

std::string PlainText(const Decimal& number) {
  std::string text;
  text.reserve(34);
  if (number.negative) text += '-';
  const int whole = std::max(number.point, 0);
  if (whole == 0) text += '0';
  for (int i = 0; i < whole; ++i) text += i < number.count ? number.digits[i] : '0';
  if (number.count > number.point) {
    text += '.';
    text.append(static_cast<std::size_t>(std::max(-number.point, 0)), '0');
    text.append(number.digits + whole, number.digits + number.count);
  }
  return text;
}

std::string ExponentText(const Decimal& number) {
  std::string text;
  if (number.negative) text += '-';
  text += number.digits[0];
  if (number.count > 1) {
    text += '.';
    text.append(number.digits + 1, number.digits + number.count);
  }
  const int exponent = number.point - 1;
  text += exponent < 0 ? "E-" : "E+";
  if (std::abs(exponent) < 10) text += '0';
  return text += std::to_string(std::abs(exponent));
}

template <class Real>
std::string Shortest(Real value, int significant) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
  const Decimal number = DecimalOf(value);
  const bool plain = number.point <= significant && number.count - number.point <= significant;
  return plain ? PlainText(number) : ExponentText(number);
}

std::string WithSignPosition(std::string text) {
  const std::size_t start = text[0] == '-' ? 1 : 0;
  if (text.compare(start, 2, "0.") == 0) text.erase(start, 1);
  return start == 1 ? text : " " + text;
}

/// What a scan found at the start of a text: the number as from_chars reads it, and where it ended.
struct Scan {
  std::string digits;
  std::size_t end = 0;
  bool found = false;
};

/// A comma groups digits only where a digit stands on both sides of it.
bool IsGrouping(std::string_view text, std::size_t at) {
  return text[at] == ',' && at > 0 && IsDigit(text[at - 1]) && at + 1 < text.size() && IsDigit(text[at + 1]);
}

/// Takes an exponent when digits follow it; "5 dBm" and "12E" have none.
void ScanExponent(std::string_view text, Scan& scan) {
  std::size_t at = scan.end;
  if (at >= text.size() || std::string_view("eEdD").find(text[at]) == std::string_view::npos) return;
  ++at;
  const bool hasSign = at < text.size() && (text[at] == '+' || text[at] == '-');
  const bool negative = hasSign && text[at] == '-';
  if (hasSign) ++at;
  if (at >= text.size() || !IsDigit(text[at])) return;
  scan.digits += negative ? "e-" : "e";
  for (; at < text.size() && IsDigit(text[at]); ++at) scan.digits += text[at];
  scan.end = at;
}

Scan ScanNumber(std::string_view text, bool grouping) {
  Scan scan;
  std::size_t at = 0;
  if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
    if (text[at++] == '-') scan.digits += '-';
    while (at < text.size() && IsBlank(text[at])) ++at;
  }
  for (; at < text.size(); ++at) {
    if (IsDigit(text[at])) {
      scan.digits += text[at];
      scan.found = true;
    } else if (!grouping || !IsGrouping(text, at)) {
      break;
    }
  }
  if (at < text.size() && text[at] == '.') {
    scan.digits += scan.found ? "." : "0.";
    for (++at; at < text.size() && IsDigit(text[at]); ++at) {
      scan.digits += text[at];
      scan.found = true;
    }
  }
  scan.end = at;
  if (scan.found) ScanExponent(text, scan);
  return scan;
}

/// Whether a number beyond the range of a double is beyond it upwards.
bool IsHuge(std::string_view digits) {
  const std::size_t mark = digits.find('e');
  const std::string_view mantissa = digits.substr(0, mark);
  const std::size_t first = mantissa.find_first_of("123456789");
  if (first == std::string_view::npos) return false;
  if (mark != std::string_view::npos && digits.substr(mark + 1).size() > 8) return digits[mark + 1] != '-';
  long exponent = 0;
  if (mark != std::string_view::npos)
    std::from_chars(digits.data() + mark + 1, digits.data() + digits.size(), exponent);
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  return exponent + static_cast<long>(point) - static_cast<long>(first) > 0;
}

double ValueOf(const std::string& digits) {
  double value = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (read.ec != std::errc::result_out_of_range) return value;
  const double size = IsHuge(digits) ? std::numeric_limits<double>::infinity() : 0.0;
  return digits[0] == '-' ? -size : size;
}

struct PlainNumber {
  double value = 0;
  std::size_t end = 0;
};

/// The number at the start of a text, when it is of the common kind that needs no second look.
std::optional<PlainNumber> ReadPlain(std::string_view text) {
  const bool hasSign = !text.empty() && (text[0] == '+' || text[0] == '-');
  const std::size_t first = hasSign ? 1 : 0;
  if (first >= text.size() || (!IsDigit(text[first]) && text[first] != '.')) return std::nullopt;
  const char* const end = text.data() + text.size();
  PlainNumber number;
  const auto read = std::from_chars(text.data() + first, end, number.value);
  if (read.ec != std::errc() || !std::isfinite(number.value)) return std::nullopt;
  if (read.ptr != end && (*read.ptr == 'D' || *read.ptr == 'd')) return std::nullopt;
  if (text[0] == '-') number.value = -number.value;
  number.end = static_cast<std::size_t>(read.ptr - text.data());
  return number;
}

/// "&H1F" and "&O17" (or "&17"), without surrounding blanks. Up to 64 bits.
std::optional<std::uint64_t> PrefixedWhole(std::string_view text) {
  if (text.size() < 2 || text[0] != '&') return std::nullopt;
  const bool hex = text[1] == 'H' || text[1] == 'h';
  const bool octal = text[1] == 'O' || text[1] == 'o';
  text.remove_prefix(hex || octal ? 2 : 1);
  std::uint64_t value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value, hex ? 16 : 8);
  if (text.empty() || read.ec != std::errc() || read.ptr != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<double> WholeTextNumber(std::string_view text, Commas commas) {
  const std::string_view number = Trim(text);
  if (const auto plain = ReadPlain(number); plain && plain->end == number.size()) return plain->value;
  if (const auto prefixed = PrefixedWhole(number)) return static_cast<double>(*prefixed);
  const Scan scan = ScanNumber(number, commas == Commas::Grouping);
  if (!scan.found || scan.end != number.size()) return std::nullopt;
  return ValueOf(scan.digits);
}

/// A prefixed number fills the bits of its type: &HFFFF is -1 as a 16-bit number.
template <class Whole, class Bits>
Whole ToWhole(std::string_view text) {
  if (const auto prefixed = PrefixedWhole(Trim(text))) {
    if (*prefixed > std::numeric_limits<Bits>::max()) throw RuntimeError(ErrorNumber::Overflow);
    return static_cast<Whole>(static_cast<Bits>(*prefixed));
  }
  const double value = NearestWhole(ToDouble(text));
  if (value < std::numeric_limits<Whole>::min() || value > std::numeric_limits<Whole>::max())
    throw RuntimeError(ErrorNumber::Overflow);
  return static_cast<Whole>(value);
}

}  // namespace

std::string ShortestText(double value) {
  return Shortest(value, 15);
}

std::string ShortestText(float value) {
  return Shortest(value, 7);
}

std::string PrintText(double value) {
  return WithSignPosition(ShortestText(value));
}

std::string PrintText(float value) {
  return WithSignPosition(ShortestText(value));
}

std::string PrintText(std::int32_t value) {
  return WithSignPosition(std::to_string(value));
}

double LeadingNumber(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t\r\n");
  if (start == std::string_view::npos) return 0;
  if (const auto plain = ReadPlain(text.substr(start))) return plain->value;
  const Scan scan = ScanNumber(text.substr(start), false);
  return scan.found ? ValueOf(scan.digits) : 0;
}

bool IsNumeric(std::string_view text, Commas commas) {
  const auto value = WholeTextNumber(text, commas);
  return value && std::isfinite(*value);
}

double ToDouble(std::string_view text, Commas commas) {
  const auto value = WholeTextNumber(text, commas);
  if (!value) throw RuntimeError(ErrorNumber::TypeMismatch);
  if (!std::isfinite(*value)) throw RuntimeError(ErrorNumber::Overflow);
  return *value;
}

float ToSingle(std::string_view text) {
  const double value = ToDouble(text);
  // Half a last digit above the largest single still rounds down to it.
  if (std::abs(value) >= 0x1.ffffffp+127) throw RuntimeError(ErrorNumber::Overflow);
  return static_cast<float>(value);
}

std::int16_t ToInt16(std::string_view text) {
  return ToWhole<std::int16_t, std::uint16_t>(text);
}

std::int32_t ToInt32(std::string_view text) {
  return ToWhole<std::int32_t, std::uint32_t>(text);
}

bool ToFlag(std::string_view text) {
  const std::string_view word = Trim(text);
  if (SameIgnoringCase(word, "true")) return true;
  if (SameIgnoringCase(word, "false")) return false;
  return ToDouble(word) != 0;
}

double NearestWhole(double value) {
  return std::nearbyint(value);
}

std::string FlagText(bool value) {
  return value ? "True" : "False";
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace hylden
