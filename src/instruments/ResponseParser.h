#pragma once

#include <optional>
#include <string>

#include "script/ScriptEngine.h"
#include "shell/Failure.h"

namespace hylden {

class Shell;

/// What becomes of an answer under an expression.
struct ParseExplanation {
  Result<std::string> Parsed;          ///< as the drivers get it
  std::string Text;                    ///< in words: its kind and what is read from it, or where the error is
  std::optional<std::size_t> At = {};  ///< the characters before an error, where it has a place
};

/// Turns instrument answers into values by the users' script expressions; owns the program's one script engine.
class ResponseParser {
 public:
  explicit ResponseParser(Shell& shell);

  /// The expression's value as text, with the answer bound to x and to RetString; or the number and
  /// description of an error in it.
  Result<std::string> ParseAnswer(const std::string& answer, const std::string& expression);
  /// The same for somebody who writes the expression.
  ParseExplanation Explain(const std::string& answer, const std::string& expression);

 private:
  ScriptEngine::Evaluated Evaluate(const std::string& answer, const std::string& expression);
  static std::string ErrorText(const RuntimeError& error);

  clsHyLib library_;
  ScriptEngine engine_;
};

}  // namespace hylden
