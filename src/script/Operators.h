#pragma once

#include <cstdint>
#include <optional>

#include "script/Budget.h"
#include "script/Value.h"

namespace hylden::script {

enum class Operator : std::uint8_t {
  Power,
  Negate,
  Multiply,
  Divide,
  WholeDivide,
  Modulo,
  Add,
  Subtract,
  Concatenate,
  Equal,
  NotEqual,
  Less,
  Greater,
  LessOrEqual,
  GreaterOrEqual,
  Is,
  Not,
  And,
  Or,
  Xor,
  Eqv,
  Imp,
};

/// The arithmetic operators and Concatenate. A whole-number result takes the wider kind of its operands and, when that
/// overflows, the next wider one: Byte, Integer, Long, Double. Null gives Null, but Concatenate takes one Null as "".
/// @throws ScriptError
Value Calculate(Operator operation, const Value& left, const Value& right, Budget& budget);

/// Not, And, Or, Xor, Eqv and Imp: bitwise on whole numbers, Boolean on Booleans; Null is "unknown" and gives way where
/// the other operand decides alone. @throws ScriptError
Value Combine(Operator operation, const Value& left, const Value& right);

/// The value with its sign turned. @throws ScriptError
Value Negated(const Value& value);
/// The logical complement. @throws ScriptError
Value Complement(const Value& value);

/// Order of two values: negative, 0 or positive; nothing when either is Null. Texts compare by character codes. Between
/// a number and a text held in variables or computed, the number is the smaller one; next to a literal, the other
/// operand is taken as the literal's kind. @throws ScriptError TypeMismatch when it can't be, or for arrays
std::optional<int> Order(const Value& left, const Value& right, bool leftIsLiteral, bool rightIsLiteral,
                         Budget& budget);

/// One of the comparisons Equal to GreaterOrEqual: a Boolean, or Null.
Value Compared(Operator operation, std::optional<int> order);

/// Whether both are the same object. @throws ScriptError ObjectRequired
Value SameObject(const Value& left, const Value& right);

}  // namespace hylden::script
