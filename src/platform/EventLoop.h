#pragma once

#include <cstdint>
#include <limits>

namespace hylden {

/// The user interface's turn during a wait.
class EventLoop {
 public:
  static constexpr std::int64_t kNoDeadline = std::numeric_limits<std::int64_t>::max();

  virtual ~EventLoop() = default;
  /// Lets pending events run. With none pending it may wait up to 1 ms for one, so that a wait does not burn a
  /// processor; any event ends that wait at once.
  /// @param deadlineMs  tick at which the caller's wait is over: a real loop waits no longer than that, a virtual clock
  ///                    goes straight there (or to its next timer)
  virtual void Yield(std::int64_t deadlineMs = kNoDeadline) = 0;
  /// A short turn while a bus call takes long: windows are repainted and a press of Halt is taken, nothing else.
  virtual void Repaint() {}
};

}  // namespace hylden
