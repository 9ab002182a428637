#pragma once

#include <cstdint>

#include "platform/Clock.h"

namespace hylden {

/// The time that a run has taken so far, without its pauses.
class ElapsedTime {
 public:
  explicit ElapsedTime(const Clock& clock) : clock_(clock) {}

  void Start() { startMs_ = clock_.TickMs(); }
  /// What lies between these two is not counted.
  void Pause() { pausedMs_ = clock_.TickMs(); }
  void Resume() { startMs_ += clock_.TickMs() - pausedMs_; }
  double Minutes() const { return static_cast<double>(clock_.TickMs() - startMs_) / 60000; }

 private:
  const Clock& clock_;
  std::int64_t startMs_ = 0;
  std::int64_t pausedMs_ = 0;
};

}  // namespace hylden
