#pragma once

#include <string>

namespace hylden {

/// A time in hours, minutes and seconds, rounded to the second: "0:12:34". Below 0 it is 0.
std::string DurationText(double seconds);

/// The clock when a time is over: "14:35", and behind it the days in between, "02:10 (+1 day)".
/// @param midnightSeconds  now, in seconds since midnight
std::string ClockAfter(double midnightSeconds, double seconds);

}  // namespace hylden
