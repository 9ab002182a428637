#include <algorithm>
#include <chrono>
#include <ctime>

#include "benchmarks/Limits.h"
#include "platform/console/ConsoleClock.h"
#include "platform/console/ConsoleEventLoop.h"
#include "shell/BDelay.h"
#include "support/FakeDialogs.h"

namespace hylden {
namespace {

using Seconds = std::chrono::duration<double>;

Seconds WallTime() {
  return std::chrono::steady_clock::now().time_since_epoch();
}

/// Processor time of this process.
Seconds CpuTime() {
  return Seconds(static_cast<double>(std::clock()) / CLOCKS_PER_SEC);
}

struct SilentWindow : CountdownWindow {
  void Countdown(double seconds) override { left = seconds; }
  double left = 0;
};

/// A dwell of one second as a test on the console waits for it, countdown included.
void Dwell(benchmark::State& state) {
  SilentWindow window;
  FakeDialogs dialogs;
  ConsoleClock clock;
  ConsoleEventLoop events(clock, {});
  BDelay delay(dialogs, clock, events);
  Seconds wall{}, cpu{};
  for (auto _ : state) {
    const Seconds wallStart = WallTime(), cpuStart = CpuTime();
    delay.StartDelay(1);
    if (!delay.WaitDelay(true, &window)) state.SkipWithError("the dwell was halted");
    wall = WallTime() - wallStart;
    cpu = CpuTime() - cpuStart;
  }
  const double overrunMs = (wall.count() - 1) * 1000;
  // Millisecond ticks: a dwell that starts late within its tick ends up to 1 ms before a finer clock says so.
  if (overrunMs < -1) state.SkipWithError("the dwell was cut short");
  LimitFigure(state, "overrun_ms", overrunMs, 2);
  LimitFigure(state, "cpu_percent", 100 * cpu.count() / wall.count(), 5);
}
BENCHMARK(Dwell)->Iterations(1)->Unit(benchmark::kMillisecond);

/// An event loop in which Halt is pressed during a pass.
class HaltingLoop : public EventLoop {
 public:
  explicit HaltingLoop(EventLoop& real) : real_(real) {}

  void Yield(std::int64_t deadlineMs) override {
    real_.Yield(deadlineMs);
    if (++passes_ == kPressedAt) delay->RequestHalt();
  }
  int PassesAfterHalt() const { return std::max(0, passes_ - kPressedAt); }
  bool Pressed() const { return passes_ >= kPressedAt; }

  BDelay* delay = nullptr;

 private:
  static constexpr int kPressedAt = 5;
  EventLoop& real_;
  int passes_ = 0;
};

void HaltDuringDwell(benchmark::State& state) {
  FakeDialogs dialogs;
  ConsoleClock clock;
  ConsoleEventLoop real(clock, {});
  double passes = 0;
  for (auto _ : state) {
    HaltingLoop events(real);
    BDelay delay(dialogs, clock, events);
    events.delay = &delay;
    delay.StartDelay(10);
    if (delay.WaitDelay(true) || !events.Pressed()) state.SkipWithError("the halt did not end the dwell");
    passes = events.PassesAfterHalt();
  }
  LimitFigure(state, "passes_after_halt", passes, 1);
}
BENCHMARK(HaltDuringDwell)->Iterations(10)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hylden
