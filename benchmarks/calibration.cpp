#include <cmath>
#include <string>

#include "benchmarks/BenchRun.h"
#include "calibration/LevelCalibration.h"
#include "run/RunDisplay.h"

namespace hylden {
namespace {

/// The demo station's calibration, forward and reverse power recorded, at so many points.
class CalibrationRun {
 public:
  explicit CalibrationRun(int points) : points_(static_cast<std::size_t>(points)) {
    CalSetup& calSetup = station_.documents.calSetup;
    if (!station_.loaded || !calSetup.LoadDef("cdn-10v.csu")) return;
    CalSetupRecord& setup = calSetup.Record;
    // The last step is half a one: rounding adds no point.
    setup.LogStep = 100 * std::expm1(std::log(setup.StopFreq / setup.StartFreq) / (points - 1.5));
    ready_ = setup.RecordsForward() && setup.RecordsReverse() && calibration_.Prepare() &&
             calibration_.Frequencies().size() == points_;
  }

  bool Ready() const { return ready_; }
  /// Whether every point was calibrated after its whole dwell, the last one truly.
  bool Run() {
    const std::int64_t start = station_.clock.TickMs();
    calibration_.Run();
    const double leastMs = calibration_.Setup().Dwell * 1000 * static_cast<double>(points_);
    if (calibration_.Outcome() != RunOutcome::Finished || CompleteRows(calibration_.Rows()).size() != points_ ||
        static_cast<double>(station_.clock.TickMs() - start) < leastMs)
      return false;
    const CalRow& last = calibration_.Rows().back();
    const CalibrationReading truth = station_.bench.Path().CalibrationPort(last.Freq, last.SigGenLevel);
    return std::abs(truth.TestLevelDbuv - 140.25) < 0.25 && std::abs(truth.ReverseDbm - last.RevPwr.value_or(0)) < 0.25;
  }

 private:
  std::size_t points_;
  DemoStation station_;
  RunDisplay display_;
  LevelCalibration calibration_{station_.machine.shell, station_.instruments, station_.documents, display_};
  bool ready_ = false;
};

void CalibrationOfPoints(benchmark::State& state) {
  MeasureRun<CalibrationRun>(state, "point", 200);
}
BENCHMARK(CalibrationOfPoints)->Arg(100)->Arg(1000)->Arg(10000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hylden
