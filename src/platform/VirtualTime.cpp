#include "platform/VirtualTime.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace hylden {

namespace {

constexpr std::int64_t kDayMs = std::int64_t{24} * 60 * 60 * 1000;

}  // namespace

VirtualClock::VirtualClock(LocalTime start) : start_(start) {}

std::int64_t VirtualClock::Milliseconds() const {
  return ((start_.hour * 60LL + start_.minute) * 60LL + start_.second) * 1000LL + elapsedMs_;
}

double VirtualClock::SecondsSinceMidnight() const {
  return static_cast<double>(Milliseconds() % kDayMs) / 1000.0;
}

LocalTime VirtualClock::Now() const {
  if (wall_) return wall_->Now();
  using namespace std::chrono;
  const std::int64_t milliseconds = Milliseconds();
  const sys_days startDay =
      year{start_.year} / month{static_cast<unsigned>(start_.month)} / day{static_cast<unsigned>(start_.day)};
  const year_month_day date{startDay + days{milliseconds / kDayMs}};
  const auto second = static_cast<int>(milliseconds % kDayMs / 1000);
  return {static_cast<int>(date.year()),
          static_cast<int>(static_cast<unsigned>(date.month())),
          static_cast<int>(static_cast<unsigned>(date.day())),
          second / 3600,
          second / 60 % 60,
          second % 60};
}

void VirtualEventLoop::At(std::int64_t tickMs, std::function<void()> action) {
  timers_.emplace(tickMs, std::move(action));
}

void VirtualEventLoop::Yield(std::int64_t deadlineMs) {
  const std::int64_t now = clock_.TickMs();
  std::int64_t next = deadlineMs == kNoDeadline ? now + 1 : std::max(now, deadlineMs);
  if (!timers_.empty()) next = std::clamp(timers_.begin()->first, now, next);
  clock_.Advance(next - now);
  // Each timer leaves the list before it runs: it may yield again itself.
  while (!timers_.empty() && timers_.begin()->first <= next) {
    auto timer = timers_.extract(timers_.begin());
    timer.mapped()();
  }
  if (onYield) onYield();
}

}  // namespace hylden
