#pragma once

#include <functional>

#include "platform/EventLoop.h"
#include "platform/native/StopSignals.h"

namespace hylden {

class Clock;

/// The console's events: requests to stop, by Ctrl-C, by the system, or by a terminal that goes away.
/// A program that has RF on must get the chance to switch it off: a request only runs the callback, from within the
/// next Yield or AwaitInput, and no other signal ends or freezes the program (StopSignals).
/// There is one at a time.
class ConsoleEventLoop : public EventLoop {
 public:
  /// @param onStop  called in the program's own thread, once for every arrival; may be empty
  /// @throws RuntimeError when one lives already, or the system has no pipe left
  ConsoleEventLoop(const Clock& clock, std::function<void()> onStop);

  void Yield(std::int64_t deadlineMs = kNoDeadline) override;
  void Repaint() override { TakeStop(); }
  /// Waits for bytes, or the end of them, on a file descriptor; false once a request to stop has come.
  bool AwaitInput(int descriptor);
  /// Readable when a request to stop has arrived; the next Yield takes it.
  int Descriptor() const { return signals_.Descriptor(); }
  /// Whether any request to stop has arrived.
  bool StopRequested() const { return stopRequested_; }

 private:
  /// Empties the pipe and runs the callback if anything was in it.
  bool TakeStop();

  const Clock& clock_;
  std::function<void()> onStop_;
  StopSignals signals_;
  bool stopRequested_ = false;
};

}  // namespace hylden
