// From the start of the process to an idle main menu, and what it occupies then. The program is started anew every
// time, without a screen.

#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QApplication>
#include <chrono>
#include <string>
#include <string_view>

#include "app/BusChoice.h"
#include "app/Desktop.h"
#include "app/Station.h"
#include "benchmarks/Limits.h"
#include "platform/console/ConsoleClock.h"
#include "platform/native/SingleInstance.h"
#include "platform/qt/QtDialogs.h"
#include "platform/qt/QtEventLoop.h"
#include "platform/qt/QtPrinter.h"
#include "platform/qt/QtSpeaker.h"
#include "shell/qt/TopMenu.h"
#include "support/TempDir.h"

namespace hylden {
namespace {

constexpr double kMostMilliseconds = 300;
constexpr double kMostMegabytes = 80;
constexpr unsigned kLongestSeconds = 20;  ///< a program that has not come up by then waits for somebody

/// What main() of the program does, up to the point where it waits for its operator.
int StartUntilIdle(int argc, char** argv) {
  QApplication application(argc, argv);
  const TempDir home;
  QtDialogs dialogs;
  ConsoleClock clock;
  QtEventLoop events(clock);
  QtSpeaker speaker;
  QtPrinter printer;
  SingleInstance instance;
  Bus bus(BusChoice(), events, clock);
  Shell shell(Platform{dialogs, clock, events, speaker, printer, bus.Driver()}, home.Path());
  Station station(shell);
  Desktop desktop(station);
  if (!instance.Claim() || !desktop.Start("") || !desktop.Menu().isVisible()) return 1;
  QCoreApplication::processEvents();  // what showing the window has brought about
  return 0;
}

void StartUp(benchmark::State& state) {
  double megabytes = 0;
  for ([[maybe_unused]] auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
      alarm(kLongestSeconds);  // outlives the exec, and ends the program
      execl("/proc/self/exe", "bench_start_up", "--start", "-platform", "offscreen", nullptr);
      _exit(127);
    }
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) state.SkipWithError("the program did not start");
    megabytes = static_cast<double>(usage.ru_maxrss) / 1024;
  }
  LimitFigure(state, "MB", megabytes, kMostMegabytes);
  state.counters["real_time_limit_ns"] = kMostMilliseconds * 1e6;
}
BENCHMARK(StartUp)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hylden

int main(int argc, char** argv) {
  if (argc > 1 && std::string_view(argv[1]) == "--start") return hylden::StartUntilIdle(argc, argv);
  // A program at work on this computer must not keep the measured one from starting.
  setenv("HYLDEN_LOCK", ("benchmark-" + std::to_string(getpid())).c_str(), 1);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
