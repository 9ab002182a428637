#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "text/RuntimeError.h"

namespace hylden {

class Clock;

/// The library object that scripts see as MathLib; its members are global.
class clsHyLib {
 public:
  /// The answer being parsed (UTF-8).
  std::string RetString;
};

/// A script failure with the engine's customary number and description.
class ScriptError : public RuntimeError {
 public:
  using RuntimeError::RuntimeError;

  /// Where in the text it is, in bytes; nothing where it has no place.
  std::optional<std::size_t> At;
};

/// Evaluates VBScript expressions and single assignments; names without regard to case, texts in UTF-8. There is no
/// access to files, processes or objects beyond MathLib. Every evaluation is bounded in depth, string size and steps;
/// global variables stay until the engine ends. @throws ScriptError
class ScriptEngine {
 public:
  explicit ScriptEngine(const Clock& clock);
  ~ScriptEngine();

  /// Publishes the library object; its members can be named with or without the "MathLib." prefix.
  void AddObject(clsHyLib& library);
  /// Executes one assignment, e.g. `x= RetString`.
  void ExecuteStatement(std::string_view statement);
  struct Evaluated {
    std::string Text;
    const char* Kind;  ///< of the value, in words: "a text", "empty" ...
  };
  /// The expression's value. Parsed expressions are cached.
  Evaluated Evaluate(std::string_view expression);
  /// The same as text only.
  std::string Eval(std::string_view expression) { return Evaluate(expression).Text; }

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace hylden
