#pragma once

#include <cstdint>

#include "platform/Clock.h"

namespace hylden {

/// The time that a run has taken so far.
class ElapsedTime {
 public:
  explicit ElapsedTime(const Clock& clock) : clock_(clock) {}

  void Start() { startMs_ = clock_.TickMs(); }
  double Minutes() const { return static_cast<double>(clock_.TickMs() - startMs_) / 60000; }

 private:
  const Clock& clock_;
  std::int64_t startMs_ = 0;
};

}  // namespace hylden
