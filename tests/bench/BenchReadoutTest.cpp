#include "bench/BenchReadout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bench/BareBench.h"
#include "bench/BenchTexts.h"

namespace hylden {
namespace {

TEST(BenchReadout, ProductHasNoThresholdWithoutAFrequency) {
  BareBench rig(BenchEquipment{});
  rig.bench.Connect(MeterAt::Probe);
  EXPECT_TRUE(IsMissing(ReadBench(rig.bench).Product.ThresholdDbuv)) << "without a generator";
  BenchEquipment station = SmallStation();
  station.SigGen->MinimumFreq = 0;  // where it stands after switching on
  rig.bench.Equip(station);
  rig.Send(18, "R1");
  const ProductReadout untuned = ReadBench(rig.bench).Product;
  EXPECT_FALSE(IsMissing(untuned.PeakTestLevelDbuv));
  EXPECT_TRUE(IsMissing(untuned.ThresholdDbuv));
  EXPECT_EQ(MarginText(untuned), "");
  rig.Drive(10, -12);
  EXPECT_FALSE(IsMissing(ReadBench(rig.bench).Product.ThresholdDbuv));
}

TEST(BenchReadout, InstrumentsAreNamedWithWhatTheyDo) {
  BareBench rig;
  BenchReadout readout = ReadBench(rig.bench);
  EXPECT_EQ(InstrumentText(readout.Generator), "Address 18: Source");
  EXPECT_FALSE(readout.Output.RfOn);
  EXPECT_EQ(ModulationText(readout.Output), "none");
  EXPECT_EQ(InstrumentText(readout.Meter), "Address 13: Analyser");
  EXPECT_EQ(MeterSettingText(readout), "not tuned yet, up to 130.0 dBuV");
  EXPECT_EQ(ReadingText(readout.MeterReading), "nothing yet");
  EXPECT_EQ(InstrumentText(readout.PowerMeter), "Address 14: Two heads");
  EXPECT_EQ(AmplifierText(readout), "One for all bands, not on the bus");
  rig.bench.Inject({FaultKind::Absent, BenchRole::Meter, 1});
  rig.Send(13, "TS");
  readout = ReadBench(rig.bench);
  EXPECT_EQ(InstrumentText(readout.Meter), "Address 13 does not answer: Analyser");
  EXPECT_TRUE(readout.Generator.Listens);
  rig.bench.Equip(BenchEquipment{});
  readout = ReadBench(rig.bench);
  for (const auto* instrument : {&readout.Generator, &readout.Meter, &readout.PowerMeter, &readout.IfiLow})
    EXPECT_EQ(InstrumentText(*instrument), "not on the bus");
  EXPECT_EQ(MeterSettingText(readout), "");
}

TEST(BenchReadout, FollowsTheProgramsCommands) {
  BareBench rig;
  rig.Drive(27.5, -12);
  rig.Send(13, "CF 27.5 MZ"), rig.Send(13, "RL 127.0 DB");
  rig.MeterReading();
  const double forward = rig.PowerReading('A');
  BenchReadout readout = ReadBench(rig.bench);
  EXPECT_TRUE(readout.Output.RfOn);
  EXPECT_EQ(readout.Output.FreqMHz, 27.5);
  EXPECT_EQ(readout.Output.LevelDbm, -12);
  EXPECT_EQ(MeterSettingText(readout), "27.5 MHz, up to 127.0 dBuV");
  const CalibrationReading expected = rig.bench.Path().CalibrationPort(27.5, -12);
  ASSERT_TRUE(readout.MeterReading);
  EXPECT_NEAR(readout.MeterReading->Value, expected.MeterDbuv, 0.001);
  EXPECT_EQ(readout.MeterReading->Unit, "dBuV");
  ASSERT_TRUE(readout.PowerReadings[0]);
  EXPECT_NEAR(readout.PowerReadings[0]->Value, forward, 0.001);
  EXPECT_FALSE(readout.PowerReadings[1]) << "channel 2 was not read";

  rig.Send(18, "R0");
  readout = ReadBench(rig.bench);
  EXPECT_TRUE(readout.MeterReading) << "a reading stands until the next one";
  EXPECT_TRUE(IsMissing(readout.Product.ForwardDbm));
  rig.bench.Equip(SmallStation());
  EXPECT_FALSE(ReadBench(rig.bench).MeterReading) << "another meter has read nothing";
}

TEST(BenchReadout, ModulationNamesItsKindAndSettings) {
  const std::pair<std::vector<const char*>, const char*> rows[] = {
      {{"AM 80.0 PC", "AF 1.0 KZ", "M1"}, "AM 80 %, 1 kHz"},
      {{"AM 30.5 PC", "M1"}, "AM 30.5 %"},
      {{"FM 10.0 KZ", "M2"}, "FM 10 kHz deviation"},
      {{"PF 0.2 KZ", "PW 2.5 MS", "M3"}, "Pulse 2.5 ms, 0.2 kHz"},
      {{"AM 80.0 PC", "AF 1.0 KZ", "M1", "M0"}, "none"}};
  for (const auto& [commands, expected] : rows) {
    BareBench rig;
    for (const char* command : commands) rig.Send(18, command);
    EXPECT_EQ(rig.bench.Bus().UnknownCount(), 0);
    EXPECT_EQ(ModulationText(ReadBench(rig.bench).Output), expected);
  }
}

TEST(BenchReadout, ReadingHasItsUnit) {
  const std::pair<std::optional<BenchReading>, const char*> rows[] = {{std::nullopt, "nothing yet"},
                                                                      {BenchReading{72.6686, "dBuV"}, "72.67 dBuV"},
                                                                      {BenchReading{-3.456, "dBm"}, "-3.46 dBm"},
                                                                      {BenchReading{1.67377, "V", true}, "1.674 V"},
                                                                      {BenchReading{3.2e-7, "W", true}, "3.2e-07 W"}};
  for (const auto& [reading, expected] : rows) EXPECT_EQ(ReadingText(reading), expected);
}

TEST(BenchReadout, ReadingsAreInTheUnitsOfTheDefinitions) {
  BenchEquipment station = SmallStation();
  station.Meter->Units = static_cast<std::int32_t>(Conversions::MeterUnits::Volts);
  station.PowerMeter->Units = static_cast<std::int32_t>(Conversions::PowerUnits::Watts);
  BareBench rig(station);
  rig.MeterReading();
  rig.PowerReading('B');
  const BenchReadout readout = ReadBench(rig.bench);
  ASSERT_TRUE(readout.MeterReading && readout.PowerReadings[1]);
  EXPECT_TRUE(readout.MeterReading->Unit == "V" && readout.MeterReading->Linear);
  EXPECT_EQ(readout.PowerReadings[1]->Unit, "W");
}

TEST(BenchReadout, IfiPairShowsTheBandThatAmplifies) {
  BenchEquipment station = SmallStation();
  station.IfiAmplifier = true;
  BareBench rig(station);
  EXPECT_EQ(AmplifierText(ReadBench(rig.bench)), "IFI pair, no band selected");
  rig.Send(10, "9\r\n"), rig.Send(9, "ZA\r\n"), rig.Send(9, "B1\r\n");
  EXPECT_EQ(AmplifierText(ReadBench(rig.bench)), "Address 10: IFI low band");
  rig.Send(9, "ON\r\n"), rig.Send(9, "B2\r\n");
  EXPECT_EQ(AmplifierText(ReadBench(rig.bench)), "Address 9: IFI high band");
  rig.bench.SetAmplifierProtection(true);
  EXPECT_EQ(AmplifierText(ReadBench(rig.bench)), "IN PROTECTION; Address 9: IFI high band");
}

/// A product that is disturbed from 140 dBuV below 50 MHz, from 150 dBuV above.
BenchConfig Susceptible() {
  BenchConfig config = Noiseless();
  config.Susceptibility = FrequencyTable{{1, 140}, {50, 140}, {50, 150}};
  return config;
}

/// The generator level that puts this test level on the product, dBm.
double LevelFor(const BareBench& rig, double freqMHz, double testLevelDbuv) {
  double low = -60, high = 0;
  for (int i = 0; i < 50; ++i) {
    const double middle = (low + high) / 2;
    (rig.bench.Path().CalibrationPort(freqMHz, middle).TestLevelDbuv < testLevelDbuv ? low : high) = middle;
  }
  return high;
}

TEST(BenchReadout, ProductIsJudgedByTheCurveAtThePresentFrequencyAndByItsPeaks) {
  const struct {
    MeterAt place;
    const char* then;
    double freqMHz, testLevelDbuv;
    ProductState state;
    double thresholdDbuv;
    const char* margin;
  } rows[] = {{MeterAt::Probe, "M0", 10, 137, ProductState::Passes, 140, "3.0 dB below the threshold"},
              {MeterAt::Probe, "M0", 10, 139.9, ProductState::Passes, 140, "0.1 dB below the threshold"},
              {MeterAt::Probe, "M0", 10, 140.1, ProductState::Disturbed, 140, "0.1 dB above the threshold"},
              {MeterAt::Probe, "M1", 10, 136, ProductState::Disturbed, 140, "1.0 dB above the threshold"},
              {MeterAt::Probe, "M0", 60, 141, ProductState::Passes, 150, "9.0 dB below the threshold"},
              {MeterAt::Probe, "R0", 10, 145, ProductState::WithoutRf, 140, ""},
              {MeterAt::Port, "M0", 10, 145, ProductState::NotConnected, kNoValue, ""},
              {MeterAt::Generator, "M0", 10, 145, ProductState::WithoutRf, 140, ""}};
  for (const auto& c : rows) {
    SCOPED_TRACE(testing::Message() << c.then << " " << c.testLevelDbuv);
    BareBench rig(SmallStation(), Susceptible());
    rig.bench.Connect(c.place);
    rig.Drive(c.freqMHz, LevelFor(rig, c.freqMHz, c.testLevelDbuv));
    rig.Send(18, "AM 80.0 PC"), rig.Send(18, c.then);
    const ProductReadout product = ReadBench(rig.bench).Product;
    EXPECT_EQ(product.State, c.state);
    EXPECT_EQ(product.ThresholdDbuv, c.thresholdDbuv);
    EXPECT_EQ(MarginText(product), c.margin);
    EXPECT_EQ(rig.bench.ProductDisturbed(), c.state == ProductState::Disturbed);
    EXPECT_EQ(IsMissing(product.InducedDbua), c.place != MeterAt::Probe || c.then == std::string("R0"));
  }
}

TEST(BenchReadout, KeepsWhereTheProductWasDisturbedLast) {
  BareBench rig(SmallStation(), Susceptible());
  rig.bench.Connect(MeterAt::Probe);
  EXPECT_FALSE(ReadBench(rig.bench).Product.LastDisturbance);
  rig.Drive(10, LevelFor(rig, 10, 141));
  rig.Drive(60, LevelFor(rig, 60, 141));
  const auto last = ReadBench(rig.bench).Product.LastDisturbance;
  ASSERT_TRUE(last);
  EXPECT_EQ(last->FreqMHz, 10);
  EXPECT_NEAR(last->PeakTestLevelDbuv, 141, 0.01);
  rig.bench.Connect(MeterAt::Probe);
  EXPECT_FALSE(ReadBench(rig.bench).Product.LastDisturbance) << "the next run begins afresh";
}

}  // namespace
}  // namespace hylden
