#include "script/DateTime.h"

#include <array>
#include <cmath>

#include "text/Numbers.h"

namespace hylden::script {
namespace {

constexpr std::array<std::string_view, 12> kMonths = {"January",   "February", "March",    "April",
                                                      "May",       "June",     "July",     "August",
                                                      "September", "October",  "November", "December"};
constexpr std::array<std::string_view, 7> kWeekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                       "Thursday", "Friday", "Saturday"};

bool IsLeapYear(std::int64_t year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

/// Days of 1 January of the year, counted from 1 January of year 1 in the Gregorian calendar.
std::int64_t DaysBeforeYear(std::int64_t year) {
  const std::int64_t y = year - 1;
  return 365 * y + FloorDivide(y, 4) - FloorDivide(y, 100) + FloorDivide(y, 400);
}

// 30 December 1899 counted from 1 January of year 1.
constexpr std::int64_t kEpoch = 693593;

std::string TwoDigits(int value) {
  return {static_cast<char>('0' + value / 10), static_cast<char>('0' + value % 10)};
}

}  // namespace

std::int64_t FloorDivide(std::int64_t value, std::int64_t divisor) {
  const std::int64_t quotient = value / divisor;
  return value % divisor < 0 ? quotient - 1 : quotient;
}

bool IsDateSerial(double serial) {
  return serial >= -657434.0 && serial < 2958466.0;
}

std::int64_t DaysFromCivil(std::int64_t year, std::int64_t month, std::int64_t day) {
  const std::int64_t carriedYear = year + FloorDivide(month - 1, 12);
  const int carriedMonth = static_cast<int>(month - 1 - FloorDivide(month - 1, 12) * 12) + 1;
  std::int64_t days = DaysBeforeYear(carriedYear) - kEpoch + day - 1;
  for (int m = 1; m < carriedMonth; ++m) days += DaysInMonth(carriedYear, m);
  return days;
}

double SerialOf(std::int64_t days, std::int64_t seconds) {
  const std::int64_t day = days + FloorDivide(seconds, kSecondsPerDay);
  const std::int64_t rest = seconds - FloorDivide(seconds, kSecondsPerDay) * kSecondsPerDay;
  const double fraction = static_cast<double>(rest) / static_cast<double>(kSecondsPerDay);
  return day >= 0 ? static_cast<double>(day) + fraction : static_cast<double>(day) - fraction;
}

std::int64_t SecondsOf(double serial) {
  const double day = std::trunc(serial);
  const double seconds = NearestWhole(std::fabs(serial - day) * static_cast<double>(kSecondsPerDay));
  return static_cast<std::int64_t>(day) * kSecondsPerDay + static_cast<std::int64_t>(seconds);
}

std::int64_t DayOf(double serial) {
  return FloorDivide(SecondsOf(serial), kSecondsPerDay);
}

DateParts PartsOf(double serial) {
  const std::int64_t seconds = SecondsOf(serial);
  const std::int64_t days = FloorDivide(seconds, kSecondsPerDay);
  const auto ofDay = static_cast<int>(seconds - days * kSecondsPerDay);

  DateParts parts;
  std::int64_t year = 1899 + FloorDivide(days * 400, 146097);
  while (DaysBeforeYear(year + 1) - kEpoch <= days) ++year;
  while (DaysBeforeYear(year) - kEpoch > days) --year;
  auto rest = static_cast<int>(days - (DaysBeforeYear(year) - kEpoch));
  int month = 1;
  for (; rest >= DaysInMonth(year, month); ++month) rest -= DaysInMonth(year, month);
  parts.year = static_cast<int>(year);
  parts.month = month;
  parts.day = rest + 1;
  parts.hour = ofDay / 3600;
  parts.minute = ofDay / 60 % 60;
  parts.second = ofDay % 60;
  return parts;
}

int DaysInMonth(std::int64_t year, int month) {
  constexpr std::array<int, 12> days = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeapYear(year) ? 29 : days[static_cast<std::size_t>(month - 1)];
}

int WeekdayOf(std::int64_t days) {
  // Day 0 was a Saturday.
  return static_cast<int>(days + 6 - FloorDivide(days + 6, 7) * 7) + 1;
}

int FullYear(int year) {
  if (year < 0 || year > 99) return year;
  return year < 30 ? 2000 + year : 1900 + year;
}

std::string_view MonthText(int month) {
  return kMonths[static_cast<std::size_t>(month - 1)];
}

std::string_view WeekdayText(int weekday) {
  return kWeekdays[static_cast<std::size_t>(weekday - 1)];
}

std::string ShortDateText(double serial) {
  const DateParts parts = PartsOf(serial);
  return std::to_string(parts.month) + "/" + std::to_string(parts.day) + "/" + std::to_string(parts.year);
}

std::string LongTimeText(double serial) {
  const DateParts parts = PartsOf(serial);
  const int hour = parts.hour % 12 == 0 ? 12 : parts.hour % 12;
  return std::to_string(hour) + ":" + TwoDigits(parts.minute) + ":" + TwoDigits(parts.second) +
         (parts.hour < 12 ? " AM" : " PM");
}

std::string DateText(double serial) {
  const std::int64_t seconds = SecondsOf(serial);
  if (seconds >= 0 && seconds < kSecondsPerDay) return LongTimeText(serial);
  if (seconds % kSecondsPerDay == 0) return ShortDateText(serial);
  return ShortDateText(serial) + " " + LongTimeText(serial);
}

}  // namespace hylden::script
