#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace hylden {

/// Writes the values of a row as one line, in the order in which its RowValues lists them: numbers in the shortest form
/// that comes back to the bit, "na" for what was not measured.
class RowWriter {
 public:
  template <class Number>
  void Value(const Number& number) {
    char text[40];
    const auto end = std::to_chars(text, text + sizeof text, number).ptr;
    Word({text, static_cast<std::size_t>(end - text)});
  }
  void Value(const std::optional<double>& number) { number ? Value(*number) : Word("na"); }
  void Flag(bool flag) { Word(flag ? "1" : "0"); }
  /// The last one of a row: it may hold blanks.
  void Text(const std::string& text) { Word(text); }

  std::string Line() && { return std::move(line_); }

 private:
  void Word(std::string_view word) {
    if (!line_.empty()) line_ += ' ';
    line_ += word;
  }

  std::string line_;
};

/// Reads such a line.
class RowReader {
 public:
  explicit RowReader(std::string_view line) : rest_(line) {}

  template <class Number>
  void Value(Number& number) {
    const std::string_view word = Word();
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    ok_ = ok_ && error == std::errc() && end == word.data() + word.size();
  }
  void Value(std::optional<double>& number) {
    if (rest_ == "na" || rest_.starts_with("na "))
      number.reset(), Word();
    else
      Value(number.emplace());
  }
  void Flag(bool& flag) {
    int code = 0;
    Value(code);
    flag = code != 0;
  }
  void Text(std::string& text) {
    text = rest_;
    rest_ = {};
  }

  /// Every value was there, and nothing else.
  bool Ok() const { return ok_ && rest_.empty(); }

 private:
  std::string_view Word() {
    const std::size_t blank = rest_.find(' ');
    const std::string_view word = rest_.substr(0, blank);
    rest_.remove_prefix(blank == std::string_view::npos ? rest_.size() : blank + 1);
    return word;
  }

  std::string_view rest_;
  bool ok_ = true;
};

/// A row with RowValues as a line of a journal, and back; nothing for what is no such row.
template <class Row>
std::string RowLineOf(Row row) {
  RowWriter writer;
  RowValues(writer, row);
  return std::move(writer).Line();
}
template <class Row>
std::optional<Row> RowOfLine(std::string_view line) {
  Row row;
  RowReader reader(line);
  RowValues(reader, row);
  return reader.Ok() ? std::optional(std::move(row)) : std::nullopt;
}

}  // namespace hylden
