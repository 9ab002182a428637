#include "calibration/LevelRules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "calibration/CableSetup.h"
#include "calibration/FrequencyPlan.h"
#include "calibration/WarbleAlarm.h"
#include "documents/CalSetupRecord.h"
#include "documents/EquipRecord.h"
#include "measure/InterpClass.h"
#include "run/ForwardSensor.h"
#include "support/TestShell.h"
#include "support/Told.h"

namespace hylden {
namespace {

TEST(NextLevelStepTest, ClosesOnTheTarget) {
  const struct {
    double level, tolerance, expected;
  } cases[] = {{117, 0.5, 3.5 / 1.5}, {100, 0.5, 10},   {105.5, 0.5, 10},    {119.9, 0.5, 0.4},
               {119.95, 0.2, 0.1},    {120, 0.5, 0.25}, {120.5, 0.5, -0.25}, {140, 0.5, -19.75}};
  for (const auto& c : cases) EXPECT_NEAR(NextLevelStep(c.level, 120, c.tolerance), c.expected, 1e-9) << c.level;
}

TEST(Tolerance, LeavesItsEdgesOut) {
  EXPECT_FALSE(InTolerance(120, 120, kToleranceDb));
  EXPECT_TRUE(InTolerance(120.01, 120, kToleranceDb));
  EXPECT_TRUE(InTolerance(120.49, 120, kToleranceDb));
  EXPECT_FALSE(InTolerance(120.5, 120, kToleranceDb));
  EXPECT_FALSE(InTolerance(std::nan(""), 120, kToleranceDb));
}

TEST(Headroom, EndsAtThePowerLimit) {
  EXPECT_NEAR(ForwardHeadroom(25, 20), 0.9691, 1e-4);
  EXPECT_LT(ForwardHeadroom(25, 30), 0);
  EXPECT_EQ(ForwardHeadroom(0, 20), -999);
  EXPECT_EQ(ForwardHeadroom(25, 0), -999);
}

TEST(ConvergenceTest, EndsAnEndlessSearch) {
  Convergence swinging, creeping, noNumber;
  int tries = 0;
  while (tries < 1000 && swinging.GoesOn(tries % 2 ? -0.25 : 0.25)) ++tries;
  EXPECT_EQ(tries, Convergence::kMostTurns);
  for (tries = 0; tries < 2 * Convergence::kMostTries && creeping.GoesOn(1e-9);) ++tries;
  EXPECT_LT(tries, Convergence::kMostTries);
  EXPECT_FALSE(noNumber.GoesOn(std::numeric_limits<double>::quiet_NaN()));
}

TEST(WarbleAlarmTest, WarblesAroundItsFrequency) {
  FakeSpeaker speaker;
  WarbleAlarm(speaker);
  ASSERT_EQ(speaker.tones.size(), 40U);
  for (std::size_t i = 0; i < 40; i += 4)
    EXPECT_EQ(std::vector<FakeSpeaker::Tone>(&speaker.tones[i], &speaker.tones[i] + 4),
              (std::vector<FakeSpeaker::Tone>{{1000, 50}, {1176, 50}, {1000, 50}, {870, 50}}));
  speaker.tones.clear();
  WarbleAlarm(speaker, 20, 50);
  EXPECT_EQ(speaker.tones, (std::vector<FakeSpeaker::Tone>{{100, 50}}));
}

TEST(TargetTest, IsTheSetupsLevelOrItsCurves) {
  TestShell t;
  InterpClass curve(t.shell);
  CalSetupRecord setup;
  setup.CalLevel = 10;
  EXPECT_NEAR(TargetDbuv(setup, curve, 5).value(), 140, 1e-6);
  setup.LimitType = LimitType::File;
  ASSERT_TRUE(curve.InitInterp(t.directory.Write("curve.lev", "1 1\r\n100 3\r\n")));
  EXPECT_NEAR(TargetDbuv(setup, curve, 10).value(), 126.0206, 1e-4);  // midway on a log scale
  EXPECT_FALSE(TargetDbuv(setup, curve, 101));
}

TEST(FrequencyPlanTest, TakesAListsOwnRange) {
  TempDir directory;
  FrequencyRequest request{StepType::List, 0, 0, 0, directory.Write("a.lst", "5\r\n10\r\n50\r\n")};
  EXPECT_EQ(PlanFrequencies(request), (std::vector<double>{5, 10, 50}));
  EXPECT_EQ(request.StartMHz, 5);
  EXPECT_EQ(request.StopMHz, 50);
  request = {StepType::List, 0, 0, 0, directory.File("none.lst")};
  EXPECT_TRUE(FailsWith(PlanFrequencies(request), "Error # 53\r"));
}

TEST(FrequencyPlanTest, FormTellsWhatIsCalibratedTheBandSwitchToo) {
  CalSetupRecord setup;
  setup.StartFreq = 1, setup.StopFreq = 300, setup.LinearStep = 1, setup.Dwell = 1;
  EquipRecord station;
  EXPECT_EQ(CalibrationPlanText(EntriesShowing(setup), setup, station), "300 frequencies");
  station.AmplifierType = AmpType::Ifi, station.IfiBandSwitch = 215;
  EXPECT_EQ(CalibrationPlanText(EntriesShowing(setup), setup, station), "301 frequencies");
  setup.StepType = StepType::List;
  EXPECT_EQ(CalibrationPlanText(EntriesShowing(setup), setup, station), "no frequency list is chosen");
  CableSetup cable;
  cable.StartFreq = 1, cable.StopFreq = 10, cable.StepType = StepType::Linear, cable.LinearStep = 1;
  EXPECT_EQ(CablePlanText(EntriesShowing(cable), cable, 0.5), "10 frequencies, about 0:00:15 a pass");
}

TEST(SensorMoves, OnlyWhereOneSensorServesBothBands) {
  EquipRecord station;
  station.AmplifierType = AmpType::Ifi, station.IfiBandSwitch = 215;
  const std::vector<double> both = {100, 215, 215.001};
  EXPECT_TRUE(SensorMoves(station, both));
  EXPECT_FALSE(SensorMoves(station, {100, 215}));
  EXPECT_FALSE(SensorMoves(station, {215.001, 300}));
  station.AmpConfiguration = AmpConfig::DualSplit;
  EXPECT_FALSE(SensorMoves(station, both));
  station.AmpConfiguration = AmpConfig::Single, station.AmplifierType = AmpType::Generic;
  EXPECT_FALSE(SensorMoves(station, both));
}

TEST(SensorPrompt, MovesTheSensorAtBandChangesOnly) {
  const struct {
    double previous, frequency;
    const char* expected;
  } cases[] = {{0, 215, "Move sensor to low freq coupler"},
               {0, 215.001, "Move sensor to high freq coupler"},
               {215, 215.001, "Move sensor(s) to high freq coupler"},
               {300, 215, "Move sensor(s) to low freq coupler"},
               {100, 215, ""},
               {300, 216, ""}};
  for (const auto& c : cases) EXPECT_EQ(SensorPrompt(c.previous, c.frequency, 215), c.expected);
}

}  // namespace
}  // namespace hylden
