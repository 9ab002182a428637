#include "platform/Clock.h"
#include "script/Conversions.h"
#include "script/DateTime.h"
#include "script/FunctionTable.h"
#include "script/Unicode.h"

namespace hylden::script {
namespace {

Value IsNumeric(const Call& call) {
  const Value& value = call[0];
  if (value.Is(Kind::String)) return Value::Boolean(NumberOf(value.Chars()).has_value());
  const bool isNumber = value.Is(Kind::Empty) || (value.Type() >= Kind::Boolean && value.Type() <= Kind::Currency);
  return Value::Boolean(isNumber);
}

Value IsDate(const Call& call) {
  const Value& value = call[0];
  if (!value.Is(Kind::String)) return Value::Boolean(value.Is(Kind::Date));
  return Value::Boolean(ParseDate(value.Chars(), call.Shared().clock.Now().year).has_value());
}

Value IsObject(const Call& call) {
  return Value::Boolean(call[0].Is(Kind::Object) || call[0].Is(Kind::Nothing));
}

template <Kind kind>
Value IsKind(const Call& call) {
  return Value::Boolean(call[0].Is(kind));
}

struct KindName {
  const char16_t* name;
  std::int16_t code;
};

KindName NameOf(Kind kind) {
  switch (kind) {
    case Kind::Empty:
      return {u"Empty", 0};
    case Kind::Null:
      return {u"Null", 1};
    case Kind::Boolean:
      return {u"Boolean", 11};
    case Kind::Byte:
      return {u"Byte", 17};
    case Kind::Integer:
      return {u"Integer", 2};
    case Kind::Long:
      return {u"Long", 3};
    case Kind::Single:
      return {u"Single", 4};
    case Kind::Double:
      return {u"Double", 5};
    case Kind::Currency:
      return {u"Currency", 6};
    case Kind::Date:
      return {u"Date", 7};
    case Kind::String:
      return {u"String", 8};
    case Kind::Array:
      return {u"Variant()", 8192 + 12};
    case Kind::Object:
      return {u"clsHyLib", 9};
    case Kind::Nothing:
      return {u"Nothing", 9};
    case Kind::Missing:
      break;
  }
  return {u"Error", 10};
}

constexpr FunctionEntry kFunctions[] = {
    {"CBool", 1, 1, OnNull::Fail, [](const Call& call) { return Value::Boolean(ToBoolean(call[0])); }},
    {"CByte", 1, 1, OnNull::Fail, [](const Call& call) { return Value::Byte(ToByte(call[0])); }},
    {"CCur", 1, 1, OnNull::Fail, [](const Call& call) { return Value::Currency(ToCurrency(call[0])); }},
    {"CDate", 1, 1, OnNull::Fail, [](const Call& call) { return Value::Date(call.Date(0)); }},
    {"CDbl", 1, 1, OnNull::Fail, [](const Call& call) { return Value::Double(ToDouble(call[0])); }},
    {"CInt", 1, 1, OnNull::Fail, [](const Call& call) { return Value::Integer(ToInteger(call[0])); }},
    {"CLng", 1, 1, OnNull::Fail, [](const Call& call) { return Value::Long(ToLong(call[0])); }},
    {"CSng", 1, 1, OnNull::Fail, [](const Call& call) { return Value::Single(ToSingle(call[0])); }},
    {"CStr", 1, 1, OnNull::Fail, [](const Call& call) { return ToText(call[0]); }},
    {"IsArray", 1, 1, OnNull::Fail, IsKind<Kind::Array>},
    {"IsDate", 1, 1, OnNull::Fail, IsDate},
    {"IsEmpty", 1, 1, OnNull::Fail, IsKind<Kind::Empty>},
    {"IsNull", 1, 1, OnNull::Fail, IsKind<Kind::Null>},
    {"IsNumeric", 1, 1, OnNull::Fail, IsNumeric},
    {"IsObject", 1, 1, OnNull::Fail, IsObject},
    {"TypeName", 1, 1, OnNull::Fail, [](const Call& call) { return Value::Text(NameOf(call[0].Type()).name); }},
    {"VarType", 1, 1, OnNull::Fail, [](const Call& call) { return Value::Integer(NameOf(call[0].Type()).code); }},
};

}  // namespace

std::span<const FunctionEntry> TypeFunctions() {
  return kFunctions;
}

}  // namespace hylden::script
