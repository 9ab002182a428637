#pragma once

#include <string>

#include "script/ScriptEngine.h"

namespace hylden {

class Shell;

/// Turns instrument answers into values by the users' script expressions; owns the program's one script engine.
class ResponseParser {
 public:
  explicit ResponseParser(Shell& shell);

  /// The expression's value as text, with the answer bound to x and to RetString. An error in it is shown as "Scripting
  /// error" with its number and description, and gives an empty text.
  std::string ParseAnswer(const std::string& answer, const std::string& expression);

 private:
  Shell& shell_;
  clsHyLib library_;
  ScriptEngine engine_;
};

}  // namespace hylden
