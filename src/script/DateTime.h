#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hylden::script {

inline constexpr std::int64_t kSecondsPerDay = 86400;

/// The quotient towards minus infinity: days and weeks count on through zero. @pre the divisor is positive
std::int64_t FloorDivide(std::int64_t value, std::int64_t divisor);

/// Dates are serial numbers: days since 30 December 1899, the time of day as fraction. Before that day the fraction
/// still counts forward: -1.25 is 29 December 1899, 6:00.
/// Dates run from 1 January 100 to 31 December 9999.
bool IsDateSerial(double serial);

struct DateParts {
  std::int32_t year = 1899, month = 12, day = 30;
  std::int32_t hour = 0, minute = 0, second = 0;
};

/// Days of a calendar date; month and day may lie outside their range and carry over.
std::int64_t DaysFromCivil(std::int64_t year, std::int64_t month, std::int64_t day);
/// The serial of a day and a time of day in seconds, which may lie outside the day and carry over.
double SerialOf(std::int64_t days, std::int64_t seconds);
/// Seconds since the start of 30 December 1899, to the nearest second.
std::int64_t SecondsOf(double serial);
/// The day that the serial falls on, to the nearest second.
std::int64_t DayOf(double serial);
DateParts PartsOf(double serial);
int DaysInMonth(std::int64_t year, int month);
/// 1 Sunday to 7 Saturday.
int WeekdayOf(std::int64_t days);
/// Years of two digits: 0 to 29 are of this century, 30 to 99 of the last.
int FullYear(int year);

std::string_view MonthText(int month);
/// @param weekday  1 Sunday to 7 Saturday
std::string_view WeekdayText(int weekday);

/// "1/5/2026 9:00:00 AM"; the date alone at midnight, the time alone on day 0.
std::string DateText(double serial);
/// "1/5/2026"
std::string ShortDateText(double serial);
/// "9:00:00 AM"
std::string LongTimeText(double serial);

/// Reads a date, a time or both: "1/5/2026", "2026-01-05 14:30", "Jan 5, 2026 2:30 PM", "5 January", "14:30:05".
/// Month before day, unless that is no date.
/// @param yearWhenMissing  the year of a date without one; 0 when such a date is refused
std::optional<double> ParseDate(std::u16string_view text, int yearWhenMissing);

}  // namespace hylden::script
