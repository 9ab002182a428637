#include <string>

#include "benchmarks/BenchRun.h"
#include "run/RunDisplay.h"
#include "testrun/ManualControls.h"
#include "testrun/RunEngine.h"

namespace hylden {
namespace {

constexpr double kStart = 1, kStop = 101;

/// A sweep of so many steps, levelled by the generator: 6 dB of ramp in two steps, then AM for a second.
TestDefinition Sweep(const std::string& calInfoFile, int steps) {
  TestDefinition test;
  test.CalInfoFile = calInfoFile;
  test.StartFreq = kStart;
  test.StopFreq = kStop;
  test.FreqSweep = true;
  test.LinearStep = (kStop - kStart) / (steps - 1);
  test.SweepDwell = 1;
  test.ModType = Modulation::Am;
  test.AmDepth = 80;
  test.AmModFreq = 1;
  test.InitLevOffset = -6;
  test.LevelInc = 3;
  test.InterDwell = 0.1F;
  test.ModOffBetweenFreqs = true;
  return test;
}

/// The demo station with a sweep of so many steps.
class TestRun {
 public:
  explicit TestRun(int steps) {
    const TempDir& files = station_.machine.directory;
    files.Write("level.cal", "1,-20,130,na,na,\r\n10,-19,130,na,na,\r\n101,-18,130,na,na,\r\n");
    const std::string info = files.Write("level.hyinfo", "Run of a benchmark\r\n\r\n\r\n10v\r\n1 - 101\r\n 0 \r\n");
    station_.documents.testSetup.Definition = Sweep(info, steps);
    ready_ =
        station_.loaded && engine_.Prepare() == RunReadiness::Ready && engine_.Steps().size() == std::size_t(steps);
  }

  bool Ready() const { return ready_; }
  /// Whether every step was run to its end, at the level, for its whole dwell.
  bool Run() {
    const std::int64_t start = station_.clock.TickMs();
    engine_.RunCdiTest();
    const auto steps = static_cast<std::int64_t>(engine_.Steps().size());
    if (station_.clock.TickMs() - start < steps * 1000 || CellsOf(engine_.Data().Entries().back())[1] != "-18.0 **")
      return false;
    return engine_.Outcome() == RunOutcome::Finished && engine_.Data().Entries().size() == engine_.Steps().size();
  }

 private:
  DemoStation station_;
  RunDisplay display_;
  ManualControls manual_;
  RunEngine engine_{station_.machine.shell, station_.instruments, station_.documents, display_, manual_};
  bool ready_ = false;
};

void SweepOfSteps(benchmark::State& state) {
  MeasureRun<TestRun>(state, "step", 100);
}
BENCHMARK(SweepOfSteps)->Arg(1000)->Arg(10000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hylden
