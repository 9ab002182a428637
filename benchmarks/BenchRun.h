#pragma once

#include <algorithm>
#include <ctime>
#include <limits>
#include <map>
#include <string>

#include "app/Station.h"
#include "bench/Bench.h"
#include "benchmarks/Limits.h"
#include "support/TestShell.h"

namespace hylden {

/// The demo station on the simulated bench, in virtual time.
struct DemoStation {
  DemoStation() {
    loaded = station.LoadEquipment("station.eqp") && station.Apply();
    bench.Bus().passTime = [this](std::int64_t ms) { clock.Advance(ms); };
  }

  WorkingDirectory atStation{HYLDEN_SOURCE_DIR "/examples/station"};
  VirtualClock clock;
  Bench bench{clock, LoadBenchFile("bench.txt").Config};
  TestShell machine{bench.Driver(), clock};
  Station station{machine.shell, &bench};
  Instruments& instruments = station.instruments;
  Documents& documents = station.documents;
  bool loaded = false;
};

/// Processor time of a run of state.range(0) steps, the bench's own work included. It is limited per step, and so is
/// its growth: a longer run costs the same per step as the benchmark's first one, caches and other work on the machine
/// aside.
/// @tparam Run  made with the number of steps; Ready tells whether it can be run, Run whether it did what it should
/// @param step  what a step is called
template <class Run>
void MeasureRun(benchmark::State& state, const std::string& step, double limitUs) {
  const int steps = static_cast<int>(state.range(0));
  double perStepUs = std::numeric_limits<double>::max();
  for (auto _ : state) {
    state.PauseTiming();
    Run run(steps);
    if (!run.Ready()) return state.SkipWithError("the run can't be prepared");
    state.ResumeTiming();
    const std::clock_t start = std::clock();
    const bool done = run.Run();
    perStepUs = static_cast<double>(std::clock() - start) * 1e6 / CLOCKS_PER_SEC / steps;
    if (!done) return state.SkipWithError("the run did not do what it should");
  }
  static std::map<int, double> lowestTimes;
  double& lowest = lowestTimes.try_emplace(steps, perStepUs).first->second;
  lowest = std::min(lowest, perStepUs);
  LimitFigure(state, "us_per_" + step, perStepUs, limitUs);
  const auto& [fewest, lowestOfFewest] = *lowestTimes.begin();
  if (steps > fewest)
    LimitFigure(state, "ratio_to_" + std::to_string(fewest) + "_" + step + "s", lowest / lowestOfFewest, 2);
}

}  // namespace hylden
