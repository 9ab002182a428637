#include "bench/VirtualPowerMeter.h"

#include <gtest/gtest.h>

#include "bench/BareBench.h"

namespace hylden {
namespace {

TEST(VirtualPowerMeter, ReadsTheCouplersPortsLessTheirCoupling) {
  BareBench rig;
  rig.Drive(10, -12);
  const CalibrationReading expected = rig.bench.Path().CalibrationPort(10, -12);
  const BenchConfig& config = rig.bench.Config();
  EXPECT_NEAR(rig.PowerReading('A') + config.ForwardCoupling.At(10), expected.ForwardDbm, 0.01);
  EXPECT_NEAR(rig.PowerReading('B') + config.ReverseCoupling.At(10), expected.ReverseDbm, 0.01);
  rig.Drive(10, -30);
  const double unmodulated = rig.PowerReading('A');
  rig.Send(18, "AM 80.0 PC"), rig.Send(18, "M1");
  rig.clock.Advance(50);
  EXPECT_NEAR(rig.PowerReading('A') - unmodulated, 1.206, 0.002) << "the average of a modulated signal";
  rig.Send(18, "R0");
  rig.clock.Advance(50);
  EXPECT_NEAR(rig.PowerReading('A'), -75, 0.001);
}

TEST(VirtualPowerMeter, ByBandEachChannelSeesItsOwnCoupler) {
  BenchEquipment station = SmallStation();
  station.Sensors = PowerSensors::ByBand;
  station.SensorBandSwitchMHz = 100;
  BareBench rig(station);
  rig.Drive(100, -12);
  EXPECT_GT(rig.PowerReading('A'), -10);
  EXPECT_LT(rig.PowerReading('B'), -70);
  rig.Drive(100.001, -12);
  EXPECT_LT(rig.PowerReading('A'), -70);
  EXPECT_GT(rig.PowerReading('B'), -10);
}

TEST(VirtualPowerMeter, CommandsSharedByBothChannelsActOnTheSelectedOne) {
  BenchEquipment station = SmallStation();
  station.PowerMeter->Ch1Read = station.PowerMeter->Ch2Read = "READ";
  station.PowerMeter->Ch1Trigger = station.PowerMeter->Ch2Trigger = "";
  BenchConfig config = Noiseless();
  config.PowerMeterAnswer = "{channel}: {level} dBm";
  BareBench rig(station, config);
  rig.Drive(10, -12);
  for (auto [select, begin] : {std::pair{"CA", "A: -6."}, {"CB", "B: -21."}}) {
    rig.Send(14, select), rig.Send(14, "READ");
    const std::string answer = rig.Read(14);
    EXPECT_EQ(answer.substr(0, std::string(begin).size()), begin) << answer;
  }
}

TEST(VirtualPowerMeter, AnswersInItsDefinitionsUnits) {
  std::int32_t units = 0;
  for (const double expected : {0.001, 0.0, 106.9897, 223.607, 0.223607, 46.9897})
    EXPECT_NEAR(DbmToPowerUnits(units++, 0), expected, expected * 1e-5) << units;
}

}  // namespace
}  // namespace hylden
