#include <algorithm>
#include <cmath>
#include <optional>

#include "platform/Clock.h"
#include "script/Conversions.h"
#include "script/DateTime.h"
#include "script/Errors.h"
#include "script/FunctionTable.h"
#include "script/Unicode.h"

namespace hylden::script {
namespace {

enum class Interval { Year, Quarter, Month, DayOfYear, Day, Weekday, Week, Hour, Minute, Second };

Interval IntervalOf(const Call& call) {
  struct Entry {
    std::u16string_view text;
    Interval interval;
  };
  static constexpr Entry kIntervals[] = {
      {u"yyyy", Interval::Year}, {u"q", Interval::Quarter}, {u"m", Interval::Month}, {u"y", Interval::DayOfYear},
      {u"d", Interval::Day},     {u"w", Interval::Weekday}, {u"ww", Interval::Week}, {u"h", Interval::Hour},
      {u"n", Interval::Minute},  {u"s", Interval::Second},
  };
  const Value text = call.Text(0);
  call.Work().Charge(text.Chars().size());
  const std::u16string wanted = Folded(text.Chars());
  for (const Entry& entry : kIntervals) {
    if (entry.text == wanted) return entry.interval;
  }
  Raise(Failure::InvalidProcedureCall);
}

Value DateResult(double serial) {
  if (!IsDateSerial(serial)) Raise(Failure::InvalidProcedureCall);
  return Value::Date(serial);
}

Value Number(int value) {
  return Value::Integer(static_cast<std::int16_t>(value));
}

double NowSerial(const Call& call) {
  const LocalTime now = call.Shared().clock.Now();
  return SerialOf(DaysFromCivil(now.year, now.month, now.day), now.hour * 3600 + now.minute * 60 + now.second);
}

double TimeOfDay(double serial) {
  return SerialOf(0, SecondsOf(serial) - DayOf(serial) * kSecondsPerDay);
}

/// The first day of the week: 1 Sunday to 7 Saturday; the system's (0) is Sunday.
int FirstDayOfWeek(const Call& call, std::size_t index) {
  const std::int32_t day = call.LongOr(index, 1);
  if (day < 0 || day > 7) Raise(Failure::InvalidProcedureCall);
  return std::max(1, day);
}

/// 1 to 7, counted from the first day of the week.
int WeekdayFrom(std::int64_t days, int firstDay) {
  return (WeekdayOf(days) - firstDay + 7) % 7 + 1;
}

/// The day on which week 1 of the year begins. @param rule  1: the week of 1 January, 2: the first with four days of
/// the year, 3: the first full one
std::int64_t FirstWeek(std::int64_t year, int firstDay, int rule) {
  const std::int64_t newYear = DaysFromCivil(year, 1, 1);
  const int before = WeekdayFrom(newYear, firstDay) - 1;
  const bool counts = rule == 1 || (rule == 2 ? before <= 3 : before == 0);
  return newYear - before + (counts ? 0 : 7);
}

int WeekOfYear(double serial, int firstDay, int rule) {
  const std::int64_t day = DayOf(serial);
  const int year = PartsOf(serial).year;
  std::int64_t start = FirstWeek(year, firstDay, rule);
  if (day < start) start = FirstWeek(year - 1, firstDay, rule);
  if (rule != 1 && day >= FirstWeek(year + 1, firstDay, rule)) return 1;
  return static_cast<int>((day - start) / 7) + 1;
}

Value DateAdd(const Call& call) {
  const Interval interval = IntervalOf(call);
  if (call[2].Is(Kind::Null)) return Value::Null();
  const std::int64_t number = ToLong(call[1]);
  const double serial = call.Date(2);
  const std::int64_t days = DayOf(serial), ofDay = SecondsOf(serial) - days * kSecondsPerDay;
  const auto addMonths = [&](std::int64_t months) {
    const DateParts parts = PartsOf(serial);
    const std::int64_t month = std::int64_t{parts.year} * 12 + parts.month - 1 + months;
    const std::int64_t year = FloorDivide(month, 12);
    const int ofYear = static_cast<int>(month - year * 12) + 1;
    const int day = std::min(parts.day, DaysInMonth(year, ofYear));
    return DateResult(SerialOf(DaysFromCivil(year, ofYear, day), ofDay));
  };
  switch (interval) {
    case Interval::Year:
      return addMonths(number * 12);
    case Interval::Quarter:
      return addMonths(number * 3);
    case Interval::Month:
      return addMonths(number);
    case Interval::Week:
      return DateResult(SerialOf(days + number * 7, ofDay));
    case Interval::Hour:
      return DateResult(SerialOf(days, ofDay + number * 3600));
    case Interval::Minute:
      return DateResult(SerialOf(days, ofDay + number * 60));
    case Interval::Second:
      return DateResult(SerialOf(days, ofDay + number));
    default:
      return DateResult(SerialOf(days + number, ofDay));
  }
}

/// How many boundaries of the interval lie between both dates.
std::int64_t Difference(Interval interval, double from, double to, int firstDay) {
  const DateParts first = PartsOf(from), second = PartsOf(to);
  const std::int64_t years = second.year - first.year;
  const std::int64_t days = DayOf(to) - DayOf(from);
  const auto boundaries = [from, to](std::int64_t seconds) {
    return FloorDivide(SecondsOf(to), seconds) - FloorDivide(SecondsOf(from), seconds);
  };
  switch (interval) {
    case Interval::Year:
      return years;
    case Interval::Quarter:
      return years * 4 + (second.month - 1) / 3 - (first.month - 1) / 3;
    case Interval::Month:
      return years * 12 + second.month - first.month;
    case Interval::Weekday:
      return days / 7;
    case Interval::Week:
      return (days + WeekdayFrom(DayOf(from), firstDay) - WeekdayFrom(DayOf(to), firstDay)) / 7;
    case Interval::Hour:
      return boundaries(3600);
    case Interval::Minute:
      return boundaries(60);
    case Interval::Second:
      return boundaries(1);
    default:
      return days;
  }
}

Value DateDiff(const Call& call) {
  const Interval interval = IntervalOf(call);
  if (call[1].Is(Kind::Null) || call[2].Is(Kind::Null)) return Value::Null();
  const std::int64_t difference = Difference(interval, call.Date(1), call.Date(2), FirstDayOfWeek(call, 3));
  if (difference > INT32_MAX || difference < INT32_MIN) Raise(Failure::Overflow);
  return Value::Long(static_cast<std::int32_t>(difference));
}

Value DatePart(const Call& call) {
  const Interval interval = IntervalOf(call);
  if (call[1].Is(Kind::Null)) return Value::Null();
  const double serial = call.Date(1);
  const int firstDay = FirstDayOfWeek(call, 2);
  const std::int32_t rule = call.LongOr(3, 1);
  if (rule < 0 || rule > 3) Raise(Failure::InvalidProcedureCall);
  const DateParts parts = PartsOf(serial);
  switch (interval) {
    case Interval::Year:
      return Number(parts.year);
    case Interval::Quarter:
      return Number((parts.month - 1) / 3 + 1);
    case Interval::Month:
      return Number(parts.month);
    case Interval::DayOfYear:
      return Number(static_cast<int>(DayOf(serial) - DaysFromCivil(parts.year, 1, 1)) + 1);
    case Interval::Day:
      return Number(parts.day);
    case Interval::Weekday:
      return Number(WeekdayFrom(DayOf(serial), firstDay));
    case Interval::Week:
      return Number(WeekOfYear(serial, firstDay, std::max(1, rule)));
    case Interval::Hour:
      return Number(parts.hour);
    case Interval::Minute:
      return Number(parts.minute);
    default:
      return Number(parts.second);
  }
}

Value DateSerial(const Call& call) {
  const int year = FullYear(ToInteger(call[0]));
  const std::int64_t days = DaysFromCivil(year, ToInteger(call[1]), ToInteger(call[2]));
  return DateResult(SerialOf(days, 0));
}

Value TimeSerial(const Call& call) {
  const std::int64_t seconds = ToInteger(call[0]) * 3600 + ToInteger(call[1]) * 60 + ToInteger(call[2]);
  return DateResult(SerialOf(0, seconds));
}

Value DateValue(const Call& call) {
  return Value::Date(static_cast<double>(DayOf(call.Date(0))));
}

Value TimeValue(const Call& call) {
  return Value::Date(TimeOfDay(call.Date(0)));
}

template <std::int32_t DateParts::*part>
Value Part(const Call& call) {
  return Number(PartsOf(call.Date(0)).*part);
}

Value Weekday(const Call& call) {
  return Number(WeekdayFrom(DayOf(call.Date(0)), FirstDayOfWeek(call, 1)));
}

/// A name, cut to three letters on request.
Value NameText(std::string_view name, bool abbreviated) {
  return Value::Text(Widen(abbreviated ? name.substr(0, 3) : name));
}

Value MonthName(const Call& call) {
  const std::int32_t month = call.Long(0);
  if (month < 1 || month > 12) Raise(Failure::InvalidProcedureCall);
  return NameText(MonthText(month), call.FlagOr(1, false));
}

Value WeekdayName(const Call& call) {
  const std::int32_t weekday = call.Long(0);
  if (weekday < 1 || weekday > 7) Raise(Failure::InvalidProcedureCall);
  const int fromSunday = (weekday - 1 + FirstDayOfWeek(call, 2) - 1) % 7 + 1;
  return NameText(WeekdayText(fromSunday), call.FlagOr(1, false));
}

constexpr FunctionEntry kFunctions[] = {
    {"Date", 0, 0, OnNull::Fail,
     [](const Call& call) { return Value::Date(static_cast<double>(DayOf(NowSerial(call)))); }},
    {"DateAdd", 3, 3, OnNull::Fail, DateAdd},
    {"DateDiff", 3, 5, OnNull::Fail, DateDiff},
    {"DatePart", 2, 4, OnNull::Fail, DatePart},
    {"DateSerial", 3, 3, OnNull::Fail, DateSerial},
    {"DateValue", 1, 1, OnNull::Fail, DateValue},
    {"Day", 1, 1, OnNull::GiveNull, Part<&DateParts::day>},
    {"Hour", 1, 1, OnNull::GiveNull, Part<&DateParts::hour>},
    {"Minute", 1, 1, OnNull::GiveNull, Part<&DateParts::minute>},
    {"Month", 1, 1, OnNull::GiveNull, Part<&DateParts::month>},
    {"MonthName", 1, 2, OnNull::Fail, MonthName},
    {"Now", 0, 0, OnNull::Fail, [](const Call& call) { return Value::Date(NowSerial(call)); }},
    {"Second", 1, 1, OnNull::GiveNull, Part<&DateParts::second>},
    {"Time", 0, 0, OnNull::Fail, [](const Call& call) { return Value::Date(TimeOfDay(NowSerial(call))); }},
    {"TimeSerial", 3, 3, OnNull::Fail, TimeSerial},
    {"TimeValue", 1, 1, OnNull::Fail, TimeValue},
    {"Timer", 0, 0, OnNull::Fail,
     [](const Call& call) { return Value::Single(static_cast<float>(call.Shared().clock.SecondsSinceMidnight())); }},
    {"Weekday", 1, 2, OnNull::GiveNull, Weekday},
    {"WeekdayName", 1, 3, OnNull::Fail, WeekdayName},
    {"Year", 1, 1, OnNull::GiveNull, Part<&DateParts::year>},
};

}  // namespace

std::span<const FunctionEntry> DateFunctions() {
  return kFunctions;
}

}  // namespace hylden::script
