#include "shell/BDelay.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/Clock.h"
#include "platform/Dialogs.h"
#include "platform/EventLoop.h"
#include "text/Numbers.h"

namespace hylden {

namespace {

/// To the nearest millisecond, within 32 bits (24 days).
std::int64_t Milliseconds(double seconds) {
  if (std::isnan(seconds)) return 0;
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int64_t>(std::clamp<double>(NearestWhole(seconds * 1000), Limits::min(), Limits::max()));
}

}  // namespace

bool BDelay::Delay(double seconds, bool mayHalt) {
  if (seconds == 0) {
    dialogs_.Tell("Press Enter to continue");
    return true;
  }
  const std::int64_t target = TickAfter(seconds);
  std::int64_t now = 0;
  do {
    events_.Yield(target);
    now = clock_.TickMs();
    if (mayHalt && haltRequested_) return false;
  } while (now < target);
  return true;
}

void BDelay::StartDelay(double seconds) {
  timerDurationMs_ = Milliseconds(seconds);
  timerStartMs_ = clock_.TickMs();
}

bool BDelay::WaitDelay(bool mayHalt, CountdownWindow* window) {
  if (timerDurationMs_ == 0) {
    const Message prompt{"Press Enter to continue, Escape to halt", "Wait for user", MessageIcon::None,
                         MessageButtons::OkCancel};
    return dialogs_.Show(prompt) == MessageAnswer::Ok;
  }
  std::int64_t now = 0;
  do {
    now = clock_.TickMs();
    events_.Yield(timerStartMs_ + timerDurationMs_);
    if (window) window->Countdown(static_cast<double>(timerStartMs_ + timerDurationMs_ - now) / 1000.0);
    if (mayHalt && haltRequested_) return false;
    // The timer is looked up anew on every pass: what ran during the yield may have started it again.
  } while (now < timerStartMs_ + timerDurationMs_);
  return true;
}

std::int64_t BDelay::TickAfter(double seconds) const {
  return clock_.TickMs() + Milliseconds(seconds);
}

void BDelay::WaitUntil(std::int64_t tickMs) {
  while (!haltRequested_ && clock_.TickMs() < tickMs) events_.Yield(tickMs);
}

void BDelay::Yield() {
  events_.Yield();
}

}  // namespace hylden
