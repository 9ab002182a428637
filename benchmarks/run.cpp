#include <algorithm>
#include <ctime>
#include <limits>
#include <map>
#include <string>

#include "bench/Bench.h"
#include "benchmarks/Limits.h"
#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "support/TestShell.h"
#include "testrun/RunEngine.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

/// A window in which nobody looks.
class SilentDisplay : public RunDisplay {
 public:
  void Countdown(double) override {}
  void Status(const std::string&) override {}
  void Step(int) override {}
  void Frequency(double) override {}
  void SigGenLevel(float) override {}
  void TestLevel(float) override {}
  void InducedLevel(double, double) override {}
  void Power(double) override {}
  void Highlight(Quantity, bool) override {}
  void Dwell(double) override {}
  void Plan(int, double) override {}
  void Elapsed(double) override {}
  void Remaining(double) override {}
  void RowChanged(int) override {}
};

constexpr double kStart = 1, kStop = 101;

SigGenDefinition Generator() {
  SigGenDefinition generator;
  generator.InstrumentName = "Generator";
  generator.Address = 18;
  generator.FreqSetPrefix = "FREQ";
  generator.FreqSetSuffix = "MHZ";
  generator.LevSetPrefix = "POW";
  generator.LevSetSuffix = "DBM";
  generator.ModulationOff = "AM:STAT OFF";
  generator.RfOff = "OUTP OFF";
  generator.RfOn = "OUTP ON";
  generator.AmFreqPrefix = "AM:INT:FREQ";
  generator.AmFreqSuffix = "KHZ";
  generator.AmDepthPrefix = "AM:DEPT";
  generator.AmDepthSuffix = "PCT";
  generator.AmModOn = "AM:STAT ON";
  generator.MaximumLevel = 13;
  generator.MinimumLevel = -140;
  generator.MaximumFreq = 1000;
  generator.MinimumFreq = 0.009;
  generator.EndOfString = 2;
  generator.AmCapable = 1;
  return generator;
}

/// A sweep of so many steps, levelled by the generator: 6 dB of ramp in two steps, then AM for a second.
TestDefinition Sweep(const std::string& calInfoFile, int steps) {
  TestDefinition test;
  test.CalInfoFile = calInfoFile;
  test.StartFreq = kStart;
  test.StopFreq = kStop;
  test.FreqSweep = true;
  test.LinearStep = (kStop - kStart) / (steps - 1);
  test.SweepDwell = 1;
  test.ModType = 1;
  test.AmDepth = 80;
  test.AmModFreq = 1;
  test.InitLevOffset = -6;
  test.LevelInc = 3;
  test.InterDwell = 0.1F;
  test.ModOffBetweenFreqs = true;
  return test;
}

/// A station on the simulated bench, in virtual time.
class BenchRun {
 public:
  explicit BenchRun(int steps) {
    machine_.directory.Write("level.cal", "1,-20,130,na,na,\r\n10,-19,130,na,na,\r\n101,-18,130,na,na,\r\n");
    const std::string info =
        machine_.directory.Write("level.hyinfo", "Run of a benchmark\r\n\r\n\r\n10v\r\n1 - 101\r\n 0 \r\n");
    EquipRecord& equipment = documents_.equip.Record;
    equipment.SigGenFile = machine_.directory.File("generator.sg");
    equipment.SigGenAddress = 18;
    SaveRecord(equipment.SigGenFile, Generator());
    ready_ = documents_.equip.LoadDefinitions();
    BenchEquipment onBench;
    onBench.SigGen = Generator();
    onBench.SigGenAddress = 18;
    bench_.Equip(onBench);
    bench_.Bus().passTime = [this](std::int64_t ms) { clock_.Advance(ms); };
    documents_.testSetup.Definition = Sweep(info, steps);
    ready_ = ready_ && engine_.Prepare() == RunReadiness::Ready && engine_.Steps().size() == std::size_t(steps);
  }

  bool Ready() const { return ready_; }
  /// Whether every step was run to its end, at the level, for its whole dwell.
  bool Run() {
    const std::int64_t start = clock_.TickMs();
    engine_.RunCdiTest();
    const auto steps = static_cast<std::int64_t>(engine_.Steps().size());
    if (clock_.TickMs() - start < steps * 1000 || engine_.Data().Rows().back()[1] != "-18.0 **") return false;
    return engine_.Outcome() == RunOutcome::Finished && engine_.Data().Rows().size() == engine_.Steps().size() + 1;
  }

 private:
  VirtualClock clock_;
  Bench bench_{clock_};
  TestShell machine_{bench_.Driver(), clock_};
  Instruments instruments_{machine_.shell};
  Documents documents_{machine_.shell, instruments_};
  SilentDisplay display_;
  RunControls controls_;
  RunEngine engine_{machine_.shell, instruments_, documents_, display_, controls_};
  bool ready_ = false;
};

/// The lowest time per step seen so far, by the number of steps.
std::map<int, double>& LowestTimes() {
  static std::map<int, double> times;
  return times;
}

void SweepOfSteps(benchmark::State& state) {
  constexpr int kShortest = 1000;
  const int steps = static_cast<int>(state.range(0));
  double perStepUs = std::numeric_limits<double>::max();
  for (auto _ : state) {
    state.PauseTiming();
    BenchRun run(steps);
    if (!run.Ready()) return state.SkipWithError("the run can't be prepared");
    state.ResumeTiming();
    const std::clock_t start = std::clock();
    if (!run.Run()) state.SkipWithError("the run did not finish");
    perStepUs = static_cast<double>(std::clock() - start) * 1e6 / CLOCKS_PER_SEC / steps;
  }
  auto& lowest = LowestTimes().try_emplace(steps, perStepUs).first->second;
  lowest = std::min(lowest, perStepUs);
  LimitFigure(state, "us_per_step", perStepUs, 100);
  // A longer run costs the same per step as a short one, caches and other work on the machine aside.
  if (const auto shortest = LowestTimes().find(kShortest); steps > kShortest && shortest != LowestTimes().end())
    LimitFigure(state, "ratio_to_1000_steps", lowest / shortest->second, 2);
}
BENCHMARK(SweepOfSteps)->Arg(1000)->Arg(10000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hylden
