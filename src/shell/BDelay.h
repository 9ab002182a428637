#pragma once

#include <cstdint>

namespace hylden {

class Clock;
class Dialogs;
class EventLoop;

/// A window that shows the seconds left of a wait.
class CountdownWindow {
 public:
  virtual ~CountdownWindow() = default;
  virtual void Countdown(double seconds) = 0;
};

/// Waits that keep the user interface alive, and the program-wide halt request.
class BDelay {
 public:
  BDelay(Dialogs& dialogs, Clock& clock, EventLoop& events) : dialogs_(dialogs), clock_(clock), events_(events) {}

  void RequestHalt() { haltRequested_ = true; }
  void ClearHalt() { haltRequested_ = false; }
  bool HaltRequested() const { return haltRequested_; }

  /// Waits; 0 seconds becomes the prompt "Press Enter to continue". A negative time makes one pass.
  /// @return false when a halt request ended the wait (only with mayHalt)
  bool Delay(double seconds, bool mayHalt);
  /// Starts the one timer that WaitDelay awaits; replaces the one before.
  void StartDelay(double seconds);
  /// Waits for what is left of the timer, showing the seconds left; 0 seconds becomes the "Wait for user" prompt.
  /// @return false when ended by a halt request (only with mayHalt), or by Cancel or Escape at the prompt
  bool WaitDelay(bool mayHalt, CountdownWindow* window = nullptr);
  /// The tick at which a time from now is over, to the nearest millisecond.
  std::int64_t TickAfter(double seconds) const;
  /// Waits until the tick or a halt request, without a prompt.
  void WaitUntil(std::int64_t tickMs);
  /// Lets the user interface take a turn.
  void Yield();

 private:
  Dialogs& dialogs_;
  Clock& clock_;
  EventLoop& events_;
  bool haltRequested_ = false;
  std::int64_t timerDurationMs_ = 0;
  std::int64_t timerStartMs_ = 0;
};

}  // namespace hylden
