#include "bench/VirtualSigGen.h"

#include <gtest/gtest.h>

#include "bench/BareBench.h"

namespace hylden {
namespace {

const GeneratorState& Output(const BareBench& rig) {
  return rig.bench.State().Generator;
}

TEST(VirtualSigGen, TakesEveryCommandOfItsDefinition) {
  BareBench rig;
  for (const char* command : {"FR 12.5 MZ", "AP -20.0 DM", "AM 80.0 PC", "PF 0.2 KZ", "PW 0.5 MS", "FM 10.0 KZ", "R1"})
    EXPECT_TRUE(rig.Send(18, command));
  EXPECT_TRUE(Output(rig).RfOn);
  EXPECT_EQ(Output(rig).FreqMHz, 12.5);
  EXPECT_EQ(Output(rig).LevelDbm, -20);
  EXPECT_EQ(Output(rig).AmDepthPercent, 80);
  EXPECT_EQ(Output(rig).FmDeviationKHz, 10);
  EXPECT_EQ(Output(rig).PulseFreqKHz, 0.2);
  EXPECT_EQ(Output(rig).PulseWidthMs, 0.5);
  EXPECT_EQ(Output(rig).Modulation, BenchModulation::None);
  for (auto [command, expected] : {std::pair{"M1", BenchModulation::Am},
                                   {"M2", BenchModulation::Fm},
                                   {"M3", BenchModulation::Pulse},
                                   {"M0", BenchModulation::None}}) {
    rig.Send(18, command);
    EXPECT_EQ(Output(rig).Modulation, expected) << command;
  }
  rig.Send(18, "R0");
  EXPECT_FALSE(Output(rig).RfOn);
  EXPECT_EQ(rig.bench.Bus().UnknownCount(), 0);
}

TEST(VirtualSigGen, IgnoresAndCountsWhatItDoesNotUnderstand) {
  BenchEquipment station = SmallStation();
  station.SigGen->EndOfString = 2;
  BareBench rig(station);
  for (const char* command : {"FR 10.0 MZ", "FR 10.0 MZ\r", "FR 10.0\r\n", "fr 10.0 MZ\r\n", "FR ten MZ\r\n",
                              "FR 10.0 5 MZ\r\n", "R1 \r\n", "R11\r\n"})
    EXPECT_TRUE(rig.Send(18, command)) << "an instrument that does not understand still listens: " << command;
  EXPECT_EQ(rig.bench.Bus().UnknownCount(), 8);
  EXPECT_EQ(rig.bench.Bus().UnknownCommands().front().Text, "FR 10.0 MZ");
  EXPECT_NE(Output(rig).FreqMHz, 10);
  rig.Send(18, "\r\n");
  EXPECT_EQ(rig.bench.Bus().UnknownCount(), 8) << "a bare terminator is no unknown command";
}

TEST(VirtualSigGen, TakesNoValueOutsideItsLimits) {
  BareBench rig;
  rig.Drive(10, -20);
  for (const char* command : {"FR 1000.1 MZ", "FR 0.05 MZ", "AP 13.1 DM", "AP -141.0 DM", "AM 101.0 PC"})
    rig.Send(18, command);
  EXPECT_EQ(Output(rig).FreqMHz, 10);
  EXPECT_EQ(Output(rig).LevelDbm, -20);
  EXPECT_EQ(Output(rig).AmDepthPercent, 0);
}

TEST(VirtualSigGen, WithoutAnRfOnCommandItsOutputIsAlwaysOnAtTheMinimumLevel) {
  BenchEquipment station = SmallStation();
  station.SigGen->RfOn = station.SigGen->RfOff = "";
  BareBench rig(station);
  EXPECT_TRUE(Output(rig).RfOn);
  EXPECT_EQ(Output(rig).LevelDbm, -140);
  EXPECT_LT(rig.bench.State().TestLevelDbuv, 20);
}

TEST(VirtualSigGen, OneOnCommandForAllKindsSwitchesOnTheKindSetUpLast) {
  BenchEquipment station = SmallStation();
  station.SigGen->AmModOn = station.SigGen->FmModOn = station.SigGen->PulseModOn = "MOD ON";
  BareBench rig(station);
  rig.Send(18, "FM 10.0 KZ"), rig.Send(18, "MOD ON");
  EXPECT_EQ(Output(rig).Modulation, BenchModulation::Fm);
  rig.Send(18, "AM 80.0 PC"), rig.Send(18, "MOD ON");
  EXPECT_EQ(Output(rig).Modulation, BenchModulation::Am);
  station.SigGen->AmModOn = "";
  BareBench older(station);
  older.Send(18, "AM 80.0 PC");
  EXPECT_EQ(Output(older).Modulation, BenchModulation::Am) << "without a command of its own a depth switches it on";
  older.Drive(10, -30);
  EXPECT_NEAR(older.bench.State().PeakTestLevelDbuv - older.bench.State().TestLevelDbuv, 5.105, 0.01);
  older.Send(18, "AM 0.0 PC");
  EXPECT_EQ(older.bench.State().PeakTestLevelDbuv, older.bench.State().TestLevelDbuv);
}

}  // namespace
}  // namespace hylden
