#pragma once

#include <cstdint>
#include <functional>
#include <map>

#include "platform/Clock.h"
#include "platform/EventLoop.h"

namespace hylden {

/// A clock that stands still until it is told to move. Starts at the given local time.
class VirtualClock : public Clock {
 public:
  explicit VirtualClock(LocalTime start = {2026, 1, 5, 9, 0, 0});
  /// Starts at the wall clock's time. The waits of a run pass at once, yet what is written down carries the real date
  /// and time: Now is the wall clock's, which must outlive this one.
  explicit VirtualClock(const Clock& wall) : VirtualClock(wall.Now()) { wall_ = &wall; }
  std::int64_t TickMs() const override { return kStartTickMs + elapsedMs_; }
  double SecondsSinceMidnight() const override;
  LocalTime Now() const override;
  void Advance(std::int64_t milliseconds) { elapsedMs_ += milliseconds; }

 private:
  static constexpr std::int64_t kStartTickMs = 1000;

  /// Since midnight of the day on which it started.
  std::int64_t Milliseconds() const;

  LocalTime start_;
  const Clock* wall_ = nullptr;
  std::int64_t elapsedMs_ = 0;
};

/// Waits without waiting: Yield moves the clock to the caller's deadline, or to the next timer due before it, and runs
/// that timer. Without a deadline it moves by 1 ms.
class VirtualEventLoop : public EventLoop {
 public:
  explicit VirtualEventLoop(VirtualClock& clock) : clock_(clock) {}
  void Yield(std::int64_t deadlineMs = kNoDeadline) override;
  /// Runs the action at the tick, from within some Yield.
  void At(std::int64_t tickMs, std::function<void()> action);
  /// Called at every Yield, after timers: tests count waits and press buttons here.
  std::function<void()> onYield;

 private:
  VirtualClock& clock_;
  std::multimap<std::int64_t, std::function<void()>> timers_;
};

}  // namespace hylden
