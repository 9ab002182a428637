#include "script/FunctionTable.h"

#include <unordered_map>

#include "platform/Clock.h"
#include "script/Conversions.h"
#include "script/Lexer.h"

namespace hylden::script {
namespace {

using Table = std::unordered_map<std::string, const FunctionEntry*>;

Table BuildTable() {
  Table table;
  for (const auto group : {StringFunctions(), SearchFunctions(), MathFunctions(), DateFunctions(), ArrayFunctions(),
                           FormatFunctions(), TypeFunctions()}) {
    for (const FunctionEntry& entry : group) table.emplace(LookupName(entry.name), &entry);
  }
  return table;
}

}  // namespace

const FunctionEntry* FindFunction(std::string_view lowerName) {
  static const Table table = BuildTable();
  const auto found = table.find(std::string(lowerName));
  return found == table.end() ? nullptr : found->second;
}

Value Call::Text(std::size_t index) const {
  return ToText(arguments_[index]);
}

std::int32_t Call::Long(std::size_t index) const {
  return ToLong(arguments_[index]);
}

std::int32_t Call::LongOr(std::size_t index, std::int32_t otherwise) const {
  return Has(index) ? Long(index) : otherwise;
}

double Call::Number(std::size_t index) const {
  return ToDouble(arguments_[index]);
}

bool Call::FlagOr(std::size_t index, bool otherwise) const {
  return Has(index) ? ToBoolean(arguments_[index]) : otherwise;
}

double Call::Date(std::size_t index) const {
  return ToDate(arguments_[index], session_.clock.Now().year);
}

std::size_t Call::Length(std::size_t index) const {
  const std::int32_t length = Long(index);
  if (length < 0) Raise(Failure::InvalidProcedureCall);
  return static_cast<std::size_t>(length);
}

bool Call::IgnoresCase(std::size_t index) const {
  const std::int32_t mode = LongOr(index, 0);
  if (mode != 0 && mode != 1) Raise(Failure::InvalidProcedureCall);
  return mode == 1;
}

}  // namespace hylden::script
