#include "script/ScriptEngine.h"

#include <functional>
#include <unordered_map>

#include "script/Conversions.h"
#include "script/Evaluator.h"
#include "script/Parser.h"
#include "script/Unicode.h"

namespace hylden {
namespace {

using namespace script;

/// Parsed texts. A station uses a handful, so a full cache simply starts over; long texts are not worth keeping.
class ProgramCache {
 public:
  const Program* Find(std::string_view source) const {
    const auto found = programs_.find(source);
    return found == programs_.end() ? nullptr : &found->second;
  }
  void Keep(std::string_view source, const Program& program) {
    if (source.size() > kLongestKept) return;
    if (programs_.size() >= kMostKept) programs_.clear();
    programs_.emplace(source, program);
  }
  void Clear() { programs_.clear(); }

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
  };
  static constexpr std::size_t kMostKept = 64, kLongestKept = 4096;
  std::unordered_map<std::string, Program, Hash, std::equal_to<>> programs_;
};

const char* KindName(Kind kind) {
  switch (kind) {
    case Kind::Empty:
      return "empty";
    case Kind::Boolean:
      return "a truth value";
    case Kind::Byte:
    case Kind::Integer:
    case Kind::Long:
      return "a whole number";
    case Kind::Single:
    case Kind::Double:
    case Kind::Currency:
      return "a number";
    case Kind::Date:
      return "a date";
    default:
      return "a text";  // no other kind has a text
  }
}

}  // namespace

struct ScriptEngine::State {
  explicit State(const Clock& clock) : session(clock), evaluator(scope, session) {}

  /// Programs hold resolved names, so a new name makes them stale.
  void ForgetPrograms() {
    expressions.Clear();
    statements.Clear();
  }

  Scope scope;
  Session session;
  Evaluator evaluator;
  ProgramCache expressions, statements;
};

ScriptEngine::ScriptEngine(const Clock& clock) : state_(std::make_unique<State>(clock)) {}

ScriptEngine::~ScriptEngine() = default;

void ScriptEngine::AddObject(clsHyLib& library) {
  state_->scope.SetLibrary(library);
  state_->ForgetPrograms();
}

void ScriptEngine::ExecuteStatement(std::string_view statement) {
  if (const Program* known = state_->statements.Find(statement)) {
    state_->evaluator.Run(*known);
    return;
  }
  const std::size_t variables = state_->scope.VariableCount();
  const Program program = ParseAssignment(statement, state_->scope);
  if (state_->scope.VariableCount() == variables) {
    state_->statements.Keep(statement, program);
  } else {
    // This program is stale too: the new name on its right side still stands for Empty.
    state_->ForgetPrograms();
  }
  state_->evaluator.Run(program);
}

ScriptEngine::Evaluated ScriptEngine::Evaluate(std::string_view expression) {
  Value value;
  if (const Program* known = state_->expressions.Find(expression)) {
    value = state_->evaluator.Run(*known);
  } else {
    const Program program = ParseExpression(expression, state_->scope);
    state_->expressions.Keep(expression, program);
    value = state_->evaluator.Run(program);
  }
  return {ToUtf8(ToText(value).Chars()), KindName(value.Type())};
}

}  // namespace hylden
