// Calibrations on the simulated bench, judged by its physics: the cable, the level, the test that replays the record.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "e2e/DemoRuns.h"

namespace hylden {
namespace {

constexpr double kTargetDbuv = 140;  // 10 V
constexpr double kNoiseDb = 0.01;
/// What a reading and the measured cable may be off together.
constexpr double kReadingDb = 0.1;

void LittleNoise(BenchConfig& config) {
  config.NoiseDb = kNoiseDb;
}

Amplifier AmplifierAt(const DemoRuns& station, double frequencyMHz) {
  const EquipRecord& equipment = station.documents.equip.Record;
  if (!equipment.HasIfiAmplifier()) return Amplifier::Generic;
  return frequencyMHz <= equipment.IfiBandSwitch ? Amplifier::IfiLow : Amplifier::IfiHigh;
}

/// Watches that the level at the port stands in the tolerance band whenever a point is recorded.
void WatchBand(DemoRuns& station, int& recorded) {
  station.calibrationDisplay.onStep = [&](int) {
    ++recorded;
    const BenchState& state = station.bench.State();
    EXPECT_TRUE(state.Generator.RfOn);
    EXPECT_GT(state.TestLevelDbuv, kTargetDbuv - kReadingDb) << state.Generator.FreqMHz << " MHz";
    EXPECT_LT(state.TestLevelDbuv, kTargetDbuv + kToleranceDb + kReadingDb) << state.Generator.FreqMHz << " MHz";
  };
}

/// The recorded generator level brings the port into the tolerance band, and the powers are those seen there.
void ExpectTrueRecord(const DemoRuns& station) {
  for (const CalRow& row : station.level.Rows()) {
    const CalibrationReading truth =
        station.bench.Path().CalibrationPort(row.Freq, row.SigGenLevel, AmplifierAt(station, row.Freq));
    EXPECT_GT(truth.TestLevelDbuv, kTargetDbuv) << row.Freq << " MHz";
    EXPECT_LT(truth.TestLevelDbuv, kTargetDbuv + kToleranceDb) << row.Freq << " MHz";
    EXPECT_NEAR(truth.ForwardDbm, row.FwdPwr.value_or(kNoValue), 0.25) << row.Freq << " MHz";
    if (row.RevPwr) {
      EXPECT_NEAR(truth.ReverseDbm, *row.RevPwr, 0.25) << row.Freq << " MHz";
    }
  }
}

/// Replays the record by one of the demo tests; every step ends at the calibrated level or barely above it.
void ExpectReplayed(DemoRuns& station, const std::string& testFile, const std::string& infoFile) {
  SCOPED_TRACE(testFile);
  ASSERT_TRUE(station.documents.testSetup.LoadDef(testFile));
  station.Test().CalInfoFile = infoFile;
  ASSERT_TRUE(station.documents.calInfo.LoadDef(infoFile));
  station.Test().LogStep = 2;
  station.Test().ModType = Modulation::None;
  station.Test().ConstPeak = station.Test().ModOffBetweenFreqs = false;
  int levelled = 0;
  station.display.onRow = [&](int row) {
    if (!station.IsComplete(row)) return;  // the step only begins
    ++levelled;
    const BenchState& state = station.bench.State();
    EXPECT_GT(state.TestLevelDbuv, kTargetDbuv) << state.Generator.FreqMHz << " MHz";
    EXPECT_LT(state.TestLevelDbuv, kTargetDbuv + 0.9) << state.Generator.FreqMHz << " MHz";
  };
  station.Run();
  EXPECT_EQ(station.engine.Outcome(), RunOutcome::Finished) << station.dialogs.LastText();
  EXPECT_EQ(levelled, static_cast<int>(station.engine.Steps().size()));
  EXPECT_GT(levelled, 100);
}

TEST(CalibrationLoop, CableThenLevelThenTestAgreeWithThePhysics) {
  DemoRuns station("station.eqp", LittleNoise);
  const TempDir& files = station.directory;

  CableSetup& setup = station.cable.Setup;
  setup.StartFreq = 0.15, setup.StopFreq = 230, setup.StepType = StepType::Log, setup.LogStep = 3, setup.Level = -10;
  ASSERT_TRUE(station.cable.BuildPlan());
  station.DirectPass();
  station.InsertPass();
  station.dialogs.AnswerSave(files.File("measured.los"));
  ASSERT_TRUE(station.cable.SaveFile()) << station.dialogs.LastText();
  ASSERT_GT(station.cable.Points().size(), 200U);
  for (const CablePoint& point : station.cable.Points())
    EXPECT_NEAR(point.Loss, station.bench.Config().CableUnderTest.At(point.Freq), 0.1) << point.Freq << " MHz";

  station.documents.equip.Record.CableLossFile = files.File("measured.los");
  station.bench.Connect(MeterAt::Port);
  int recorded = 0;
  WatchBand(station, recorded);
  station.Calibrate(files.File("level.cal"));
  EXPECT_EQ(station.level.Outcome(), RunOutcome::Finished) << station.dialogs.LastText();
  EXPECT_EQ(recorded, 739);
  EXPECT_EQ(station.level.Rows().size(), 739U);
  ExpectTrueRecord(station);
  EXPECT_EQ(files.Read("level.hyinfo").substr(0, 23), "10 V, 0.15 to 230 MHz\r\n");

  for (const char* test : {"substitution-am.tst", "forward-power-constant-peak.tst", "net-power-fm.tst"})
    ExpectReplayed(station, test, files.File("level.hyinfo"));
  station.ExpectAtRest();
}

TEST(CalibrationLoop, ACompressingAmplifierEndsTheRunAndKeepsThePoints) {
  DemoRuns station("station.eqp", [](BenchConfig& config) { config.SaturationDbm = 34; });
  station.Setup().StartFreq = 1, station.Setup().LogStep = 5, station.Setup().LimitFwdPwr = 0;
  const std::string record = station.directory.File("partial.cal");
  station.Calibrate(record);
  EXPECT_EQ(station.level.Outcome(), RunOutcome::EndedEarly);
  EXPECT_TRUE(station.dialogs.WasShown("Level requested is higher than defined in the calibrations setup"));
  EXPECT_GT(station.level.Rows().size(), 10U);
  EXPECT_LT(station.level.Rows().size(), station.level.Frequencies().size());
  EXPECT_EQ(CompleteRows(station.level.Rows()).size(), station.level.Rows().size());
  EXPECT_TRUE(station.directory.Exists("partial.cal"));
  station.ExpectAtRest();
}

TEST(CalibrationLoop, AGeneratorThatCantSwitchOffRestsAtItsMinimum) {
  for (const bool limited : {false, true}) {
    DemoRuns station("older-generator.eqp", LittleNoise);
    station.Setup().StartFreq = 20, station.Setup().StopFreq = 22;
    station.Setup().LimitFwdPwr = limited ? 1 : 0, station.Setup().FwdPwrLimit = 0.5F;  // 10 V take more
    double highestAtMessage = kNoValue;
    station.dialogs.onShow = [&](const Message&) {
      highestAtMessage = std::max(highestAtMessage, station.bench.State().TestLevelDbuv);
    };
    station.Calibrate();
    EXPECT_EQ(station.level.Outcome(), limited ? RunOutcome::EndedEarly : RunOutcome::Finished);
    EXPECT_EQ(station.dialogs.messages.size(), 1U);
    EXPECT_LT(highestAtMessage, 40);
    EXPECT_LT(station.bench.State().TestLevelDbuv, 40);
  }
}

TEST(CalibrationLoop, BothIfiBandsAreCalibratedWithTheSensorInTheRightPlace) {
  for (const AmpConfig sensors : {AmpConfig::DualFwdRev, AmpConfig::DualSplit}) {
    DemoRuns station("ifi-station.eqp", LittleNoise);
    station.documents.equip.Record.AmpConfiguration = sensors;
    station.station.EquipBench();
    station.Setup().StartFreq = 190;
    station.Setup().RecordRevPwr = sensors == AmpConfig::DualFwdRev ? 1 : 0;
    int recorded = 0;
    WatchBand(station, recorded);
    station.Calibrate();
    EXPECT_EQ(station.level.Outcome(), RunOutcome::Finished) << station.dialogs.LastText();
    EXPECT_EQ(recorded, static_cast<int>(station.level.Frequencies().size()));
    EXPECT_THAT(station.level.Frequencies(), testing::IsSupersetOf({215.0, 215.000001}));
    ExpectTrueRecord(station);
    for (const char* prompt : {"Move sensor to low freq coupler", "Move sensor(s) to high freq coupler"})
      EXPECT_EQ(station.dialogs.WasShown(prompt), sensors == AmpConfig::DualFwdRev) << prompt;
    station.ExpectAtRest();
  }
}

}  // namespace
}  // namespace hylden
