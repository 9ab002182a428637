#pragma once

#include <span>
#include <vector>

#include "script/Program.h"
#include "script/Scope.h"

namespace hylden::script {

/// Runs programs, one at a time, on a stack of values that it keeps.
class Evaluator {
 public:
  Evaluator(Scope& scope, Session& session) : scope_(scope), session_(session) {}

  /// The value left on the stack; Empty when there is none. Each run has the whole budget. @throws ScriptError
  Value Run(const Program& program);

 private:
  /// Charges for the texts among the topmost values, which the next instruction reads.
  void ChargeTexts(std::size_t count);
  void Execute(const Program& program, const Instruction& step);
  void PushRetString();
  void CallFunction(const Instruction& step);
  void TakeElement(const Program& program, const Instruction& step);
  void TakeMember(const Program& program, const Instruction& step);
  void Store(const Instruction& step);
  void StoreRetString();
  void Replace(std::size_t count, Value value);

  const Value& Left() const { return stack_[stack_.size() - 2]; }
  const Value& Top() const { return stack_.back(); }

  Scope& scope_;
  Session& session_;
  std::vector<Value> stack_;
};

}  // namespace hylden::script
