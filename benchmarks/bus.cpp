// What a bus call costs beyond the driver's own time: the way to the thread of the calls and back.

#include <array>
#include <memory>

#include "benchmarks/Limits.h"
#include "platform/EventLoop.h"
#include "platform/native/ThreadedGpib.h"
#include "support/ScriptedBus.h"

namespace hylden {
namespace {

struct NoTurns : EventLoop {
  void Yield(std::int64_t) override {}
};

/// A driver that has done each call at once.
class QuickBus : public ScriptedBus {
 public:
  void Send(int, int, std::string_view, int) override {}
  void Receive(int, int, std::span<char>, int) override {}
};

void ThreadedCall(benchmark::State& state) {
  NoTurns events;
  ThreadedGpib bus(std::make_unique<QuickBus>(), events);
  GpibStatusCells cells;
  bus.RegisterGpibGlobalsForThread(cells);
  std::array<char, 64> buffer{};
  for (auto _ : state) {
    bus.Send(0, 18, "FREQ 100.000000 MHZ;:POW -12.3 DBM\r\n", gpib::kDabEnd);
    bus.Receive(0, 18, buffer, gpib::kStopEnd);
  }
  LimitTime(state, std::chrono::microseconds(2 * 30));
}
BENCHMARK(ThreadedCall)->UseRealTime();

}  // namespace
}  // namespace hylden
