// The curves of a run: a frame, what a step pays for them, and their memory. Without a screen.

#include <malloc.h>

#include <QApplication>
#include <QTableView>
#include <cmath>
#include <memory>

#include "benchmarks/Limits.h"
#include "run/qt/RowTable.h"
#include "run/qt/RunCurvePanel.h"
#include "testrun/RunCurves.h"
#include "widgets/CurveView.h"

namespace hylden {
namespace {

using std::chrono::milliseconds;

/// The power curves of a run, beside its table.
struct LongRun {
  explicit LongRun(int rows) : table({"Freq MHz"}, [](std::size_t, std::size_t) { return std::string(); }) {
    view.setModel(&table);
    for (int row = 0; row < rows; ++row) AddStep();
    panel.resize(440, 230);
    panel.SetSource({{{"Power", "Power"}},
                     [this](std::size_t) -> const RowCurves& {
                       curves = std::make_unique<RunCurves>(RunQuantity::Power, RunCurveContext{}, data.Entries());
                       return *curves;
                     },
                     [this](int row) { return curves->Add(data.Entries(), row); }},
                    view);
    panel.show();
    Draw();
  }
  void AddStep() {
    const double freq = 0.15 + 0.001 * static_cast<double>(data.Entries().size());
    const double power = 40 + std::sin(freq * 50);
    data.FillStep(data.AddStep(freq), {-10, 120, {}, power, power - 12, {}});
    table.RowChanged(static_cast<int>(data.Entries().size()));
  }
  int Rows() const { return static_cast<int>(data.Entries().size()); }
  void Draw() {
    QMetaObject::invokeMethod(panel.findChild<QTimer*>(QStringLiteral("tmrCurve")), "timeout");
    QCoreApplication::processEvents();
  }

  RunData data;
  RowTable table;
  QTableView view;
  std::unique_ptr<RunCurves> curves;
  RunCurvePanel panel;
};

void CurveFrame(benchmark::State& state) {
  LongRun run(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    run.AddStep();
    run.panel.RowChanged(run.Rows());
    run.Draw();
  }
  LimitTime(state, milliseconds(16));
}
BENCHMARK(CurveFrame)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

/// A step without any wait in it, with the curves on or off: what it takes on the average.
void StepBesideCurves(benchmark::State& state) {
  LongRun run(100000);
  const bool shown = state.range(0) != 0;
  for (auto _ : state) {
    run.AddStep();
    if (shown) {
      run.panel.SetFrequency(1);
      run.panel.SetTimeLeft(0);
      run.panel.RowChanged(run.Rows());
    }
    QCoreApplication::processEvents();
  }
  LimitTime(state, milliseconds(1));
}
BENCHMARK(StepBesideCurves)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void CurveMemory(benchmark::State& state) {
  constexpr double kMegabyte = 1 << 20;
  double megabytes = 0;
  for (auto _ : state) {
    LongRun run(1);
    while (run.Rows() < 100000) run.AddStep();
    const struct mallinfo2 before = mallinfo2();
    run.panel.Renew();
    run.Draw();
    const struct mallinfo2 after = mallinfo2();
    megabytes =
        (static_cast<double>(after.uordblks + after.hblkhd) - static_cast<double>(before.uordblks + before.hblkhd)) /
        kMegabyte;
  }
  LimitFigure(state, "memory_MB", megabytes, 40);
}
BENCHMARK(CurveMemory)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hylden

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
