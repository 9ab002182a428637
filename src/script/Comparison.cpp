#include <algorithm>

#include "script/Conversions.h"
#include "script/Operators.h"

namespace hylden::script {
namespace {

template <class T>
int OrderOf(const T& left, const T& right) {
  return left < right ? -1 : (right < left ? 1 : 0);
}

int OrderOfTexts(const Value& left, const Value& right, Budget& budget) {
  budget.Charge(std::min(left.Chars().size(), right.Chars().size()));
  return OrderOf(left.Chars().compare(right.Chars()), 0);
}

void RequirePlain(const Value& value) {
  if (value.Type() >= Kind::Array) RaiseNotPlain(value);
}

/// The order of a text and another kind (not Empty), from the text's side.
int OrderOfTextAndOther(const Value& text, const Value& other, bool textIsLiteral, bool otherIsLiteral,
                        Budget& budget) {
  if (!otherIsLiteral) {
    // Both computed: a text comes after every number. A literal text takes the other operand as text.
    return textIsLiteral ? OrderOfTexts(text, ToText(other), budget) : 1;
  }
  if (other.Is(Kind::Boolean)) return OrderOf(ToBoolean(text) ? -1 : 0, other.Whole());
  if (other.Is(Kind::Date)) return OrderOf(ToDate(text, 0), other.Real());
  return OrderOf(ToDouble(text), ToDouble(other));
}

/// The whole number of a logical operand, and the kind its result takes.
struct Bits {
  std::int32_t value = 0;
  Kind kind = Kind::Long;
};

Bits BitsOf(const Value& value) {
  switch (value.Type()) {
    case Kind::Empty:
      return {0, Kind::Integer};
    case Kind::Boolean:
    case Kind::Byte:
    case Kind::Integer:
    case Kind::Long:
      return {value.Whole(), value.Type()};
    case Kind::String: {
      const std::u16string_view chars = value.Chars();
      const bool isNumber = chars.size() > 5 || NumberOf(chars).has_value();
      if (!isNumber) return {ToBoolean(value) ? -1 : 0, Kind::Boolean};
      return {ToLong(value), Kind::Long};
    }
    default:
      return {ToLong(value), Kind::Long};
  }
}

Value FromBits(std::int32_t bits, Kind kind) {
  switch (kind) {
    case Kind::Boolean:
      return Value::Boolean(bits != 0);
    case Kind::Byte:
      return Value::Byte(static_cast<std::uint8_t>(bits));
    case Kind::Integer:
      return Value::Integer(static_cast<std::int16_t>(bits));
    default:
      return Value::Long(bits);
  }
}

/// Booleans stay Boolean and bytes Byte among themselves; mixed small kinds meet in Integer.
Kind CommonKind(Kind left, Kind right) {
  if (left == right) return left;
  return left == Kind::Long || right == Kind::Long ? Kind::Long : Kind::Integer;
}

std::int32_t CombineBits(Operator operation, std::int32_t left, std::int32_t right) {
  switch (operation) {
    case Operator::And:
      return left & right;
    case Operator::Or:
      return left | right;
    case Operator::Xor:
      return left ^ right;
    case Operator::Eqv:
      return ~(left ^ right);
    default:
      return ~left | right;
  }
}

/// A Null operand decides nothing; the result is known only where the other operand decides alone.
Value CombineWithNull(Operator operation, const Value& left, const Value& right) {
  if (operation == Operator::Xor || operation == Operator::Eqv) return Value::Null();
  if (operation == Operator::Imp) return CombineWithNull(Operator::Or, Complement(left), right);
  const Value& known = left.Is(Kind::Null) ? right : left;
  if (known.Is(Kind::Null)) return Value::Null();
  const Bits bits = BitsOf(known);
  const bool decides = (bits.value == 0) == (operation == Operator::And);
  return decides ? FromBits(bits.value, bits.kind) : Value::Null();
}

}  // namespace

Value Combine(Operator operation, const Value& left, const Value& right) {
  RequirePlain(left);
  RequirePlain(right);
  if (left.Is(Kind::Null) || right.Is(Kind::Null)) return CombineWithNull(operation, left, right);
  const Bits first = BitsOf(left), second = BitsOf(right);
  return FromBits(CombineBits(operation, first.value, second.value), CommonKind(first.kind, second.kind));
}

Value Complement(const Value& value) {
  if (value.Is(Kind::Null)) return value;
  const Bits bits = BitsOf(value);
  return FromBits(~bits.value, bits.kind);
}

std::optional<int> Order(const Value& left, const Value& right, bool leftIsLiteral, bool rightIsLiteral,
                         Budget& budget) {
  RequirePlain(left);
  RequirePlain(right);
  if (left.Is(Kind::Null) || right.Is(Kind::Null)) return std::nullopt;
  const bool leftText = left.Is(Kind::String), rightText = right.Is(Kind::String);
  if (leftText && rightText) return OrderOfTexts(left, right, budget);
  if (leftText && right.Is(Kind::Empty)) return OrderOf(left.Chars().size(), std::size_t{0});
  if (rightText && left.Is(Kind::Empty)) return OrderOf(std::size_t{0}, right.Chars().size());
  if (leftText) return OrderOfTextAndOther(left, right, leftIsLiteral, rightIsLiteral, budget);
  if (rightText) return -OrderOfTextAndOther(right, left, rightIsLiteral, leftIsLiteral, budget);
  if (left.Is(Kind::Currency) && right.Is(Kind::Currency)) return OrderOf(left.Scaled(), right.Scaled());
  return OrderOf(ToDouble(left), ToDouble(right));
}

Value Compared(Operator operation, std::optional<int> order) {
  if (!order) return Value::Null();
  switch (operation) {
    case Operator::Equal:
      return Value::Boolean(*order == 0);
    case Operator::NotEqual:
      return Value::Boolean(*order != 0);
    case Operator::Less:
      return Value::Boolean(*order < 0);
    case Operator::Greater:
      return Value::Boolean(*order > 0);
    case Operator::LessOrEqual:
      return Value::Boolean(*order <= 0);
    default:
      return Value::Boolean(*order >= 0);
  }
}

Value SameObject(const Value& left, const Value& right) {
  for (const Value* value : {&left, &right}) {
    if (!value->Is(Kind::Object) && !value->Is(Kind::Nothing)) Raise(Failure::ObjectRequired);
  }
  if (left.Type() != right.Type()) return Value::Boolean(false);
  return Value::Boolean(left.Is(Kind::Nothing) || &left.Library() == &right.Library());
}

}  // namespace hylden::script
