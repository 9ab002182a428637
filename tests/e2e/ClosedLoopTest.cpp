#include <gtest/gtest.h>

#include <string>

#include "e2e/DemoRuns.h"
#include "testrun/LevelTargets.h"

namespace hylden {
namespace {

/// What may be added to the target at any moment while RF is on.
constexpr double kMostOvershootDb = 0.6;

struct DemoTest {
  const char* file;
  const char* equipment;
  double below, above;  ///< band around the target in which a levelled step has to end, dB
  bool limited;         ///< the induced current may hold the level down
  const char* name = "";
  void (*adjust)(BenchConfig&) = nullptr;  ///< what is different on the bench
  void (*arrange)(DemoRuns&) = [](DemoRuns&) {};
};

/// Ordinary diode sensors: at the start of a run both show nothing but their own noise.
void OrdinarySensors(BenchConfig& config) {
  config.PowerMeterFloorDbm = -35;
}

/// The reading at the start of the run is far below what the meter can be ranged to.
void DeafMeter(DemoRuns& station) {
  MeterDefinition definition = station.instruments.meter.Definition();
  definition.MinimumLevel = 40;
  station.instruments.meter.PutDefinition(definition);
}

/// A generator without an RF-off command rests at its minimum, far below anything that matters.
bool IsAtRest(const BenchState& state) {
  constexpr double kRestDbuv = 40;
  return state.TestLevelDbuv < kRestDbuv;
}

class ClosedLoop : public testing::TestWithParam<DemoTest> {};

TEST_P(ClosedLoop, ProductSeesTheWantedLevelAndNeverMore) {
  DemoRuns station(GetParam().equipment, GetParam().adjust);
  station.Load(GetParam().file);
  GetParam().arrange(station);
  const bool constantPeak = station.Test().ConstPeak;

  const auto levelOf = [constantPeak](const BenchState& state) {
    return constantPeak ? state.PeakTestLevelDbuv : state.TestLevelDbuv;
  };

  int moments = 0;
  station.bench.OnChange([&](const BenchState& state) {
    if (!state.Generator.RfOn || IsAtRest(state)) return;
    ++moments;
    EXPECT_LE(levelOf(state), station.TargetDbuv(state.Generator.FreqMHz) + kMostOvershootDb)
        << "at " << state.Generator.FreqMHz << " MHz";
  });

  int levelled = 0;
  station.display.onRow = [&](int row) {
    if (!station.IsComplete(row)) return;  // the step only begins
    ++levelled;
    const BenchState& state = station.bench.State();
    const double level = levelOf(state), target = station.TargetDbuv(state.Generator.FreqMHz);
    const double limit =
        InducedCurrentLimit(station.Test(), static_cast<float>(target)).value_or(1e9) - 0.3;  // noise of the probe
    const bool held = GetParam().limited && state.InducedDbua >= limit;
    EXPECT_TRUE(state.Generator.RfOn);
    if (!held) {
      EXPECT_GE(level, target - GetParam().below) << "at " << state.Generator.FreqMHz << " MHz";
    }
    EXPECT_LE(level, target + GetParam().above) << "at " << state.Generator.FreqMHz << " MHz";
  };

  station.Run();

  EXPECT_EQ(station.engine.Outcome(), RunOutcome::Finished) << station.dialogs.LastText();
  EXPECT_EQ(levelled, static_cast<int>(station.engine.Steps().size()));
  EXPECT_EQ(station.Rows().size(), station.engine.Steps().size());
  EXPECT_GT(moments, levelled);
  EXPECT_TRUE(!station.RfIsOn() || IsAtRest(station.bench.State()));
  station.ExpectAtRest();
}

INSTANTIATE_TEST_SUITE_P(DemoStation, ClosedLoop,
                         testing::Values(DemoTest{"substitution-am.tst", "station.eqp", 0.1, 0.5, false},
                                         DemoTest{"forward-power-constant-peak.tst", "station.eqp", 0.3, 0.6, false},
                                         DemoTest{"net-power-fm.tst", "station.eqp", 0.3, 0.6, false},
                                         DemoTest{"probe-limited-pulse.tst", "station.eqp", 0.3, 0.6, true},
                                         DemoTest{"sweep-and-list.tst", "station.eqp", 0.1, 0.5, false},
                                         DemoTest{"net-power-fm.tst", "station.eqp", 0.3, 0.6, false,
                                                  "ordinary_sensors_", OrdinarySensors},
                                         DemoTest{"forward-power-constant-peak.tst", "station.eqp", 0.3, 0.6, false,
                                                  "ordinary_sensors_", OrdinarySensors},
                                         DemoTest{"probe-limited-pulse.tst", "station.eqp", 0.3, 0.6, true,
                                                  "deaf_meter_", nullptr, DeafMeter},
                                         DemoTest{"substitution-am.tst", "older-generator.eqp", 0.1, 0.5, false},
                                         DemoTest{"ifi-band-change.tst", "ifi-station.eqp", 0.1, 0.5, false}),
                         [](const testing::TestParamInfo<DemoTest>& demo) {
                           std::string name =
                               std::string(demo.param.name) + demo.param.equipment + "_" + demo.param.file;
                           for (char& c : name)
                             if (c == '-' || c == '.') c = '_';
                           return name;
                         });

TEST(OrdinarySensorsTest, NetPowerFinishesWhateverTheNoise) {
  for (int seed = 1; seed <= 20; ++seed) {
    SCOPED_TRACE(seed);
    DemoRuns station("station.eqp", [seed](BenchConfig& config) {
      OrdinarySensors(config);
      config.Seed = seed;
    });
    station.Load("net-power-fm.tst");
    station.Test().LogStep = 50;
    station.Run();
    EXPECT_EQ(station.engine.Outcome(), RunOutcome::Finished) << station.dialogs.LastText();
  }
}

}  // namespace
}  // namespace hylden
