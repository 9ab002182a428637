// What the trace, which is always on, costs a call on the bus.

#include <array>

#include "benchmarks/Limits.h"
#include "platform/TracedGpib.h"
#include "platform/console/ConsoleClock.h"

namespace hylden {
namespace {

/// A bus on which everything is done at once.
class InstantBus : public GpibDriver {
 public:
  int RegisterGpibGlobalsForThread(GpibStatusCells& cells) override {
    cells_ = &cells;
    return 0;
  }
  int UnregisterGpibGlobalsForThread() override { return 0; }
  void SendIFC(int) override {}
  void FindLstn(int, std::span<const std::int16_t>, std::span<std::int16_t>) override {}
  void SetRWLS(int, std::span<const std::int16_t>) override {}
  void EnableLocal(int, std::span<const std::int16_t>) override {}
  void Send(int, int, std::string_view bytes, int) override { Done(bytes.size()); }
  void Receive(int, int, std::span<char> buffer, int) override { Done(buffer.size()); }
  void ibtmo(int, int) override {}

 private:
  void Done(std::size_t count) { cells_->longCount = static_cast<std::int32_t>(count); }

  GpibStatusCells* cells_ = nullptr;
};

/// A command and its answer of 64 characters, through a trace that is full.
void TracedCall(benchmark::State& state) {
  ConsoleClock clock;
  InstantBus bus;
  TracedGpib driver(bus, clock);
  GpibStatusCells cells;
  driver.RegisterGpibGlobalsForThread(cells);
  std::array<char, 64> buffer{};
  const auto talk = [&] {
    driver.Send(0, 18, "FREQ 100.123456 MHZ\r\n", gpib::kDabEnd);
    driver.Receive(0, 18, buffer, gpib::kStopEnd);
  };
  for (std::size_t i = 0; i < BusTrace::kCapacity; ++i) talk();
  for (auto _ : state) talk();
  LimitTime(state, std::chrono::microseconds(10));
}
BENCHMARK(TracedCall);

}  // namespace
}  // namespace hylden
