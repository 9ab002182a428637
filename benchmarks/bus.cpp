// What a bus call costs beyond the driver's own time: the way to the thread of the calls and back.

#include <array>
#include <chrono>
#include <memory>
#include <string>

#include "benchmarks/Limits.h"
#include "platform/BusRouter.h"
#include "platform/EventLoop.h"
#include "platform/native/SocketInstrument.h"
#include "platform/native/TcpStream.h"
#include "platform/native/ThreadedGpib.h"
#include "support/ScriptedBus.h"
#include "support/ScriptedPeer.h"

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

constexpr int kQuestions = 2000;

/// Microseconds of one question with its answer.
template <class Ask>
double TimeOf(Ask ask) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < kQuestions; ++i) ask();
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count() / kQuestions;
}

double TimeOfStream(int port) {
  const auto later = [] { return std::chrono::steady_clock::now() + std::chrono::seconds(10); };
  TcpStream stream("127.0.0.1", port);
  stream.Open(later());
  std::string answer;
  return TimeOf([&] {
    answer.clear();
    stream.Write("READ?\n", later());
    while (!answer.ends_with('\n')) stream.Read(answer, 64, later());
  });
}

double TimeOfBus(int port) {
  NoTurns events;
  ScriptedBus others;
  ThreadedGpib instrument(std::make_unique<SocketInstrument>(std::make_unique<TcpStream>("127.0.0.1", port)), events);
  BusRouter bus(others, {{18, &instrument}});
  GpibStatusCells cells;
  bus.RegisterGpibGlobalsForThread(cells);
  bus.SendIFC(0);
  std::array<char, 64> buffer{};
  return TimeOf([&] {
    bus.Send(0, 18, "READ?\n", gpib::kDabEnd);
    bus.Receive(0, 18, buffer, '\n');
  });
}

/// What a call to an instrument in the network costs beyond the way there and back.
void CallOverLoopback(benchmark::State& state) {
  double stream = 0, bus = 0;
  for (auto _ : state) {
    ScriptedPeer peer([](const std::string&) { return ScriptedPeer::Reply{"-12.34\n"}; });
    stream = TimeOfStream(peer.Port());
    bus = TimeOfBus(peer.Port());
  }
  state.counters["round_trip_us"] = stream;
  LimitFigure(state, "own_us_per_call", (bus - stream) / 2, 50);
}
BENCHMARK(CallOverLoopback)->Iterations(1)->Repetitions(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hylden
