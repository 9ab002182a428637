#include <algorithm>
#include <chrono>
#include <vector>

#include "benchmarks/Limits.h"
#include "platform/native/JournalFolder.h"
#include "run/RunJournal.h"
#include "run/UnsavedRows.h"
#include "support/TestShell.h"
#include "testrun/RunDataJournal.h"

namespace hylden {
namespace {

/// What a row costs the step that records it, the median and the 99th of 100: every second one while the disk is at
/// work on the row before, the others with a thread to wake.
void RowOfAStep(benchmark::State& state) {
  using Clock = std::chrono::steady_clock;
  constexpr int kRows = 1000;
  TestShell t;
  JournalFolder journals(t.directory.File("journals"));
  t.shell.journals = &journals;
  UnsavedRows rows(
      t.dialogs, {}, [] { return false; }, [] { return false; });
  const RunEntry entry = StepEntry{12.345678, StepResult{-12.3F, 129.5F, 1.0 / 3, 33.2, 21.5}};
  std::vector<double> costsUs;
  for (auto _ : state) {
    RunJournal journal(t.shell, rows);
    journal.Begin({.Kind = JournalKind::Test, .Name = "benchmark.tst"});
    for (int row = 1; row <= kRows; ++row) {
      const auto start = Clock::now();
      journal.Row(row, JournalLineOf(entry));
      costsUs.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
      if (row % 2 == 0) journals.Settle();
    }
    if (journals.Trouble() || journals.Kept().size() != 1) return state.SkipWithError("the rows were not written");
  }
  std::sort(costsUs.begin(), costsUs.end());
  LimitFigure(state, "us_per_row", costsUs[costsUs.size() / 2], 20);
  state.counters["us_per_row_of_99_percent"] = costsUs[costsUs.size() * 99 / 100];  // other programs are in it
}
BENCHMARK(RowOfAStep)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hylden
