#pragma once

#include <cstdint>

namespace hylden {

/// Local date and time.
struct LocalTime {
  int year = 0, month = 0, day = 0;
  int hour = 0, minute = 0, second = 0;
};

/// The machine's time.
class Clock {
 public:
  virtual ~Clock() = default;
  /// Monotonic milliseconds; never wraps.
  virtual std::int64_t TickMs() const = 0;
  /// Seconds since local midnight, with fractions.
  virtual double SecondsSinceMidnight() const = 0;
  virtual LocalTime Now() const = 0;
};

}  // namespace hylden
