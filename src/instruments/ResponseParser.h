#pragma once

#include <string>

#include "script/ScriptEngine.h"
#include "shell/Failure.h"

namespace hylden {

class Shell;

/// Turns instrument answers into values by the users' script expressions; owns the program's one script engine.
class ResponseParser {
 public:
  explicit ResponseParser(Shell& shell);

  /// The expression's value as text, with the answer bound to x and to RetString; or the number and
  /// description of an error in it.
  Result<std::string> ParseAnswer(const std::string& answer, const std::string& expression);

 private:
  clsHyLib library_;
  ScriptEngine engine_;
};

}  // namespace hylden
