#include "script/Conversions.h"
#include "script/Errors.h"
#include "script/FunctionTable.h"
#include "script/Search.h"

namespace hylden::script {
namespace {

Value Position(std::size_t found) {
  return Value::Long(found == kNotFound ? 0 : static_cast<std::int32_t>(found) + 1);
}

/// InStr([start,] text, wanted [, compare]): with two arguments there is no start, with more there always is one.
Value InStr(const Call& call) {
  const std::size_t first = call.Count() > 2 ? 1 : 0;
  if (call[first].Is(Kind::Null) || call[first + 1].Is(Kind::Null)) return Value::Null();
  const std::int32_t start = first == 1 ? call.LongOr(0, 1) : 1;
  if (start < 1) Raise(Failure::InvalidProcedureCall);
  const Value text = call.Text(first), wanted = call.Text(first + 1);
  const bool ignoresCase = call.IgnoresCase(3);
  const auto from = static_cast<std::size_t>(start) - 1;
  if (from >= text.Chars().size()) return Value::Long(0);
  const SearchText searched(text.Chars(), ignoresCase, call.Work());
  return Position(searched.Find(SearchText(wanted.Chars(), ignoresCase, call.Work()), from));
}

/// InStrRev(text, wanted [, start [, compare]]): start is where the match may end.
Value InStrRev(const Call& call) {
  if (call[1].Is(Kind::Null)) return Value::Null();
  const Value text = call.Text(0), wanted = call.Text(1);
  const std::int32_t start = call.LongOr(2, -1);
  if (start == 0 || start < -1) Raise(Failure::InvalidProcedureCall);
  const bool ignoresCase = call.IgnoresCase(3);
  const std::size_t end = start == -1 ? text.Chars().size() : static_cast<std::size_t>(start);
  if (text.Chars().empty() || end > text.Chars().size()) return Value::Long(0);
  if (wanted.Chars().empty()) return Value::Long(static_cast<std::int32_t>(end));
  const SearchText searched(text.Chars(), ignoresCase, call.Work());
  return Position(searched.FindLast(SearchText(wanted.Chars(), ignoresCase, call.Work()), end));
}

/// Replace(text, find, replacement [, start [, count [, compare]]]): the result begins at start.
Value Replace(const Call& call) {
  const Value text = call.Text(0), wanted = call.Text(1), replacement = call.Text(2);
  const std::int32_t start = call.LongOr(3, 1), count = call.LongOr(4, -1);
  if (start < 1 || count < -1) Raise(Failure::InvalidProcedureCall);
  const bool ignoresCase = call.IgnoresCase(5);
  const std::u16string_view chars = text.Chars();
  std::size_t from = static_cast<std::size_t>(start) - 1;
  if (from >= chars.size()) return Value::Text(u"");
  if (wanted.Chars().empty()) return Value::Text(chars.substr(from));

  const SearchText searched(chars, ignoresCase, call.Work());
  const SearchText pattern(wanted.Chars(), ignoresCase, call.Work());
  std::u16string result;
  for (std::int32_t done = 0; done != count; ++done) {
    const std::size_t found = searched.Find(pattern, from);
    if (found == kNotFound) break;
    const std::size_t length = result.size() + (found - from) + replacement.Chars().size();
    if (length > kMaxTextLength) Raise(Failure::OutOfStringSpace);
    call.Work().Charge(replacement.Chars().size());
    result.append(chars.substr(from, found - from)).append(replacement.Chars());
    from = found + pattern.Size();
  }
  call.Work().ChargeText(result.size() + chars.size() - from);
  return Value::Text(std::move(result.append(chars.substr(from))));
}

constexpr FunctionEntry kFunctions[] = {
    {"InStr", 2, 4, OnNull::Fail, InStr},
    {"InStrRev", 2, 4, OnNull::GiveNull, InStrRev},
    {"Replace", 3, 6, OnNull::Fail, Replace},
};

}  // namespace

std::span<const FunctionEntry> SearchFunctions() {
  return kFunctions;
}

}  // namespace hylden::script
