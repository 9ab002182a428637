#pragma once

#include <string>
#include <string_view>

#include "script/ScriptEngine.h"

namespace hylden::script {

/// The engine's failures by their customary numbers: run-time failures below 1000, failures of the text itself above.
enum class Failure : int {
  InvalidProcedureCall = 5,
  Overflow = 6,
  OutOfMemory = 7,
  SubscriptOutOfRange = 9,
  DivisionByZero = 11,
  TypeMismatch = 13,
  OutOfStringSpace = 14,
  OutOfStackSpace = 28,
  ObjectVariableNotSet = 91,
  InvalidUseOfNull = 94,
  ObjectRequired = 424,
  UnsupportedMember = 438,
  WrongNumberOfArguments = 450,
  IllegalAssignment = 501,
  TextTooLong = 1001,
  SyntaxError = 1002,
  ExpectedRightParenthesis = 1006,
  ExpectedRightBracket = 1007,
  ExpectedIdentifier = 1010,
  ExpectedEqualSign = 1011,
  ExpectedStatement = 1024,
  ExpectedEndOfStatement = 1025,
  InvalidNumber = 1031,
  InvalidCharacter = 1032,
  UnterminatedString = 1033,
};

/// The customary description, without context.
std::string_view Description(Failure failure);

/// @throws ScriptError always
[[noreturn]] void Raise(Failure failure);
/// The description is followed by what failed: "Type mismatch: 'CInt'".
[[noreturn]] void Raise(Failure failure, std::string_view context);

/// The failure as it is reported of a function: the function takes the place of the operand as context. Exhausted
/// bounds are reported without context, for the function is not what was wrong.
ScriptError InFunction(const ScriptError& error, std::string_view function);

}  // namespace hylden::script
