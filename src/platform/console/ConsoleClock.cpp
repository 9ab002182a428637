#include "platform/console/ConsoleClock.h"

#include <time.h>

#include <chrono>

namespace hylden {

namespace {

std::tm Local(std::time_t time) {
  std::tm local{};
  localtime_r(&time, &local);
  return local;
}

}  // namespace

std::int64_t ConsoleClock::TickMs() const {
  using namespace std::chrono;
  return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

double ConsoleClock::SecondsSinceMidnight() const {
  using namespace std::chrono;
  const auto now = system_clock::now();
  const std::tm local = Local(system_clock::to_time_t(floor<seconds>(now)));
  const double fraction = duration<double>(now - floor<seconds>(now)).count();
  return local.tm_hour * 3600.0 + local.tm_min * 60.0 + local.tm_sec + fraction;
}

LocalTime ConsoleClock::Now() const {
  const std::tm local = Local(std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()));
  return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

}  // namespace hylden
