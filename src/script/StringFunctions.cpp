#include <algorithm>

#include "script/Conversions.h"
#include "script/Errors.h"
#include "script/FunctionTable.h"
#include "script/Unicode.h"
#include "text/Characters.h"

namespace hylden::script {
namespace {

char16_t FirstCharacter(const Call& call) {
  const Value text = call.Text(0);
  if (text.Chars().empty()) Raise(Failure::InvalidProcedureCall);
  return text.Chars().front();
}

Value Asc(const Call& call) {
  // A character outside the code page is the one that the machine shows in its place.
  return Value::Integer(ToWindows1252(FirstCharacter(call)).value_or(std::uint8_t{'?'}));
}

Value AscB(const Call& call) {
  return Value::Byte(static_cast<std::uint8_t>(FirstCharacter(call) & 0xFF));
}

Value AscW(const Call& call) {
  return Value::Integer(static_cast<std::int16_t>(FirstCharacter(call)));
}

Value Chr(const Call& call) {
  const std::int32_t code = call.Long(0);
  if (code < 0 || code > 255) Raise(Failure::InvalidProcedureCall);
  return Value::Text(std::u16string(1, FromWindows1252(static_cast<std::uint8_t>(code))));
}

Value ChrW(const Call& call) {
  const std::int32_t code = call.Long(0);
  if (code < -32768 || code > 65535) Raise(Failure::InvalidProcedureCall);
  return Value::Text(std::u16string(1, static_cast<char16_t>(code)));
}

/// The part of a text from a position on, at most so long.
Value Part(const Call& call, const Value& text, std::size_t start, std::size_t length) {
  const std::u16string_view chars = text.Chars();
  if (start == 0 && length >= chars.size()) return text;
  if (start >= chars.size()) return Value::Text(u"");
  const std::u16string_view part = chars.substr(start, length);
  call.Work().Charge(part.size());
  return Value::Text(part);
}

Value Left(const Call& call) {
  return Part(call, call.Text(0), 0, call.Length(1));
}

Value Right(const Call& call) {
  const Value text = call.Text(0);
  const std::size_t length = std::min(call.Length(1), text.Chars().size());
  return Part(call, text, text.Chars().size() - length, length);
}

Value Mid(const Call& call) {
  const Value text = call.Text(0);
  const std::int32_t start = call.Long(1);
  if (start < 1) Raise(Failure::InvalidProcedureCall);
  const std::size_t length = call.Has(2) ? call.Length(2) : kMaxTextLength;
  return Part(call, text, static_cast<std::size_t>(start) - 1, length);
}

Value Len(const Call& call) {
  return Value::Long(static_cast<std::int32_t>(call.Text(0).Chars().size()));
}

Value LenB(const Call& call) {
  return Value::Long(static_cast<std::int32_t>(2 * call.Text(0).Chars().size()));
}

template <char16_t (*Change)(char16_t)>
Value ChangedCase(const Call& call) {
  std::u16string text(call.Text(0).Chars());
  call.Work().Charge(text.size());
  std::transform(text.begin(), text.end(), text.begin(), Change);
  return Value::Text(std::move(text));
}

Value Trimmed(const Call& call, bool left, bool right) {
  const Value text = call.Text(0);
  const std::u16string_view chars = text.Chars();
  const std::size_t first = left ? chars.find_first_not_of(u' ') : 0;
  if (first == std::u16string_view::npos) return Value::Text(u"");
  const std::size_t end = right ? chars.find_last_not_of(u' ') + 1 : chars.size();
  call.Work().Charge(chars.size());
  return Part(call, text, first, end - first);
}

Value Repeated(const Call& call, std::size_t count, char16_t character) {
  call.Work().ChargeText(count);
  return Value::Text(std::u16string(count, character));
}

Value Space(const Call& call) {
  return Repeated(call, call.Length(0), u' ');
}

Value String(const Call& call) {
  const std::size_t count = call.Length(0);
  if (call[1].Is(Kind::Null)) return Value::Null();
  if (!call[1].Is(Kind::String)) return Repeated(call, count, FromWindows1252(static_cast<std::uint8_t>(call.Long(1))));
  if (call[1].Chars().empty()) Raise(Failure::InvalidProcedureCall);
  return Repeated(call, count, call[1].Chars().front());
}

Value StrReverse(const Call& call) {
  const Value text = call.Text(0);
  call.Work().Charge(text.Chars().size());
  return Value::Text(std::u16string(text.Chars().rbegin(), text.Chars().rend()));
}

Value StrComp(const Call& call) {
  if (call[1].Is(Kind::Null)) return Value::Null();
  const Value left = call.Text(0), right = call.Text(1);
  const bool ignoresCase = call.IgnoresCase(2);
  call.Work().Charge(left.Chars().size() + right.Chars().size());
  const int order =
      ignoresCase ? Folded(left.Chars()).compare(Folded(right.Chars())) : left.Chars().compare(right.Chars());
  return Value::Integer(static_cast<std::int16_t>(order < 0 ? -1 : (order > 0 ? 1 : 0)));
}

bool IsSafeInAddress(char16_t c) {
  const bool alphanumeric = (c >= u'0' && c <= u'9') || (LowerCase(c) >= u'a' && LowerCase(c) <= u'z');
  return alphanumeric || (c < 0x80 && std::u16string_view(u"*+-./@_").find(c) != std::u16string_view::npos);
}

void AppendHex(std::u16string& text, unsigned value, int digits) {
  constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) text.push_back(kDigits[(value >> shift) & 0xF]);
}

Value Escape(const Call& call) {
  const Value text = call.Text(0);
  std::u16string escaped;
  for (const char16_t c : text.Chars()) {
    if (IsSafeInAddress(c)) {
      escaped.push_back(c);
    } else {
      escaped.append(c < 0x100 ? u"%" : u"%u");
      AppendHex(escaped, c, c < 0x100 ? 2 : 4);
    }
  }
  call.Work().ChargeText(escaped.size());
  return Value::Text(std::move(escaped));
}

/// The value of so many hexadecimal digits at the start of the text, or -1.
int HexValue(std::u16string_view text, std::size_t digits) {
  if (text.size() < digits) return -1;
  int value = 0;
  for (const char16_t c : text.substr(0, digits)) {
    const char16_t lower = LowerCase(c);
    if (lower >= u'0' && lower <= u'9') {
      value = value * 16 + (lower - u'0');
    } else if (lower >= u'a' && lower <= u'f') {
      value = value * 16 + (lower - u'a') + 10;
    } else {
      return -1;
    }
  }
  return value;
}

Value Unescape(const Call& call) {
  const Value source = call.Text(0);
  std::u16string_view text = source.Chars();
  call.Work().Charge(text.size());
  std::u16string plain;
  while (!text.empty()) {
    const bool isLong = text.size() > 1 && text[0] == u'%' && LowerCase(text[1]) == u'u';
    const std::size_t mark = isLong ? 2 : 1, digits = isLong ? 4 : 2;
    const int code = text[0] == u'%' ? HexValue(text.substr(mark), digits) : -1;
    plain.push_back(code >= 0 ? static_cast<char16_t>(code) : text[0]);
    text.remove_prefix(code >= 0 ? mark + digits : 1);
  }
  return Value::Text(std::move(plain));
}

constexpr FunctionEntry kFunctions[] = {
    {"Asc", 1, 1, OnNull::Fail, Asc},
    {"AscB", 1, 1, OnNull::Fail, AscB},
    {"AscW", 1, 1, OnNull::Fail, AscW},
    {"Chr", 1, 1, OnNull::Fail, Chr},
    {"ChrW", 1, 1, OnNull::Fail, ChrW},
    {"Escape", 1, 1, OnNull::GiveNull, Escape},
    {"LCase", 1, 1, OnNull::GiveNull, ChangedCase<LowerCase>},
    {"LTrim", 1, 1, OnNull::GiveNull, [](const Call& call) { return Trimmed(call, true, false); }},
    {"Left", 2, 2, OnNull::GiveNull, Left},
    {"Len", 1, 1, OnNull::GiveNull, Len},
    {"LenB", 1, 1, OnNull::GiveNull, LenB},
    {"Mid", 2, 3, OnNull::GiveNull, Mid},
    {"RTrim", 1, 1, OnNull::GiveNull, [](const Call& call) { return Trimmed(call, false, true); }},
    {"Right", 2, 2, OnNull::GiveNull, Right},
    {"Space", 1, 1, OnNull::Fail, Space},
    {"StrComp", 2, 3, OnNull::GiveNull, StrComp},
    {"StrReverse", 1, 1, OnNull::Fail, StrReverse},
    {"String", 2, 2, OnNull::Fail, String},
    {"Trim", 1, 1, OnNull::GiveNull, [](const Call& call) { return Trimmed(call, true, true); }},
    {"UCase", 1, 1, OnNull::GiveNull, ChangedCase<UpperCase>},
    {"Unescape", 1, 1, OnNull::GiveNull, Unescape},
};

}  // namespace

std::span<const FunctionEntry> StringFunctions() {
  return kFunctions;
}

}  // namespace hylden::script
