#pragma once

#include <functional>

#include "platform/EventLoop.h"

namespace hylden {

class Clock;

/// The console's events: requests to stop, by Ctrl-C, by the system, or by a terminal that goes away.
/// A program that has RF on must get the chance to switch it off. While this object lives, SIGINT, SIGTERM, SIGHUP and
/// SIGQUIT therefore only run the callback, from within the next Yield or AwaitInput; a reader that closes our output
/// (SIGPIPE) ends nothing, and the job control of the terminal does not freeze the program.
/// There is one at a time.
class ConsoleEventLoop : public EventLoop {
 public:
  /// @param onStop  called in the program's own thread, once for every arrival; may be empty
  /// @throws RuntimeError when one lives already, or the system has no pipe left
  ConsoleEventLoop(const Clock& clock, std::function<void()> onStop);
  ~ConsoleEventLoop() override;
  ConsoleEventLoop(const ConsoleEventLoop&) = delete;
  ConsoleEventLoop& operator=(const ConsoleEventLoop&) = delete;

  void Yield(std::int64_t deadlineMs = kNoDeadline) override;
  /// Waits for bytes, or the end of them, on a file descriptor; false when a request to stop came first.
  bool AwaitInput(int descriptor);
  /// Whether any request to stop has arrived.
  bool StopRequested() const { return stopRequested_; }

 private:
  /// Empties the pipe and runs the callback if anything was in it.
  bool TakeStop();

  const Clock& clock_;
  std::function<void()> onStop_;
  int wakeUp_ = -1;
  bool stopRequested_ = false;
};

}  // namespace hylden
