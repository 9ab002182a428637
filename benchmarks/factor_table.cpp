#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "benchmarks/Limits.h"
#include "measure/InterpClass.h"
#include "support/ScriptedBus.h"
#include "support/TestShell.h"
#include "text/Numbers.h"
#include "text/Pattern.h"

namespace hylden {
namespace {

using std::chrono::milliseconds;

constexpr int kPoints = 32767;
constexpr int kLookups = 1000000;
constexpr double kStart = 0.15, kStop = 1000;

/// A loss table of neighbouring values that all differ, so that every point is kept.
std::string TableText() {
  std::string text = "Cable loss\r\nFreq MHz, Loss dB\r\n";
  for (int i = 0; i < kPoints; ++i) {
    const double frequency = kStart + i * (kStop - kStart) / (kPoints - 1);
    text += ShortestText(frequency) + ", " + Format(0.05 + i * 0.001, "0.0##") + "\r\n";
  }
  return text;
}

struct Table {
  Table() : machine(bus), table(machine.shell), path(machine.directory.Write("table.los", TableText())) {}

  bool Load() { return table.InitInterp(path).has_value(); }

  ScriptedBus bus;
  TestShell machine;
  InterpClass table;
  std::string path;
};

std::vector<double> RandomFrequencies() {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> within(kStart, kStop);
  std::vector<double> frequencies(kLookups);
  std::generate(frequencies.begin(), frequencies.end(), [&] { return within(random); });
  return frequencies;
}

void LookUpAll(benchmark::State& state, const std::vector<double>& frequencies, FreqScale scale) {
  Table fixture;
  if (!fixture.Load()) return state.SkipWithError("the table does not load");
  for (auto _ : state) {
    int found = 0;
    for (const double frequency : frequencies) found += fixture.table.InterpVal(frequency, scale) ? 1 : 0;
    if (found != kLookups) state.SkipWithError("a frequency within the table was not found");
  }
}

void LoadTable(benchmark::State& state) {
  Table fixture;
  for (auto _ : state)
    if (!fixture.Load()) state.SkipWithError("the table does not load");
  LimitTime(state, milliseconds(10));
}
BENCHMARK(LoadTable)->Unit(benchmark::kMillisecond);

void MillionRisingLookups(benchmark::State& state, FreqScale scale) {
  std::vector<double> frequencies = RandomFrequencies();
  std::sort(frequencies.begin(), frequencies.end());
  LookUpAll(state, frequencies, scale);
  LimitTime(state, milliseconds(20));
}
BENCHMARK_CAPTURE(MillionRisingLookups, linear, FreqScale::Linear)->Unit(benchmark::kMillisecond);

void MillionRandomLookups(benchmark::State& state, FreqScale scale) {
  LookUpAll(state, RandomFrequencies(), scale);
  LimitTime(state, milliseconds(300));
}
BENCHMARK_CAPTURE(MillionRandomLookups, linear, FreqScale::Linear)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MillionRandomLookups, log, FreqScale::Log)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hylden
