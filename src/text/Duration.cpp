#include "text/Duration.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace hylden {
namespace {

constexpr std::int64_t kMinute = 60, kHour = 60 * kMinute, kDay = 24 * kHour;
constexpr double kLongest = 1e12;

std::int64_t WholeSeconds(double seconds) {
  return std::llround(std::isnan(seconds) ? 0 : std::clamp(seconds, 0.0, kLongest));
}

std::string TwoDigits(std::int64_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

}  // namespace

std::string DurationText(double seconds) {
  const std::int64_t whole = WholeSeconds(seconds);
  return std::to_string(whole / kHour) + ':' + TwoDigits(whole % kHour / kMinute) + ':' + TwoDigits(whole % kMinute);
}

std::string ClockAfter(double midnightSeconds, double seconds) {
  const std::int64_t end = WholeSeconds(midnightSeconds + seconds), days = end / kDay;
  std::string text = TwoDigits(end % kDay / kHour) + ':' + TwoDigits(end % kHour / kMinute);
  if (days > 0) text += " (+" + std::to_string(days) + (days == 1 ? " day)" : " days)");
  return text;
}

}  // namespace hylden
