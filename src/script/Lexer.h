#pragma once

#include <string>
#include <string_view>

#include "script/Operators.h"
#include "script/Value.h"

namespace hylden::script {

enum class TokenKind { End, Literal, Name, Operator, LeftParenthesis, RightParenthesis, Comma, Dot, ReservedWord };

struct Token {
  TokenKind kind = TokenKind::End;
  /// As written, without the brackets of a bracketed name. Refers to the source.
  std::string_view text;
  Value literal;
  Operator operation = Operator::Add;
};

/// The name in the form under which it is looked up.
std::string LookupName(std::string_view name);

/// Cuts one statement into tokens. Blanks are skipped; a comment, a line end and ":" end the statement.
class Lexer {
 public:
  explicit Lexer(std::string_view source) : source_(source) {}

  /// @throws ScriptError for what is no token
  Token Next();
  /// Where the token taken last begins, or what is none, in bytes.
  std::size_t TokenStart() const { return start_; }

 private:
  bool SkipToToken();
  char Peek(std::size_t ahead = 0) const;
  bool AtRadixNumber() const;
  Token Take(TokenKind kind, std::size_t length);
  Token TakeOperator(Operator operation, std::size_t length);
  Token Punctuation();
  Token Word();
  Token BracketedName();
  Token String();
  Token Number();
  Token RadixNumber();
  Token DateLiteral();

  std::string_view source_;
  std::size_t position_ = 0;
  std::size_t start_ = 0;
};

}  // namespace hylden::script
