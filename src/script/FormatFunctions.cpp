#include <cmath>

#include "script/Conversions.h"
#include "script/DateTime.h"
#include "script/Errors.h"
#include "script/FunctionTable.h"
#include "script/Unicode.h"
#include "text/Pattern.h"

namespace hylden::script {
namespace {

/// How FormatNumber and its kin write a number.
struct NumberStyle {
  std::size_t decimals = 2;
  bool leadingZero = true;
  bool parenthesesForMinus = false;
  bool grouped = true;
};

/// An argument of -1 (yes), 0 (no) or -2 (the usual).
bool Choice(const Call& call, std::size_t index, bool usual) {
  const std::int32_t choice = call.LongOr(index, -2);
  if (choice < -2 || choice > 0) Raise(Failure::InvalidProcedureCall);
  return choice == -2 ? usual : choice == -1;
}

/// The arguments after the number: decimals, leading digit, parentheses, grouping.
NumberStyle StyleOf(const Call& call, bool usualParentheses) {
  constexpr std::int32_t kMostDecimals = 99;
  NumberStyle style;
  const std::int32_t decimals = call.LongOr(1, -1);
  if (decimals < -1 || decimals > kMostDecimals) Raise(Failure::InvalidProcedureCall);
  if (decimals >= 0) style.decimals = static_cast<std::size_t>(decimals);
  style.leadingZero = Choice(call, 2, true);
  style.parenthesesForMinus = Choice(call, 3, usualParentheses);
  style.grouped = Choice(call, 4, true);
  return style;
}

void InsertGroupCommas(std::string& digits) {
  const std::size_t point = digits.find('.');
  std::size_t at = point == std::string::npos ? digits.size() : point;
  while (at > 3) {
    at -= 3;
    digits.insert(at, 1, ',');
  }
}

/// A number between its currency sign and its percent sign, with the minus or the parentheses around all of it.
Value Styled(double number, const NumberStyle& style, std::string_view before, std::string_view after) {
  const std::string pattern = style.decimals == 0 ? "0" : "0." + std::string(style.decimals, '0');
  std::string digits = Format(std::fabs(number), pattern);
  const bool isZero = digits.find_first_of("123456789") == std::string::npos;
  if (style.grouped) InsertGroupCommas(digits);
  if (!style.leadingZero && style.decimals > 0 && digits.starts_with("0.")) digits.erase(0, 1);

  std::string text = std::string(before) + digits + std::string(after);
  if (number < 0 && !isZero) text = style.parenthesesForMinus ? "(" + text + ")" : "-" + text;
  return Value::Text(Widen(text));
}

Value FormatNumber(const Call& call) {
  return Styled(call.Number(0), StyleOf(call, false), "", "");
}

Value FormatCurrency(const Call& call) {
  return Styled(call.Number(0), StyleOf(call, true), "$", "");
}

Value FormatPercent(const Call& call) {
  const double percent = call.Number(0) * 100;
  if (!std::isfinite(percent)) Raise(Failure::Overflow);
  return Styled(percent, StyleOf(call, false), "", "%");
}

std::string LongDateText(double serial) {
  const DateParts parts = PartsOf(serial);
  return std::string(WeekdayText(WeekdayOf(DayOf(serial)))) + ", " + std::string(MonthText(parts.month)) + " " +
         std::to_string(parts.day) + ", " + std::to_string(parts.year);
}

/// Hours and minutes of the 24-hour clock.
std::string ShortTimeText(double serial) {
  const DateParts parts = PartsOf(serial);
  return std::to_string(100 + parts.hour).substr(1) + ":" + std::to_string(100 + parts.minute).substr(1);
}

Value FormatDateTime(const Call& call) {
  const double serial = call.Date(0);
  switch (call.LongOr(1, 0)) {
    case 0:
      return Value::Text(Widen(DateText(serial)));
    case 1:
      return Value::Text(Widen(LongDateText(serial)));
    case 2:
      return Value::Text(Widen(ShortDateText(serial)));
    case 3:
      return Value::Text(Widen(LongTimeText(serial)));
    case 4:
      return Value::Text(Widen(ShortTimeText(serial)));
    default:
      Raise(Failure::InvalidProcedureCall);
  }
}

constexpr FunctionEntry kFunctions[] = {
    {"FormatCurrency", 1, 5, OnNull::Fail, FormatCurrency},
    {"FormatDateTime", 1, 2, OnNull::Fail, FormatDateTime},
    {"FormatNumber", 1, 5, OnNull::Fail, FormatNumber},
    {"FormatPercent", 1, 5, OnNull::Fail, FormatPercent},
};

}  // namespace

std::span<const FunctionEntry> FormatFunctions() {
  return kFunctions;
}

}  // namespace hylden::script
