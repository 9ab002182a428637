#include "script/Conversions.h"

#include <charconv>
#include <cmath>

#include "script/DateTime.h"
#include "script/Errors.h"
#include "script/Unicode.h"
#include "text/Numbers.h"

namespace hylden::script {
namespace {

// A number needs no more characters than this; a longer text is none.
constexpr std::size_t kLongestNumber = 400;

bool IsBlank(char16_t c) {
  return c == u' ' || (c >= 9 && c <= 13) || c == 0xA0;
}

std::u16string_view Stripped(std::u16string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

/// "&HFF" and "&O17" as the language reads them in a text: 16 bits when four digits do, else 32 bits.
std::optional<double> RadixNumber(std::string_view text) {
  const bool hex = text[1] == 'H' || text[1] == 'h';
  if (!hex && text[1] != 'O' && text[1] != 'o') return std::nullopt;
  std::uint32_t bits = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data() + 2, end, bits, hex ? 16 : 8);
  if (error != std::errc() || stop != end) return std::nullopt;
  if (bits <= 0xFFFF) return static_cast<std::int16_t>(bits);
  return static_cast<std::int32_t>(bits);
}

/// The text without one currency sign, before or after the minus.
std::string WithoutCurrencySign(std::string_view text) {
  std::string plain(text);
  const std::size_t sign = plain.find('$');
  if (sign == 0 || (sign == 1 && (plain[0] == '-' || plain[0] == '+'))) plain.erase(sign, 1);
  return plain;
}

std::optional<double> DecimalNumber(std::string_view text) {
  if (!IsNumeric(text, Commas::Grouping)) return std::nullopt;
  return hylden::ToDouble(text, Commas::Grouping);
}

/// What is left of a number whose sign stands at its end ("5-") or in parentheses ("(5)"), and that sign. Nothing when
/// there is a second sign.
struct SignedText {
  std::string_view digits;
  double sign = 1;
};
std::optional<SignedText> WithoutSignAtEnd(std::string_view text) {
  SignedText number{text};
  const bool inParentheses = text.size() > 1 && text.front() == '(' && text.back() == ')';
  if (inParentheses) {
    number = {Trim(text.substr(1, text.size() - 2)), -1};
  } else if (text.back() == '-' || text.back() == '+') {
    number = {Trim(text.substr(0, text.size() - 1)), text.back() == '-' ? -1.0 : 1.0};
  } else {
    return number;
  }
  const bool signedTwice =
      number.digits.empty() || std::string_view("+-(").find(number.digits.front()) != std::string_view::npos;
  if (signedTwice || number.digits.front() == '&') return std::nullopt;
  return number;
}

[[noreturn]] void RaiseMismatch(const Value& value) {
  Raise(Failure::TypeMismatch, OperandContext(value));
}

/// The nearest whole number within the bounds of a kind.
double WholeWithin(const Value& value, double lowest, double highest) {
  const double whole = NearestWhole(ToDouble(value));
  if (!(whole >= lowest && whole <= highest)) Raise(Failure::Overflow, OperandContext(value));
  return whole;
}

bool EqualsIgnoringCase(std::u16string_view text, std::u16string_view lower) {
  return text.size() == lower.size() && Folded(text) == lower;
}

std::string CurrencyText(std::int64_t scaled) {
  const auto magnitude = scaled < 0 ? 0 - static_cast<std::uint64_t>(scaled) : static_cast<std::uint64_t>(scaled);
  std::string fraction = std::to_string(10000 + magnitude % 10000).substr(1);
  fraction.erase(fraction.find_last_not_of('0') + 1);
  std::string text = (scaled < 0 ? "-" : "") + std::to_string(magnitude / 10000);
  return fraction.empty() ? text : text + "." + fraction;
}

std::string AsciiText(const Value& value) {
  switch (value.Type()) {
    case Kind::Boolean:
      return FlagText(value.Whole() != 0);
    case Kind::Byte:
    case Kind::Integer:
    case Kind::Long:
      return std::to_string(value.Whole());
    case Kind::Single:
      return ShortestText(value.SingleValue());
    case Kind::Double:
      return ShortestText(value.Real());
    case Kind::Currency:
      return CurrencyText(value.Scaled());
    case Kind::Date:
      return DateText(value.Real());
    default:
      RaiseNotPlain(value);
  }
}

}  // namespace

void RaiseNotPlain(const Value& value) {
  switch (value.Type()) {
    case Kind::Null:
      Raise(Failure::InvalidUseOfNull);
    case Kind::Nothing:
      Raise(Failure::ObjectVariableNotSet);
    case Kind::Object:
      Raise(Failure::UnsupportedMember);
    default:
      Raise(Failure::TypeMismatch);
  }
}

std::optional<double> NumberOf(std::u16string_view text) {
  const std::u16string_view stripped = Stripped(text);
  if (stripped.empty() || stripped.size() > kLongestNumber) return std::nullopt;
  std::string narrow;
  narrow.reserve(stripped.size());
  for (const char16_t c : stripped) {
    if (c >= 0x80) return std::nullopt;
    narrow.push_back(static_cast<char>(c));
  }
  if (narrow.size() > 2 && narrow[0] == '&') return RadixNumber(narrow);
  const std::optional<SignedText> parts = WithoutSignAtEnd(narrow);
  if (!parts) return std::nullopt;
  const std::optional<double> number = DecimalNumber(WithoutCurrencySign(parts->digits));
  return number ? std::optional(parts->sign * *number) : std::nullopt;
}

double ToDouble(const Value& value) {
  switch (value.Type()) {
    case Kind::Empty:
      return 0;
    case Kind::Boolean:
    case Kind::Byte:
    case Kind::Integer:
    case Kind::Long:
      return value.Whole();
    case Kind::Single:
      return static_cast<double>(value.SingleValue());
    case Kind::Double:
    case Kind::Date:
      return value.Real();
    case Kind::Currency:
      return static_cast<double>(value.Scaled()) / 10000.0;
    case Kind::String: {
      const std::optional<double> number = NumberOf(value.Chars());
      if (!number) RaiseMismatch(value);
      return *number;
    }
    default:
      RaiseNotPlain(value);
  }
}

float ToSingle(const Value& value) {
  if (value.Is(Kind::Single)) return value.SingleValue();
  const auto single = static_cast<float>(ToDouble(value));
  if (!std::isfinite(single)) Raise(Failure::Overflow);
  return single;
}

std::int32_t ToLong(const Value& value) {
  if (value.Is(Kind::Integer) || value.Is(Kind::Long)) return value.Whole();
  return static_cast<std::int32_t>(WholeWithin(value, -2147483648.0, 2147483647.0));
}

std::int16_t ToInteger(const Value& value) {
  return static_cast<std::int16_t>(WholeWithin(value, -32768, 32767));
}

std::uint8_t ToByte(const Value& value) {
  if (value.Is(Kind::Boolean)) return value.Whole() != 0 ? 255 : 0;
  return static_cast<std::uint8_t>(WholeWithin(value, 0, 255));
}

bool ToBoolean(const Value& value) {
  if (value.Is(Kind::String)) {
    if (EqualsIgnoringCase(value.Chars(), u"true")) return true;
    if (EqualsIgnoringCase(value.Chars(), u"false")) return false;
  }
  return ToDouble(value) != 0;
}

std::int64_t ToCurrency(const Value& value) {
  if (value.Is(Kind::Currency)) return value.Scaled();
  const double scaled = NearestWhole(ToDouble(value) * 10000.0);
  if (!(std::fabs(scaled) < 9223372036854775808.0)) Raise(Failure::Overflow, OperandContext(value));
  return static_cast<std::int64_t>(scaled);
}

double ToDate(const Value& value, int yearWhenMissing) {
  if (value.Is(Kind::Date)) return value.Real();
  if (value.Is(Kind::String)) {
    if (const std::optional<double> date = ParseDate(Stripped(value.Chars()), yearWhenMissing)) return *date;
  }
  const double serial = ToDouble(value);
  if (!IsDateSerial(serial)) Raise(Failure::Overflow, OperandContext(value));
  return serial;
}

Value ToText(const Value& value) {
  if (value.Is(Kind::String)) return value;
  if (value.Is(Kind::Empty)) return Value::Text(u"");
  return Value::Text(Widen(AsciiText(value)));
}

std::string OperandContext(const Value& value) {
  constexpr std::size_t kShown = 60;
  if (value.Is(Kind::String)) return "[string: \"" + ToUtf8(value.Chars().substr(0, kShown)) + "\"]";
  return "[number: " + AsciiText(value) + "]";
}

}  // namespace hylden::script
