// From the press of Halt to the command on the bus that takes RF off, through the real windows, in real time.

#include <QApplication>
#include <QPushButton>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>
#include <random>
#include <vector>

#include "app/Station.h"
#include "bench/Bench.h"
#include "benchmarks/Limits.h"
#include "platform/console/ConsoleClock.h"
#include "platform/qt/QtEventLoop.h"
#include "support/FailingDriver.h"
#include "support/FakeDialogs.h"
#include "support/FakePrinter.h"
#include "support/FakeSpeaker.h"
#include "support/TempDir.h"
#include "testrun/qt/frmRunTest.h"

namespace hylden {
namespace {

using Instant = std::chrono::steady_clock::time_point;

constexpr int kHalts = 200;
constexpr int kLatestMomentMs = 800;  ///< after the run's first RF: ramps, settling and dwells of several steps

/// Notes when RF goes on and off.
class RfWatch : public FailingDriver {
 public:
  using FailingDriver::FailingDriver;
  std::function<void()> onRfOn;
  bool rfOn = false;
  Instant wentOff;

  void Send(int board, int address, std::string_view bytes, int eotMode) override {
    if (rfOn && bytes.starts_with("OUTP OFF")) {
      wentOff = std::chrono::steady_clock::now();
      rfOn = false;
    }
    FailingDriver::Send(board, address, bytes, eotMode);
    if (!rfOn && bytes.starts_with("OUTP ON")) {
      rfOn = true;
      onRfOn();
    }
  }
};

/// The machine's clock, which can be put forward.
class ForwardClock : public Clock {
 public:
  std::int64_t TickMs() const override { return clock_.TickMs() + forward; }
  double SecondsSinceMidnight() const override { return clock_.SecondsSinceMidnight(); }
  LocalTime Now() const override { return clock_.Now(); }
  std::int64_t forward = 0;

 private:
  ConsoleClock clock_;
};

/// Real time while RF is on; the seconds in which the instruments come up are skipped.
class RealWhileRfIsOn : public EventLoop {
 public:
  RealWhileRfIsOn(ForwardClock& clock, const RfWatch& watch) : clock_(clock), watch_(watch), events_(clock) {}
  void Yield(std::int64_t deadlineMs) override {
    if (!watch_.rfOn && deadlineMs != kNoDeadline)
      clock_.forward += std::max<std::int64_t>(0, deadlineMs - clock_.TickMs());
    events_.Yield(deadlineMs);
  }

 private:
  ForwardClock& clock_;
  const RfWatch& watch_;
  QtEventLoop events_;
};

class HaltStation {
 public:
  HaltStation() {
    TestSetup& test = station_.documents.testSetup;
    if (!station_.LoadEquipment("station.eqp") || !station_.Apply()) return;
    if (!test.LoadDef("substitution-am.tst") || !station_.documents.calInfo.LoadDef(test.Definition.CalInfoFile))
      return;
    watch_.onRfOn = [this] {
      if (pressed_ || waiting_) return;
      waiting_ = true;
      QTimer::singleShot(std::uniform_int_distribution<>(0, kLatestMomentMs)(random_), Qt::PreciseTimer,
                         [this] { PressHalt(); });
    };
    dialogs_.onShow = [this](const Message& message) {
      if (message.buttons != MessageButtons::Ok && message.buttons != MessageButtons::OkCancel)
        dialogs_.Answer(MessageAnswer::No);  // the rows of a halted run, which the next one drops
    };
    form_.show();
    form_.Load();
    ready_ = form_.findChild<QPushButton*>("cmdRun")->isEnabled();
  }

  bool Ready() const { return ready_; }
  /// Runs until the halt. @return ms from the press to the command; nothing when RF stayed on
  std::optional<double> RunAndHalt() {
    pressed_.reset();
    waiting_ = false;
    form_.findChild<QPushButton*>("cmdRun")->click();
    if (!pressed_ || watch_.rfOn || watch_.wentOff < *pressed_) return std::nullopt;
    return std::chrono::duration<double, std::milli>(watch_.wentOff - *pressed_).count();
  }

 private:
  void PressHalt() {
    pressed_ = std::chrono::steady_clock::now();
    form_.findChild<QPushButton*>("cmdHalt")->click();
  }

  WorkingDirectory atStation_{HYLDEN_SOURCE_DIR "/examples/station"};
  TempDir directory_;
  ForwardClock clock_;
  Bench bench_{clock_, LoadBenchFile("bench.txt").Config};
  RfWatch watch_{bench_.Driver()};
  RealWhileRfIsOn events_{clock_, watch_};
  FakeDialogs dialogs_;
  FakeSpeaker speaker_;
  FakePrinter printer_;
  Shell shell_{{dialogs_, clock_, events_, speaker_, printer_, watch_}, directory_.Path()};
  Station station_{shell_, &bench_};
  frmRunTest form_{station_.shell, station_.instruments, station_.documents};
  std::mt19937 random_{1};
  bool ready_ = false, waiting_ = false;
  std::optional<Instant> pressed_;
};

double Percentile(const std::vector<double>& sorted, int percent) {
  return sorted[(sorted.size() * static_cast<std::size_t>(percent) + 99) / 100 - 1];
}

void HaltToRfOff(benchmark::State& state) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  int argc = 1;
  char name[] = "halt_latency";
  char* argv[] = {name, nullptr};
  const QApplication application(argc, argv);
  HaltStation station;
  if (!station.Ready()) return state.SkipWithError("the run can't be prepared");
  std::vector<double> milliseconds;
  for (auto _ : state) {
    for (int i = 0; i < kHalts; ++i) {
      const auto latency = station.RunAndHalt();
      if (!latency) return state.SkipWithError("RF stayed on after Halt");
      milliseconds.push_back(*latency);
    }
  }
  std::sort(milliseconds.begin(), milliseconds.end());
  state.counters["p50_ms"] = Percentile(milliseconds, 50);
  LimitFigure(state, "p99_ms", Percentile(milliseconds, 99), 10);
}
BENCHMARK(HaltToRfOff)->Iterations(1)->Repetitions(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hylden
