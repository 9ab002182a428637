#include "script/Lexer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

#include "script/DateTime.h"
#include "script/Errors.h"
#include "script/Unicode.h"
#include "text/Case.h"
#include "text/Numbers.h"

namespace hylden::script {
namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool IsNameCharacter(char c) {
  return IsLetter(c) || IsDigit(c) || c == '_';
}
bool IsRadixDigit(char c, int base) {
  if (base == 8) return c >= '0' && c <= '7';
  return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

constexpr std::array<std::pair<std::string_view, Operator>, 8> kWordOperators = {{{"and", Operator::And},
                                                                                  {"eqv", Operator::Eqv},
                                                                                  {"imp", Operator::Imp},
                                                                                  {"is", Operator::Is},
                                                                                  {"mod", Operator::Modulo},
                                                                                  {"not", Operator::Not},
                                                                                  {"or", Operator::Or},
                                                                                  {"xor", Operator::Xor}}};

constexpr std::array<std::string_view, 41> kReservedWords = {
    "byref", "byval", "call", "case", "class",    "const",    "dim",     "do",     "each",  "else",   "elseif",
    "end",   "erase", "exit", "for",  "function", "get",      "goto",    "if",     "in",    "let",    "loop",
    "me",    "new",   "next", "on",   "option",   "preserve", "private", "public", "redim", "resume", "select",
    "set",   "stop",  "sub",  "then", "to",       "until",    "while",   "with"};

/// The values that have words of their own.
bool WordLiteral(std::string_view word, Value& literal) {
  if (word == "true" || word == "false") {
    literal = Value::Boolean(word == "true");
  } else if (word == "null") {
    literal = Value::Null();
  } else if (word == "nothing") {
    literal = Value::Nothing();
  } else if (word != "empty") {
    return false;
  }
  return true;
}

/// A whole number takes the narrowest of Integer, Long and Double.
Value NumberLiteral(std::string_view digits) {
  const double number = LeadingNumber(digits);
  if (!std::isfinite(number)) Raise(Failure::Overflow);
  if (digits.find_first_of(".eE") != std::string_view::npos || number > INT32_MAX) return Value::Double(number);
  if (number > INT16_MAX) return Value::Long(static_cast<std::int32_t>(number));
  return Value::Integer(static_cast<std::int16_t>(number));
}

}  // namespace

std::string LookupName(std::string_view name) {
  return hylden::LowerCase(std::string(name));
}

char Lexer::Peek(std::size_t ahead) const {
  return position_ + ahead < source_.size() ? source_[position_ + ahead] : '\0';
}

bool Lexer::SkipToToken() {
  while (Peek() == ' ' || Peek() == '\t') ++position_;
  const char c = Peek();
  if (position_ < source_.size() && c != '\'') return true;
  position_ = source_.size();
  return false;
}

Token Lexer::Take(TokenKind kind, std::size_t length) {
  Token token;
  token.kind = kind;
  token.text = source_.substr(position_, length);
  position_ += length;
  return token;
}

Token Lexer::TakeOperator(Operator operation, std::size_t length) {
  Token token = Take(TokenKind::Operator, length);
  token.operation = operation;
  return token;
}

Token Lexer::Next() {
  const bool ended = !SkipToToken();
  start_ = position_;
  if (ended) return {};
  const char c = Peek();
  if (c == '\r' || c == '\n' || c == ':') {
    // What follows would be another statement; only the end may.
    const std::size_t next = source_.find_first_not_of("\r\n: \t", position_);
    if (next != std::string_view::npos && source_[next] != '\'') Raise(Failure::ExpectedEndOfStatement);
    position_ = source_.size();
    return {};
  }
  if (IsLetter(c)) return Word();
  if (IsDigit(c) || (c == '.' && IsDigit(Peek(1)))) return Number();
  if (c == '"') return String();
  if (c == '[') return BracketedName();
  if (c == '#') return DateLiteral();
  if (AtRadixNumber()) return RadixNumber();
  return Punctuation();
}

Token Lexer::Punctuation() {
  const char c = Peek(), next = Peek(1);
  switch (c) {
    case '(':
      return Take(TokenKind::LeftParenthesis, 1);
    case ')':
      return Take(TokenKind::RightParenthesis, 1);
    case ',':
      return Take(TokenKind::Comma, 1);
    case '.':
      return Take(TokenKind::Dot, 1);
    case '^':
      return TakeOperator(Operator::Power, 1);
    case '*':
      return TakeOperator(Operator::Multiply, 1);
    case '/':
      return TakeOperator(Operator::Divide, 1);
    case '\\':
      return TakeOperator(Operator::WholeDivide, 1);
    case '+':
      return TakeOperator(Operator::Add, 1);
    case '-':
      return TakeOperator(Operator::Subtract, 1);
    case '&':
      return TakeOperator(Operator::Concatenate, 1);
    case '=':
      if (next == '<') return TakeOperator(Operator::LessOrEqual, 2);
      if (next == '>') return TakeOperator(Operator::GreaterOrEqual, 2);
      return TakeOperator(Operator::Equal, 1);
    case '<':
      if (next == '=') return TakeOperator(Operator::LessOrEqual, 2);
      if (next == '>') return TakeOperator(Operator::NotEqual, 2);
      return TakeOperator(Operator::Less, 1);
    case '>':
      if (next == '=') return TakeOperator(Operator::GreaterOrEqual, 2);
      if (next == '<') return TakeOperator(Operator::NotEqual, 2);
      return TakeOperator(Operator::Greater, 1);
    default:
      Raise(Failure::InvalidCharacter);
  }
}

Token Lexer::Word() {
  std::size_t length = 1;
  while (IsNameCharacter(Peek(length))) ++length;
  const std::string word = LookupName(source_.substr(position_, length));
  if (word == "rem") {
    position_ = source_.size();
    return {};
  }
  Token token = Take(TokenKind::Name, length);
  const auto* found = std::find_if(kWordOperators.begin(), kWordOperators.end(),
                                   [&word](const auto& entry) { return entry.first == word; });
  if (found != kWordOperators.end()) {
    token.kind = TokenKind::Operator;
    token.operation = found->second;
  } else if (WordLiteral(word, token.literal)) {
    token.kind = TokenKind::Literal;
  } else if (std::binary_search(kReservedWords.begin(), kReservedWords.end(), word)) {
    token.kind = TokenKind::ReservedWord;
  }
  return token;
}

Token Lexer::BracketedName() {
  const std::size_t end = source_.find_first_of("]\r\n", position_);
  if (end == std::string_view::npos || source_[end] != ']') Raise(Failure::ExpectedRightBracket);
  const std::string_view name = source_.substr(position_ + 1, end - position_ - 1);
  Token token = Take(TokenKind::Name, end + 1 - position_);
  token.text = name;
  return token;
}

Token Lexer::String() {
  const std::size_t start = position_;
  std::string text;
  for (std::size_t from = position_ + 1;;) {
    const std::size_t quote = source_.find_first_of("\"\r\n", from);
    if (quote == std::string_view::npos || source_[quote] != '"') Raise(Failure::UnterminatedString);
    text.append(source_.substr(from, quote - from));
    position_ = quote + 1;
    if (Peek() != '"') break;
    text.push_back('"');
    from = position_ + 1;
  }
  Token token;
  token.kind = TokenKind::Literal;
  token.text = source_.substr(start, position_ - start);
  token.literal = Value::Text(FromUtf8(text));
  return token;
}

Token Lexer::Number() {
  std::size_t length = 0;
  while (IsDigit(Peek(length))) ++length;
  if (Peek(length) == '.') ++length;
  while (IsDigit(Peek(length))) ++length;
  if (Peek(length) == 'e' || Peek(length) == 'E') {
    ++length;
    if (Peek(length) == '+' || Peek(length) == '-') ++length;
    if (!IsDigit(Peek(length))) Raise(Failure::InvalidNumber);
    while (IsDigit(Peek(length))) ++length;
  }
  Token token = Take(TokenKind::Literal, length);
  token.literal = NumberLiteral(token.text);
  return token;
}

bool Lexer::AtRadixNumber() const {
  if (Peek() != '&') return false;
  const char mark = Peek(1);
  const int base = mark == 'H' || mark == 'h' ? 16 : (mark == 'O' || mark == 'o' ? 8 : 0);
  if (base == 0 || !IsRadixDigit(Peek(2), base)) return false;
  std::size_t end = 2;
  while (IsRadixDigit(Peek(end), base)) ++end;
  // `a &Hello` joins a name; it is no number.
  return !IsNameCharacter(Peek(end));
}

Token Lexer::RadixNumber() {
  const int base = Peek(1) == 'H' || Peek(1) == 'h' ? 16 : 8;
  std::size_t end = 2;
  while (IsRadixDigit(Peek(end), base)) ++end;
  std::uint32_t bits = 0;
  const char* first = source_.data() + position_;
  if (std::from_chars(first + 2, first + end, bits, base).ec != std::errc()) Raise(Failure::InvalidNumber);
  const bool isLong = Peek(end) == '&';
  Token token = Take(TokenKind::Literal, end + (isLong ? 1 : 0));
  // Up to four digits are the 16 bits of an Integer, unless "&" behind them asks for all 32.
  const auto value = bits <= 0xFFFF && !isLong ? static_cast<std::int16_t>(bits) : static_cast<std::int32_t>(bits);
  const bool fits = value >= INT16_MIN && value <= INT16_MAX;
  token.literal = fits ? Value::Integer(static_cast<std::int16_t>(value)) : Value::Long(value);
  return token;
}

Token Lexer::DateLiteral() {
  const std::size_t end = source_.find('#', position_ + 1);
  if (end == std::string_view::npos) Raise(Failure::SyntaxError);
  const std::string_view text = source_.substr(position_ + 1, end - position_ - 1);
  const std::optional<double> serial = ParseDate(FromUtf8(text), 0);
  if (!serial) Raise(Failure::SyntaxError);
  Token token = Take(TokenKind::Literal, end + 1 - position_);
  token.literal = Value::Date(*serial);
  return token;
}

}  // namespace hylden::script
