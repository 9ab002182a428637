#include "script/Evaluator.h"

#include "script/Conversions.h"
#include "script/Errors.h"
#include "script/Lexer.h"
#include "script/Unicode.h"

namespace hylden::script {
namespace {

// What one instruction costs, in characters: an allocation and a number's text at most.
constexpr std::size_t kInstructionCost = 16;

Value Invoke(const FunctionEntry& function, const Call& call) {
  if (function.onNull == OnNull::GiveNull && call[0].Is(Kind::Null)) return Value::Null();
  try {
    return function.body(call);
  } catch (const ScriptError& error) {
    throw InFunction(error, function.name);
  }
}

}  // namespace

Value Evaluator::Run(const Program& program) {
  stack_.clear();
  session_.budget.Refill();
  for (const Instruction& step : program.steps) {
    try {
      session_.budget.Charge(kInstructionCost);
      Execute(program, step);
    } catch (ScriptError& error) {
      if (step.at != kNoName) error.At = step.at;
      throw;
    }
  }
  if (stack_.empty()) return {};
  Value result = std::move(stack_.back());
  stack_.clear();
  return result;
}

void Evaluator::ChargeTexts(std::size_t count) {
  for (std::size_t i = stack_.size() - count; i < stack_.size(); ++i)
    if (stack_[i].Is(Kind::String)) session_.budget.Charge(stack_[i].Chars().size());
}

void Evaluator::Execute(const Program& program, const Instruction& step) {
  switch (step.action) {
    case Action::PushConstant:
      stack_.push_back(program.constants[step.index]);
      return;
    case Action::PushVariable:
      stack_.push_back(scope_.Variable(step.index));
      return;
    case Action::PushRetString:
      return PushRetString();
    case Action::CallFunction:
      return CallFunction(step);
    case Action::TakeElement:
      return TakeElement(program, step);
    case Action::TakeMember:
      return TakeMember(program, step);
    case Action::Negate:
      ChargeTexts(1);
      return Replace(1, Negated(Top()));
    case Action::Complement:
      ChargeTexts(1);
      return Replace(1, Complement(Top()));
    case Action::Calculate:
      ChargeTexts(2);
      return Replace(2, Calculate(step.operation, Left(), Top(), session_.budget));
    case Action::Combine:
      ChargeTexts(2);
      return Replace(2, Combine(step.operation, Left(), Top()));
    case Action::Compare: {
      ChargeTexts(2);
      const auto order = Order(Left(), Top(), step.leftIsLiteral, step.rightIsLiteral, session_.budget);
      return Replace(2, Compared(step.operation, order));
    }
    case Action::CompareObjects:
      return Replace(2, SameObject(Left(), Top()));
    case Action::StoreVariable:
    case Action::StoreObject:
      return Store(step);
    case Action::StoreRetString:
      return StoreRetString();
    case Action::RaiseFailure:
      Raise(static_cast<Failure>(step.count), program.names[step.index]);
  }
}

void Evaluator::Replace(std::size_t count, Value value) {
  stack_.resize(stack_.size() - count);
  stack_.push_back(std::move(value));
}

void Evaluator::PushRetString() {
  const std::string& answer = scope_.Library()->RetString;
  session_.budget.ChargeText(answer.size());
  stack_.push_back(Value::Text(FromUtf8(answer)));
}

void Evaluator::CallFunction(const Instruction& step) {
  ChargeTexts(step.count);
  const std::span<const Value> arguments(stack_.data() + stack_.size() - step.count, step.count);
  Replace(step.count, Invoke(*step.function, Call(arguments, session_)));
}

void Evaluator::TakeElement(const Program& program, const Instruction& step) {
  const Value& owner = stack_[stack_.size() - step.count - 1];
  const std::string& name = program.names[step.index];
  if (owner.Is(Kind::Object)) Raise(Failure::WrongNumberOfArguments, name);
  if (!owner.Is(Kind::Array)) Raise(Failure::TypeMismatch, name);
  if (step.count != 1) Raise(Failure::SubscriptOutOfRange, name);
  ChargeTexts(1);
  const std::int32_t subscript = ToLong(Top());
  const std::vector<Value>& elements = owner.Elements();
  if (subscript < 0 || static_cast<std::size_t>(subscript) >= elements.size()) {
    Raise(Failure::SubscriptOutOfRange, OperandContext(Top()));
  }
  Replace(2, Value(elements[static_cast<std::size_t>(subscript)]));
}

void Evaluator::TakeMember(const Program& program, const Instruction& step) {
  const std::string& member = program.names[step.index];
  const std::string& owner = program.names[step.count];
  if (Top().Is(Kind::Nothing)) Raise(Failure::ObjectVariableNotSet, owner);
  if (!Top().Is(Kind::Object)) Raise(Failure::ObjectRequired, owner);
  if (LookupName(member) != "retstring")
    Raise(Failure::UnsupportedMember, owner.empty() ? member : owner + "." + member);
  stack_.pop_back();
  PushRetString();
}

void Evaluator::Store(const Instruction& step) {
  const bool isObject = Top().Is(Kind::Object) || Top().Is(Kind::Nothing);
  if (step.action == Action::StoreObject && !isObject) Raise(Failure::ObjectRequired);
  if (step.action == Action::StoreVariable && (isObject || Top().Is(Kind::Missing))) RaiseNotPlain(Top());
  scope_.SetVariable(step.index, std::move(stack_.back()));
  stack_.pop_back();
}

void Evaluator::StoreRetString() {
  scope_.Library()->RetString = ToUtf8(ToText(Top()).Chars());
  stack_.pop_back();
}

}  // namespace hylden::script
