#include "run/RunClock.h"

#include <cmath>
#include <cstdint>

namespace hylden {

namespace {

constexpr double kMostMinutes = 1e6;

std::string TwoDigits(std::int64_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

}  // namespace

std::string HoursText(double minutes) {
  if (!(minutes >= 0 && minutes < kMostMinutes)) return "--";
  const std::int64_t seconds = std::llround(minutes * 60);
  return std::to_string(seconds / 3600) + ":" + TwoDigits(seconds / 60 % 60) + ":" + TwoDigits(seconds % 60);
}

std::string EndText(const LocalTime& now, double minutes) {
  if (!(minutes >= 0 && minutes < kMostMinutes)) return "--";
  constexpr std::int64_t kMinutesOfDay = 24 * 60;
  const std::int64_t end = now.hour * 60 + now.minute + std::llround(minutes + now.second / 60.0);
  const std::string time = std::to_string(end / 60 % 24) + ":" + TwoDigits(end % 60);
  return end < kMinutesOfDay ? time : time + " +" + std::to_string(end / kMinutesOfDay) + " d";
}

}  // namespace hylden
