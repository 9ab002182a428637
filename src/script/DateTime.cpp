#include "script/DateTime.h"

#include <array>
#include <chrono>
#include <cmath>

#include "text/Numbers.h"

namespace hylden::script {
namespace {

constexpr std::array<std::string_view, 12> kMonths = {"January",   "February", "March",    "April",
                                                      "May",       "June",     "July",     "August",
                                                      "September", "October",  "November", "December"};
constexpr std::array<std::string_view, 7> kWeekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                       "Thursday", "Friday", "Saturday"};

constexpr std::chrono::sys_days kEpoch = std::chrono::year(1899) / 12 / 30;
/// After so many years the calendar repeats itself, and so many days.
constexpr std::int64_t kYearsOfCycle = 400, kDaysOfCycle = 146097;

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
  const std::int64_t carriedYears = FloorDivide(month - 1, 12);
  const std::int64_t cycles = FloorDivide(year + carriedYears, kYearsOfCycle);
  const auto yearOfCycle = static_cast<int>(year + carriedYears - cycles * kYearsOfCycle);
  const auto carriedMonth = static_cast<unsigned>(month - carriedYears * 12);
  const std::chrono::sys_days first = std::chrono::year(yearOfCycle) / std::chrono::month(carriedMonth) / 1;
  return (first - kEpoch).count() + cycles * kDaysOfCycle + day - 1;
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
  const std::chrono::year_month_day date(kEpoch + std::chrono::days(days));
  return {static_cast<int>(date.year()),
          static_cast<int>(static_cast<unsigned>(date.month())),
          static_cast<int>(static_cast<unsigned>(date.day())),
          ofDay / 3600,
          ofDay / 60 % 60,
          ofDay % 60};
}

int DaysInMonth(std::int64_t year, int month) {
  const auto yearOfCycle = static_cast<int>(year % kYearsOfCycle);
  const auto last = std::chrono::year(yearOfCycle) / month / std::chrono::last;
  return static_cast<int>(static_cast<unsigned>(last.day()));
}

int WeekdayOf(std::int64_t days) {
  return static_cast<int>(std::chrono::weekday(kEpoch + std::chrono::days(days)).c_encoding()) + 1;
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
