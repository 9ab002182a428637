#include "shell/Profile.h"

#include <algorithm>

#include "text/Case.h"
#include "text/Encoding.h"
#include "text/Numbers.h"

namespace hylden::profile {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// One line of the file: where it stands, and what it says.
struct Line {
  std::size_t begin = 0;  ///< first byte
  std::size_t end = 0;    ///< behind the last byte of its content
  std::size_t next = 0;   ///< behind its line end
  std::string section;    ///< the section it belongs to, or opens
  bool opensSection = false;
  std::string key;             ///< empty when the line holds no key
  std::size_t valueBegin = 0;  ///< first byte of the value, behind "=" and blanks
};

/// Walks the lines of a text.
class Lines {
 public:
  explicit Lines(std::string_view text) : text_(text) {
    if (text.starts_with(kByteOrderMark)) position_ = kByteOrderMark.size();
  }

  bool Next(Line& line) {
    if (position_ >= text_.size()) return false;
    line = Line();
    line.begin = position_;
    line.end = std::min(text_.find_first_of("\r\n", position_), text_.size());
    line.next = std::min(line.end + 1, text_.size());
    if (text_.substr(line.end).starts_with("\r\n")) ++line.next;
    position_ = line.next;
    Interpret(line);
    return true;
  }

 private:
  void Interpret(Line& line) {
    const std::string_view content = Trim(text_.substr(line.begin, line.end - line.begin));
    const std::size_t bracket = content.find(']');
    if (content.starts_with("[") && bracket != std::string_view::npos) {
      section_ = DecodeText(Trim(content.substr(1, bracket - 1)));
      line.opensSection = true;
    } else if (!content.starts_with(";")) {
      InterpretKey(line);
    }
    line.section = section_;
  }

  void InterpretKey(Line& line) {
    const std::size_t equals = text_.find('=', line.begin);
    if (equals >= line.end) return;
    line.key = DecodeText(Trim(text_.substr(line.begin, equals - line.begin)));
    line.valueBegin = std::min(text_.find_first_not_of(" \t", equals + 1), line.end);
  }

  std::string_view text_;
  std::size_t position_ = 0;
  std::string section_;
};

std::optional<Line> FindKey(std::string_view text, std::string_view section, std::string_view key) {
  section = Trim(section);
  key = Trim(key);
  Lines lines(text);
  Line line;
  while (lines.Next(line)) {
    if (!line.key.empty() && SameIgnoringCase(line.section, section) && SameIgnoringCase(line.key, key)) return line;
  }
  return std::nullopt;
}

std::string_view WithoutQuotes(std::string_view value) {
  if (value.size() < 2 || value.front() != value.back()) return value;
  if (value.front() != '"' && value.front() != '\'') return value;
  return value.substr(1, value.size() - 2);
}

std::string_view LineEnd(std::string_view text) {
  const std::size_t end = text.find_first_of("\r\n");
  if (end == std::string_view::npos || text.substr(end).starts_with("\r\n")) return "\r\n";
  return text.substr(end, 1);
}

/// A file in the older 8-bit code page stays in it as far as that can hold the value.
std::string EncodedFor(std::string_view text, std::string_view value) {
  const std::string_view bytes = text.starts_with(kByteOrderMark) ? text.substr(kByteOrderMark.size()) : text;
  if (DecodeText(bytes) == bytes) return std::string(value);
  const std::string encoded = EncodeWindows1252(value);
  return DecodeText(encoded) == value ? encoded : std::string(value);
}

std::string OnOneLine(std::string_view value) {
  std::string text(value);
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
  return text;
}

/// Behind the last key of the first section of that name, or behind its name; nothing when there is no such section.
std::optional<std::size_t> EndOfSection(std::string_view text, std::string_view section) {
  std::optional<std::size_t> end;
  Lines lines(text);
  Line line;
  while (lines.Next(line)) {
    if (end && line.opensSection) break;
    // Comments behind the last key may well speak of the next section.
    if (SameIgnoringCase(line.section, section) && (line.opensSection || (end && !line.key.empty()))) end = line.next;
  }
  return end;
}

}  // namespace

std::optional<std::string> Value(std::string_view text, std::string_view section, std::string_view key) {
  const auto line = FindKey(text, section, key);
  if (!line) return std::nullopt;
  return DecodeText(WithoutQuotes(Trim(text.substr(line->valueBegin, line->end - line->valueBegin))));
}

std::vector<std::string> Keys(std::string_view text, std::string_view section) {
  section = Trim(section);
  std::vector<std::string> keys;
  Lines lines(text);
  Line line;
  while (lines.Next(line)) {
    if (!line.key.empty() && SameIgnoringCase(line.section, section)) keys.push_back(line.key);
  }
  return keys;
}

std::vector<std::string> Sections(std::string_view text) {
  std::vector<std::string> sections;
  Lines lines(text);
  Line line;
  while (lines.Next(line)) {
    const auto same = [&](const std::string& known) { return SameIgnoringCase(known, line.section); };
    if (line.opensSection && !line.section.empty() && std::none_of(sections.begin(), sections.end(), same)) {
      sections.push_back(line.section);
    }
  }
  return sections;
}

std::string WithValue(std::string_view text, std::string_view section, std::string_view key, std::string_view value) {
  section = Trim(section);
  key = Trim(key);
  std::string result(text);
  const std::string written = OnOneLine(EncodedFor(text, value));
  if (const auto line = FindKey(text, section, key)) {
    return result.replace(line->valueBegin, line->end - line->valueBegin, written);
  }
  const std::string lineEnd(LineEnd(text));
  const auto endOfSection = EndOfSection(text, section);
  const std::size_t place = endOfSection.value_or(text.size());
  std::string added;
  const bool afterOpenLine = place > 0 && text[place - 1] != '\r' && text[place - 1] != '\n';
  if (afterOpenLine && text.substr(0, place) != kByteOrderMark) added += lineEnd;
  if (!endOfSection) added += "[" + EncodedFor(text, section) + "]" + lineEnd;
  added += EncodedFor(text, key) + "=" + written + lineEnd;
  return result.insert(place, added);
}

std::optional<std::string> WithoutKey(std::string_view text, std::string_view section, std::string_view key) {
  const auto line = FindKey(text, section, key);
  if (!line) return std::nullopt;
  return std::string(text).erase(line->begin, line->next - line->begin);
}

}  // namespace hylden::profile
