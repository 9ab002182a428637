#include "script/Conversions.h"
#include "script/Errors.h"
#include "script/FunctionTable.h"
#include "script/Search.h"

namespace hylden::script {
namespace {

const std::vector<Value>& ElementsOf(const Value& value) {
  if (!value.Is(Kind::Array)) Raise(Failure::TypeMismatch);
  return value.Elements();
}

Value Array(const Call& call) {
  call.Work().ChargeElements(call.Count());
  std::vector<Value> elements;
  elements.reserve(call.Count());
  for (std::size_t i = 0; i < call.Count(); ++i) elements.push_back(call[i]);
  return Value::Array(std::move(elements));
}

/// Arrays have one dimension, counted from 0.
void CheckDimension(const Call& call) {
  if (call.LongOr(1, 1) != 1) Raise(Failure::SubscriptOutOfRange);
}

Value LBound(const Call& call) {
  ElementsOf(call[0]);
  CheckDimension(call);
  return Value::Long(0);
}

Value UBound(const Call& call) {
  const std::size_t count = ElementsOf(call[0]).size();
  CheckDimension(call);
  return Value::Long(static_cast<std::int32_t>(count) - 1);
}

/// The delimiter argument; a blank when it is left out.
Value DelimiterOf(const Call& call) {
  return call.Has(1) ? call.Text(1) : Value::Text(u" ");
}

/// Split(text [, delimiter [, count [, compare]]]): with a count, the last part keeps the rest.
Value Split(const Call& call) {
  const Value text = call.Text(0), delimiter = DelimiterOf(call);
  const std::int32_t count = call.LongOr(2, -1);
  if (count < -1) Raise(Failure::InvalidProcedureCall);
  const bool ignoresCase = call.IgnoresCase(3);
  const std::u16string_view chars = text.Chars();
  std::vector<Value> parts;
  if (chars.empty() || count == 0) return Value::Array(std::move(parts));

  const SearchText searched(chars, ignoresCase, call.Work());
  const SearchText mark(delimiter.Chars(), ignoresCase, call.Work());
  std::size_t from = 0;
  while (mark.Size() > 0 && (count == -1 || parts.size() + 1 < static_cast<std::size_t>(count))) {
    const std::size_t found = searched.Find(mark, from);
    if (found == kNotFound) break;
    call.Work().ChargeElements(1);
    if (parts.size() + 1 >= kMaxElements) Raise(Failure::OutOfMemory);
    parts.push_back(Value::Text(chars.substr(from, found - from)));
    from = found + mark.Size();
  }
  parts.push_back(Value::Text(chars.substr(from)));
  return Value::Array(std::move(parts));
}

Value Join(const Call& call) {
  const std::vector<Value>& elements = ElementsOf(call[0]);
  const Value delimiter = DelimiterOf(call);
  call.Work().ChargeElements(elements.size());
  std::u16string text;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    if (elements[i].Is(Kind::Null)) Raise(Failure::TypeMismatch);
    const Value part = ToText(elements[i]);
    const std::size_t added = part.Chars().size() + (i > 0 ? delimiter.Chars().size() : 0);
    if (text.size() + added > kMaxTextLength) Raise(Failure::OutOfStringSpace);
    call.Work().Charge(added);
    if (i > 0) text.append(delimiter.Chars());
    text.append(part.Chars());
  }
  return Value::Text(std::move(text));
}

/// Filter(array, wanted [, include [, compare]]): the texts that contain the wanted one, or those that don't.
Value Filter(const Call& call) {
  const std::vector<Value>& elements = ElementsOf(call[0]);
  const Value wanted = call.Text(1);
  const bool include = call.FlagOr(2, true), ignoresCase = call.IgnoresCase(3);
  const SearchText pattern(wanted.Chars(), ignoresCase, call.Work());
  call.Work().ChargeElements(elements.size());
  std::vector<Value> kept;
  for (const Value& element : elements) {
    const Value text = ToText(element);
    const SearchText searched(text.Chars(), ignoresCase, call.Work());
    if ((searched.Find(pattern, 0) != kNotFound) == include) kept.push_back(text);
  }
  return Value::Array(std::move(kept));
}

constexpr FunctionEntry kFunctions[] = {
    {"Array", 0, kAnyNumber, OnNull::Fail, Array},
    {"Filter", 2, 4, OnNull::Fail, Filter},
    {"Join", 1, 2, OnNull::Fail, Join},
    {"LBound", 1, 2, OnNull::Fail, LBound},
    {"Split", 1, 4, OnNull::Fail, Split},
    {"UBound", 1, 2, OnNull::Fail, UBound},
};

}  // namespace

std::span<const FunctionEntry> ArrayFunctions() {
  return kFunctions;
}

}  // namespace hylden::script
