#include <algorithm>
#include <cmath>

#include "platform/Clock.h"
#include "script/Conversions.h"
#include "script/Errors.h"
#include "script/FunctionTable.h"
#include "script/Operators.h"
#include "script/Unicode.h"
#include "text/Numbers.h"

namespace hylden::script {
namespace {

Value Real(double value) {
  if (!std::isfinite(value)) Raise(Failure::Overflow);
  return Value::Double(value);
}

template <double (*Function)(double)>
Value Apply(const Call& call) {
  return Real(Function(call.Number(0)));
}

Value Log(const Call& call) {
  const double number = call.Number(0);
  if (number <= 0) Raise(Failure::InvalidProcedureCall);
  return Real(std::log(number));
}

Value Sqr(const Call& call) {
  const double number = call.Number(0);
  if (number < 0) Raise(Failure::InvalidProcedureCall);
  return Real(std::sqrt(number));
}

Value Abs(const Call& call) {
  // Subtracting nothing gives the value its arithmetic kind: texts become Double, Empty and Booleans Integer.
  const Value number = Calculate(Operator::Subtract, call[0], Value::Byte(0), call.Work());
  return ToDouble(number) < 0 ? Negated(number) : number;
}

Value Sgn(const Call& call) {
  const double number = call.Number(0);
  return Value::Integer(static_cast<std::int16_t>((number > 0) - (number < 0)));
}

/// A value of a fractional kind with another amount; whole numbers stay as they are, texts become Double.
template <class Change>
Value Changed(const Value& value, Change change) {
  switch (value.Type()) {
    case Kind::Byte:
    case Kind::Integer:
    case Kind::Long:
      return value;
    case Kind::Empty:
    case Kind::Boolean:
      return Value::Integer(static_cast<std::int16_t>(ToLong(value)));
    case Kind::Single:
      return Value::Single(static_cast<float>(change(static_cast<double>(value.SingleValue()))));
    case Kind::Currency:
      return Value::Currency(ToCurrency(Value::Double(change(ToDouble(value)))));
    case Kind::Date:
      return Value::Date(change(value.Real()));
    default:
      return Real(change(ToDouble(value)));
  }
}

Value Int(const Call& call) {
  return Changed(call[0], [](double number) { return std::floor(number); });
}

Value Fix(const Call& call) {
  return Changed(call[0], [](double number) { return std::trunc(number); });
}

/// To so many decimals, ties to the even digit.
Value Round(const Call& call) {
  constexpr std::int32_t kMostDecimals = 22;
  const std::int32_t decimals = call.LongOr(1, 0);
  if (decimals < 0 || decimals > kMostDecimals) Raise(Failure::InvalidProcedureCall);
  const double scale = std::pow(10.0, decimals);
  return Changed(call[0], [scale](double number) {
    const double scaled = number * scale;
    // Beyond 2^53 a double has no decimals left to round.
    return std::fabs(scaled) < 9007199254740992.0 ? NearestWhole(scaled) / scale : number;
  });
}

Value Rnd(const Call& call) {
  Random& random = call.Shared().random;
  const float number = call.Has(0) ? ToSingle(call[0]) : 1.0f;
  if (number < 0) random.Restart(number);
  return Value::Single(number == 0 ? random.Last() : random.Next());
}

Value Randomize(const Call& call) {
  const double number = call.Has(0) ? call.Number(0) : call.Shared().clock.SecondsSinceMidnight();
  call.Shared().random.Mix(static_cast<float>(number));
  return Value();
}

Value Rgb(const Call& call) {
  std::int32_t colour = 0;
  for (std::size_t i = 3; i-- > 0;) {
    const auto part = static_cast<std::int32_t>(std::min<std::size_t>(call.Length(i), 255));
    colour = colour * 256 + part;
  }
  return Value::Long(colour);
}

/// The bits of a whole number in groups of so many; an Integer has 16 bits, everything else 32.
Value Digits(const Value& value, unsigned bitsPerDigit) {
  const std::int32_t number = ToLong(value);
  const bool isShort = value.Is(Kind::Integer) || value.Is(Kind::Boolean);
  auto bits = static_cast<std::uint32_t>(number);
  if (isShort) bits &= 0xFFFFu;
  std::string digits;
  do {
    digits.push_back("0123456789ABCDEF"[bits & ((1u << bitsPerDigit) - 1)]);
    bits >>= bitsPerDigit;
  } while (bits != 0);
  std::reverse(digits.begin(), digits.end());
  return Value::Text(Widen(digits));
}

constexpr FunctionEntry kFunctions[] = {
    {"Abs", 1, 1, OnNull::GiveNull, Abs},
    {"Atn", 1, 1, OnNull::Fail, Apply<::atan>},
    {"Cos", 1, 1, OnNull::Fail, Apply<::cos>},
    {"Exp", 1, 1, OnNull::Fail, Apply<::exp>},
    {"Fix", 1, 1, OnNull::GiveNull, Fix},
    {"Hex", 1, 1, OnNull::GiveNull, [](const Call& call) { return Digits(call[0], 4); }},
    {"Int", 1, 1, OnNull::GiveNull, Int},
    {"Log", 1, 1, OnNull::Fail, Log},
    {"Oct", 1, 1, OnNull::GiveNull, [](const Call& call) { return Digits(call[0], 3); }},
    {"RGB", 3, 3, OnNull::Fail, Rgb},
    {"Randomize", 0, 1, OnNull::Fail, Randomize},
    {"Rnd", 0, 1, OnNull::Fail, Rnd},
    {"Round", 1, 2, OnNull::GiveNull, Round},
    {"Sgn", 1, 1, OnNull::Fail, Sgn},
    {"Sin", 1, 1, OnNull::Fail, Apply<::sin>},
    {"Sqr", 1, 1, OnNull::Fail, Sqr},
    {"Tan", 1, 1, OnNull::Fail, Apply<::tan>},
};

}  // namespace

std::span<const FunctionEntry> MathFunctions() {
  return kFunctions;
}

}  // namespace hylden::script
