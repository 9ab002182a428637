#include "script/Errors.h"

namespace hylden::script {
namespace {

ScriptError Build(Failure failure, std::string_view context) {
  std::string description(Description(failure));
  if (!context.empty()) description.append(": '").append(context).append("'");
  return ScriptError(static_cast<int>(failure), description);
}

}  // namespace

std::string_view Description(Failure failure) {
  switch (failure) {
    case Failure::InvalidProcedureCall:
      return "Invalid procedure call or argument";
    case Failure::Overflow:
      return "Overflow";
    case Failure::OutOfMemory:
      return "Out of memory";
    case Failure::SubscriptOutOfRange:
      return "Subscript out of range";
    case Failure::DivisionByZero:
      return "Division by zero";
    case Failure::TypeMismatch:
      return "Type mismatch";
    case Failure::OutOfStringSpace:
      return "Out of string space";
    case Failure::OutOfStackSpace:
      return "Out of stack space";
    case Failure::ObjectVariableNotSet:
      return "Object variable not set";
    case Failure::InvalidUseOfNull:
      return "Invalid use of Null";
    case Failure::ObjectRequired:
      return "Object required";
    case Failure::UnsupportedMember:
      return "Object doesn't support this property or method";
    case Failure::WrongNumberOfArguments:
      return "Wrong number of arguments or invalid property assignment";
    case Failure::IllegalAssignment:
      return "Illegal assignment";
    case Failure::TextTooLong:
      return "Out of memory";
    case Failure::SyntaxError:
      return "Syntax error";
    case Failure::ExpectedRightParenthesis:
      return "Expected ')'";
    case Failure::ExpectedRightBracket:
      return "Expected ']'";
    case Failure::ExpectedIdentifier:
      return "Expected identifier";
    case Failure::ExpectedEqualSign:
      return "Expected '='";
    case Failure::ExpectedStatement:
      return "Expected statement";
    case Failure::ExpectedEndOfStatement:
      return "Expected end of statement";
    case Failure::InvalidNumber:
      return "Invalid number";
    case Failure::InvalidCharacter:
      return "Invalid character";
    case Failure::UnterminatedString:
      return "Unterminated string constant";
  }
  return "Unknown error";
}

void Raise(Failure failure) {
  throw Build(failure, {});
}

void Raise(Failure failure, std::string_view context) {
  throw Build(failure, context);
}

ScriptError InFunction(const ScriptError& error, std::string_view function) {
  const auto failure = static_cast<Failure>(error.Number());
  switch (failure) {
    case Failure::InvalidProcedureCall:
    case Failure::Overflow:
    case Failure::SubscriptOutOfRange:
    case Failure::TypeMismatch:
    case Failure::InvalidUseOfNull:
      return Build(failure, function);
    default:
      return error;
  }
}

}  // namespace hylden::script
