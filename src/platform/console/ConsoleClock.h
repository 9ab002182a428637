#pragma once

#include "platform/Clock.h"

namespace hylden {

/// The machine's steady clock and its local time.
class ConsoleClock : public Clock {
 public:
  std::int64_t TickMs() const override;
  double SecondsSinceMidnight() const override;
  LocalTime Now() const override;
};

}  // namespace hylden
