#include "script/Parser.h"

#include "script/Errors.h"
#include "script/Lexer.h"

namespace hylden::script {
namespace {

constexpr std::string_view kLibraryName = "mathlib";
constexpr std::string_view kRetStringName = "retstring";

// How tightly the operators bind; a higher number binds first.
constexpr int kLoosest = 1, kNotBinding = 6, kComparisonBinding = 7, kPowerBinding = 14;

/// The binding of an operator between two operands; 0 for one that can't stand there.
int BindingOf(Operator operation) {
  switch (operation) {
    case Operator::Imp:
      return kLoosest;
    case Operator::Eqv:
      return 2;
    case Operator::Xor:
      return 3;
    case Operator::Or:
      return 4;
    case Operator::And:
      return 5;
    case Operator::Concatenate:
      return 8;
    case Operator::Add:
    case Operator::Subtract:
      return 9;
    case Operator::Modulo:
      return 10;
    case Operator::WholeDivide:
      return 11;
    case Operator::Multiply:
    case Operator::Divide:
      return 12;
    case Operator::Power:
      return kPowerBinding;
    case Operator::Not:
    case Operator::Negate:
      return 0;
    default:
      return kComparisonBinding;
  }
}

Action ActionOf(Operator operation) {
  if (operation == Operator::Is) return Action::CompareObjects;
  const int binding = BindingOf(operation);
  if (binding < kNotBinding) return Action::Combine;
  return binding == kComparisonBinding ? Action::Compare : Action::Calculate;
}

/// What the parser knows of the operand just parsed.
enum class Operand { Literal, Computed };

class Parser {
 public:
  Parser(std::string_view source, const Scope& scope) : lexer_(source), scope_(scope) {
    if (source.size() > kMaxSourceLength) Raise(Failure::TextTooLong);
  }

  /// Where the token that it has come to begins.
  std::size_t TokenStart() const { return lexer_.TokenStart(); }

  Program WholeExpression() {
    Advance();
    if (At(TokenKind::End)) {
      PushConstant(Value());
    } else {
      Expression(kLoosest);
      if (!At(TokenKind::End)) Raise(Failure::ExpectedEndOfStatement);
    }
    return std::move(program_);
  }

  Program Assignment(Scope& scope) {
    Advance();
    if (At(TokenKind::End)) return std::move(program_);
    const bool isSet = AtWord("set");
    if (isSet || AtWord("let")) Advance();
    if (!At(TokenKind::Name)) Raise(Failure::ExpectedStatement);
    std::string target(token_.text);
    std::string name = LookupName(target);
    Advance();
    if (At(TokenKind::Dot)) {
      target.append(".").append(MemberName());
      name.append(".").append(LookupName(token_.text));
      Advance();
    }
    if (At(TokenKind::LeftParenthesis)) Raise(Failure::IllegalAssignment, target);
    if (!AtOperator(Operator::Equal)) Raise(Failure::ExpectedEqualSign);
    Advance();
    Expression(kLoosest);
    if (!At(TokenKind::End)) Raise(Failure::ExpectedEndOfStatement);
    StoreTo(target, name, isSet, scope);
    return std::move(program_);
  }

 private:
  void Advance() { token_ = lexer_.Next(); }
  bool At(TokenKind kind) const { return token_.kind == kind; }
  bool AtOperator(Operator operation) const {
    return token_.kind == TokenKind::Operator && token_.operation == operation;
  }
  bool AtWord(std::string_view word) const { return At(TokenKind::ReservedWord) && LookupName(token_.text) == word; }

  Instruction& Emit(Action action) {
    program_.steps.emplace_back();
    program_.steps.back().action = action;
    return program_.steps.back();
  }
  /// @param at  where in the source a failure of it is shown
  Instruction& Emit(Action action, std::size_t at) {
    Instruction& step = Emit(action);
    step.at = static_cast<std::uint32_t>(at);
    return step;
  }
  void PushConstant(Value value) {
    Emit(Action::PushConstant).index = static_cast<std::uint32_t>(program_.constants.size());
    program_.constants.push_back(std::move(value));
  }
  std::uint32_t AddName(std::string_view name) {
    program_.names.emplace_back(name);
    return static_cast<std::uint32_t>(program_.names.size() - 1);
  }
  void EmitFailure(Failure failure, std::string_view context, std::size_t at = 0) {
    const std::uint32_t name = AddName(context);
    Instruction& step = Emit(Action::RaiseFailure, at);
    step.count = static_cast<std::uint32_t>(failure);
    step.index = name;
  }

  void StoreTo(const std::string& target, const std::string& name, bool isSet, Scope& scope) {
    const bool hasLibrary = scope.Library() != nullptr;
    const bool isRetString = name == kRetStringName || name == std::string(kLibraryName) + ".retstring";
    if (hasLibrary && isRetString) {
      Emit(Action::StoreRetString);
      return;
    }
    const std::size_t dot = name.find('.');
    if (dot != std::string::npos) {
      const bool ofLibrary = hasLibrary && name.substr(0, dot) == kLibraryName;
      return EmitFailure(ofLibrary ? Failure::UnsupportedMember : Failure::ObjectRequired, target);
    }
    const bool taken = FindFunction(name) != nullptr || FindConstant(name) != nullptr;
    if (taken || (hasLibrary && name == kLibraryName)) Raise(Failure::IllegalAssignment, target);
    const std::uint32_t slot = scope.DefineVariable(name);
    Emit(isSet ? Action::StoreObject : Action::StoreVariable).index = slot;
  }

  /// One expression whose operators bind at least so tightly.
  Operand Expression(int binding) {
    if (++nesting_ > kMaxNesting) Raise(Failure::OutOfStackSpace);
    Operand left = Prefixed();
    while (At(TokenKind::Operator)) {
      const Operator operation = token_.operation;
      const int own = BindingOf(operation);
      if (own == 0 || own < binding) break;
      const std::size_t at = TokenStart();
      Advance();
      const Operand right = Expression(own + 1);
      Instruction& step = Emit(ActionOf(operation), at);
      step.operation = operation;
      step.leftIsLiteral = left == Operand::Literal;
      step.rightIsLiteral = right == Operand::Literal;
      left = Operand::Computed;
    }
    --nesting_;
    return left;
  }

  Operand Prefixed() {
    const std::size_t at = TokenStart();
    if (AtOperator(Operator::Not)) {
      Advance();
      Expression(kNotBinding + 1);
      Emit(Action::Complement, at);
      return Operand::Computed;
    }
    if (AtOperator(Operator::Add)) {
      Advance();
      return Expression(kPowerBinding);
    }
    if (!AtOperator(Operator::Subtract)) return Primary();
    Advance();
    const Operand operand = Expression(kPowerBinding);
    if (operand == Operand::Literal && !program_.constants.back().Is(Kind::String)) {
      program_.constants.back() = Negated(program_.constants.back());
      return operand;
    }
    Emit(Action::Negate, at);
    return Operand::Computed;
  }

  Operand Primary() {
    if (At(TokenKind::Literal)) {
      PushConstant(token_.literal);
      Advance();
      return Operand::Literal;
    }
    if (At(TokenKind::LeftParenthesis)) {
      Advance();
      const Operand inner = Expression(kLoosest);
      ExpectRightParenthesis();
      if (!AtSuffix()) return inner;
      Suffixes("", TokenStart());
      return Operand::Computed;
    }
    if (!At(TokenKind::Name)) Raise(Failure::SyntaxError);
    const std::string_view spelling = token_.text;
    const std::size_t at = TokenStart();
    Advance();
    Name(spelling, at);
    return Operand::Computed;
  }

  bool AtSuffix() const { return At(TokenKind::LeftParenthesis) || At(TokenKind::Dot); }

  void Name(std::string_view spelling, std::size_t at) {
    const std::string name = LookupName(spelling);
    if (const FunctionEntry* function = FindFunction(name)) {
      FunctionCall(*function, at);
    } else if (const Value* constant = FindConstant(name)) {
      PushConstant(*constant);
    } else if (scope_.Library() != nullptr && name == kLibraryName) {
      PushConstant(Value::Object(*scope_.Library()));
    } else if (scope_.Library() != nullptr && name == kRetStringName) {
      RetString(at);
    } else if (const auto slot = scope_.FindVariable(name)) {
      Emit(Action::PushVariable).index = *slot;
    } else {
      PushConstant(Value());
    }
    Suffixes(spelling, at);
  }

  void RetString(std::size_t at) {
    Emit(Action::PushRetString, at);
    if (!At(TokenKind::LeftParenthesis)) return;
    if (Arguments() > 0) EmitFailure(Failure::WrongNumberOfArguments, "RetString", at);
  }

  void FunctionCall(const FunctionEntry& function, std::size_t at) {
    const std::uint32_t count = At(TokenKind::LeftParenthesis) ? Arguments() : 0;
    const bool tooMany = function.most != kAnyNumber && count > function.most;
    if (count < function.fewest || tooMany) return EmitFailure(Failure::WrongNumberOfArguments, function.name, at);
    Instruction& step = Emit(Action::CallFunction, at);
    step.function = &function;
    step.count = count;
  }

  /// Elements and members of what stands before, any number of times.
  void Suffixes(std::string_view owner, std::size_t at) {
    while (AtSuffix()) {
      if (At(TokenKind::Dot)) {
        const std::uint32_t member = AddName(MemberName()), ownerName = AddName(owner);
        Advance();
        Instruction& step = Emit(Action::TakeMember, at);
        step.index = member;
        step.count = ownerName;
      } else {
        const std::uint32_t ownerName = AddName(owner);
        const std::uint32_t count = Arguments();
        Instruction& step = Emit(Action::TakeElement, at);
        step.index = ownerName;
        step.count = count;
      }
      owner = "";
    }
  }

  /// The name after a dot, which stays the current token.
  std::string_view MemberName() {
    Advance();
    // Behind a dot the language's own words are names too.
    const bool isName = At(TokenKind::Name) || At(TokenKind::ReservedWord);
    if (!isName) Raise(Failure::ExpectedIdentifier);
    return token_.text;
  }

  /// The arguments between parentheses; the number of them.
  std::uint32_t Arguments() {
    Advance();
    if (At(TokenKind::RightParenthesis)) {
      Advance();
      return 0;
    }
    std::uint32_t count = 0;
    for (;;) {
      ++count;
      if (At(TokenKind::Comma)) {
        PushConstant(Value::Missing());
      } else {
        Expression(kLoosest);
      }
      if (!At(TokenKind::Comma)) break;
      Advance();
    }
    ExpectRightParenthesis();
    return count;
  }

  void ExpectRightParenthesis() {
    if (!At(TokenKind::RightParenthesis)) Raise(Failure::ExpectedRightParenthesis);
    Advance();
  }

  Lexer lexer_;
  const Scope& scope_;
  Token token_;
  Program program_;
  int nesting_ = 0;
};

/// Parses; a failure has the place of the token that the parser has come to.
template <class Parse>
Program Located(const Parser& parser, Parse parse) {
  try {
    return parse();
  } catch (ScriptError& error) {
    error.At = parser.TokenStart();
    throw;
  }
}

}  // namespace

Program ParseExpression(std::string_view source, const Scope& scope) {
  Parser parser(source, scope);
  return Located(parser, [&] { return parser.WholeExpression(); });
}

Program ParseAssignment(std::string_view source, Scope& scope) {
  Parser parser(source, scope);
  return Located(parser, [&] { return parser.Assignment(scope); });
}

}  // namespace hylden::script
