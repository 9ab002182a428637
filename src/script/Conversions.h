#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "script/Value.h"

namespace hylden::script {

/// Conversions between the kinds. All of them fail alike: InvalidUseOfNull for Null, TypeMismatch for a text that is no
/// such value, for an array and for an omitted argument, ObjectVariableNotSet for Nothing, UnsupportedMember for an
/// object, Overflow where the kind cannot hold the number. Empty is 0, False and "". Whole numbers are taken to the
/// nearest, ties to even. @throws ScriptError
double ToDouble(const Value& value);
float ToSingle(const Value& value);
std::int32_t ToLong(const Value& value);
std::int16_t ToInteger(const Value& value);
std::uint8_t ToByte(const Value& value);
bool ToBoolean(const Value& value);
/// The amount times 10000.
std::int64_t ToCurrency(const Value& value);
/// The serial of a date. @param yearWhenMissing  as in ParseDate
double ToDate(const Value& value, int yearWhenMissing);
/// A String: numbers in their shortest form, "True", "1/5/2026 9:00:00 AM".
Value ToText(const Value& value);

/// The number that the whole text stands for: decimal, with grouping commas, a currency sign, an exponent, or &H and &O
/// forms, blanks and line ends around it. A minus may stand behind it, too, or as parentheses around it. Nothing when
/// it is no number.
std::optional<double> NumberOf(std::u16string_view text);

/// Raises the failure that the kind (Null, array, object...) causes when a plain value is needed.
[[noreturn]] void RaiseNotPlain(const Value& value);

/// How an error names an operand: [string: "abc"], [number: 5].
std::string OperandContext(const Value& value);

}  // namespace hylden::script
