#include <algorithm>
#include <cmath>

#include "script/Conversions.h"
#include "script/DateTime.h"
#include "script/Operators.h"
#include "text/Numbers.h"

namespace hylden::script {
namespace {

__extension__ typedef __int128 Wide;

bool IsWhole(Kind kind) {
  return kind == Kind::Byte || kind == Kind::Integer || kind == Kind::Long;
}

/// The kind as which an operand takes part in arithmetic. @throws ScriptError when it can't
Kind ArithmeticKind(const Value& value) {
  switch (value.Type()) {
    case Kind::Empty:
    case Kind::Boolean:
      return Kind::Integer;
    case Kind::String:
      return Kind::Double;
    case Kind::Null:
    case Kind::Array:
    case Kind::Object:
    case Kind::Nothing:
    case Kind::Missing:
      RaiseNotPlain(value);
    default:
      return value.Type();
  }
}

void RequireNumbers(const Value& left, const Value& right) {
  ArithmeticKind(left);
  ArithmeticKind(right);
}

/// The kind of a result; of the fractional kinds a single next to a Long loses digits, so both become Double.
Kind ResultKind(Operator operation, Kind left, Kind right) {
  const Kind wider = std::max(left, right), narrower = std::min(left, right);
  if (wider == Kind::Single && narrower == Kind::Long) return Kind::Double;
  if (operation == Operator::Multiply) {
    if (wider == Kind::Date || left == Kind::Double || right == Kind::Double) return Kind::Double;
  }
  if (operation == Operator::Subtract && narrower == Kind::Date) return Kind::Double;
  return wider;
}

Value RealResult(double value) {
  if (!std::isfinite(value)) Raise(Failure::Overflow);
  return Value::Double(value);
}

Value WholeResult(Kind kind, std::int64_t value) {
  if (kind == Kind::Byte && value >= 0 && value <= 255) return Value::Byte(static_cast<std::uint8_t>(value));
  if (kind != Kind::Long && value >= -32768 && value <= 32767) return Value::Integer(static_cast<std::int16_t>(value));
  if (value >= INT32_MIN && value <= INT32_MAX) return Value::Long(static_cast<std::int32_t>(value));
  return Value::Double(static_cast<double>(value));
}

template <class Number>
Number Apply(Operator operation, Number left, Number right) {
  if (operation == Operator::Add) return left + right;
  return operation == Operator::Subtract ? left - right : left * right;
}

Value CurrencyResult(Operator operation, const Value& left, const Value& right) {
  Wide result = Apply<Wide>(operation, ToCurrency(left), ToCurrency(right));
  if (operation == Operator::Multiply) {
    const Wide rest = result % 10000;
    result /= 10000;
    const Wide twice = rest < 0 ? -2 * rest : 2 * rest;
    if (twice > 10000 || (twice == 10000 && result % 2 != 0)) result += rest < 0 ? -1 : 1;
  }
  if (result > INT64_MAX || result < INT64_MIN) Raise(Failure::Overflow);
  return Value::Currency(static_cast<std::int64_t>(result));
}

/// Add, Subtract and Multiply of operands that are not Null.
Value AddLike(Operator operation, const Value& left, const Value& right) {
  const Kind kind = ResultKind(operation, ArithmeticKind(left), ArithmeticKind(right));
  if (IsWhole(kind)) return WholeResult(kind, Apply<std::int64_t>(operation, left.Whole(), right.Whole()));
  if (kind == Kind::Currency) return CurrencyResult(operation, left, right);
  const double result = Apply(operation, ToDouble(left), ToDouble(right));
  if (kind == Kind::Single && std::isfinite(static_cast<float>(result))) {
    return Value::Single(static_cast<float>(result));
  }
  if (kind == Kind::Date && IsDateSerial(result)) return Value::Date(result);
  return RealResult(result);
}

Value Joined(const Value& left, const Value& right, Budget& budget) {
  Value first = ToText(left), second = ToText(right);
  if (second.Chars().empty()) return first;
  if (first.Chars().empty()) return second;
  const std::size_t length = first.Chars().size() + second.Chars().size();
  budget.ChargeText(length);
  std::u16string text;
  text.reserve(length);
  text.append(first.Chars()).append(second.Chars());
  return Value::Text(std::move(text));
}

/// Texts are joined by "+" too; Empty adds nothing to a text.
Value Sum(const Value& left, const Value& right, Budget& budget) {
  const bool leftText = left.Is(Kind::String), rightText = right.Is(Kind::String);
  if (leftText && (rightText || right.Is(Kind::Empty))) return Joined(left, right, budget);
  if (rightText && left.Is(Kind::Empty)) return right;
  return AddLike(Operator::Add, left, right);
}

/// A quotient is a Double, but no more exact than a Single next to which nothing wider stands.
Value Quotient(const Value& left, const Value& right) {
  const Kind first = ArithmeticKind(left), second = ArithmeticKind(right);
  const double dividend = ToDouble(left), divisor = ToDouble(right);
  if (divisor == 0) Raise(dividend == 0 ? Failure::Overflow : Failure::DivisionByZero);
  const double result = dividend / divisor;
  const bool isSingle = std::max(first, second) == Kind::Single && std::min(first, second) != Kind::Long;
  if (isSingle && std::isfinite(static_cast<float>(result))) return Value::Single(static_cast<float>(result));
  return RealResult(result);
}

/// WholeDivide and Modulo: operands are rounded to whole numbers first.
Value WholeQuotient(Operator operation, const Value& left, const Value& right) {
  const Kind wider = std::max(ArithmeticKind(left), ArithmeticKind(right));
  const std::int64_t dividend = ToLong(left), divisor = ToLong(right);
  if (divisor == 0) Raise(Failure::DivisionByZero);
  const std::int64_t result = operation == Operator::Modulo ? dividend % divisor : dividend / divisor;
  if (result > INT32_MAX) Raise(Failure::Overflow);
  return WholeResult(IsWhole(wider) ? wider : Kind::Long, result);
}

Value Power(const Value& left, const Value& right) {
  RequireNumbers(left, right);
  const double base = ToDouble(left), exponent = ToDouble(right);
  const bool undefined = (base < 0 && exponent != std::trunc(exponent)) || (base == 0 && exponent < 0);
  if (undefined) Raise(Failure::InvalidProcedureCall);
  return RealResult(std::pow(base, exponent));
}

}  // namespace

Value Calculate(Operator operation, const Value& left, const Value& right, Budget& budget) {
  const bool leftNull = left.Is(Kind::Null), rightNull = right.Is(Kind::Null);
  if (operation == Operator::Concatenate && leftNull != rightNull) {
    return ToText(leftNull ? right : left);
  }
  if (leftNull || rightNull) return Value::Null();
  switch (operation) {
    case Operator::Concatenate:
      return Joined(left, right, budget);
    case Operator::Add:
      return Sum(left, right, budget);
    case Operator::Subtract:
    case Operator::Multiply:
      return AddLike(operation, left, right);
    case Operator::Divide:
      return Quotient(left, right);
    case Operator::Power:
      return Power(left, right);
    default:
      return WholeQuotient(operation, left, right);
  }
}

Value Negated(const Value& value) {
  if (value.Is(Kind::Null)) return value;
  const Kind kind = ArithmeticKind(value);
  if (IsWhole(kind)) return WholeResult(kind, -std::int64_t{value.Whole()});
  if (kind == Kind::Single) return Value::Single(-value.SingleValue());
  if (kind == Kind::Currency) {
    if (value.Scaled() == INT64_MIN) Raise(Failure::Overflow);
    return Value::Currency(-value.Scaled());
  }
  const double turned = -ToDouble(value);
  return kind == Kind::Date && IsDateSerial(turned) ? Value::Date(turned) : Value::Double(turned);
}

}  // namespace hylden::script
