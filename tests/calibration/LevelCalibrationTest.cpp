// How a level calibration finds and records its levels.

#include "calibration/LevelCalibration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "calibration/CalibrationRuns.h"

namespace hylden {
namespace {

using testing::ElementsAre;

class LevelCalibrationTest : public testing::Test {
 protected:
  CalibrationRuns rig;
};

TEST_F(LevelCalibrationTest, RecordsAPointAtTheMiddleOfTheBand) {
  rig.setup.RecordFwdPwr = rig.setup.RecordRevPwr = 1;
  rig.RunWithLevels({120.1, 120.25, 120.4});
  EXPECT_EQ(rig.level.Outcome(), RunOutcome::Finished);
  // -10 dBm, -9.85, -9.85: sent in tenths, which the sensors see.
  EXPECT_THAT(rig.Rows(), ElementsAre("1.0,-9.850,120.00,40.15,30.15,", "2.0,-9.850,120.00,40.10,30.10,",
                                      "4.0,-10.000,120.00,39.95,29.95,"));
  EXPECT_THAT(rig.display.done, ElementsAre(1, 2, 3));
  EXPECT_EQ(rig.display.rows, 3);
  EXPECT_EQ(rig.display.plan.Steps, 3);
  EXPECT_EQ(rig.display.Now(Readout::CableLoss), 1);
  EXPECT_NEAR(rig.display.Now(Readout::ForwardPower), 40.1, 1e-3);
  EXPECT_NEAR(rig.display.Now(Readout::TestLevel), 120.4, 1e-3);
  EXPECT_GT(rig.display.Now(Readout::Elapsed), 3 * 0.5 / 60);
  EXPECT_EQ(rig.display.Now(Readout::Remaining), 0);
  EXPECT_THAT(rig.display.phases, ElementsAre(RunPhase::BringingUp, RunPhase::Running, RunPhase::TakingDown,
                                              RunPhase::Asking, RunPhase::Ready));
  EXPECT_EQ(rig.level.Title(), "CDI Calibration: 1 V");
}

TEST_F(LevelCalibrationTest, ChangesALevelOutsideTheBandByTheRule) {
  rig.setup.StopFreq = 1.5;
  rig.setup.LogStep = 200;
  rig.RunWithLevels({119.9, 120.6, 117, 100, 120.25, 120.25});
  // +0.4, -0.35, +2.333, +10
  const std::vector<double> expected = {-10, -9.6, -9.95, -7.61667, 2.38333, 2.38333};
  EXPECT_THAT(rig.display.All(Readout::SigGenLevel), testing::Pointwise(testing::DoubleNear(1e-4), expected));
  EXPECT_THAT(rig.Rows(), ElementsAre("1.0,2.383,120.00,na,na,", "1.5,2.383,120.00,na,na,"));
}

TEST_F(LevelCalibrationTest, HoldsRisingStepsToTheLargestOne) {
  rig.setup.MaxStep = 1;
  rig.RunWithLevels({117, 125, 120.25, 120.25, 120.25});
  const std::vector<double> levels = rig.display.All(Readout::SigGenLevel);
  EXPECT_THAT(std::vector<double>(levels.begin(), levels.begin() + 3), ElementsAre(-10, -9, -13.75));
}

TEST_F(LevelCalibrationTest, FollowsThePhysics) {
  rig.portDb = 131.9;
  rig.setup.InitLevel = -40;
  rig.setup.CouplingMethod = CouplingMethod::UserDefined;
  rig.setup.UserDefinedFactor = 3.1F;
  rig.Run();
  EXPECT_EQ(rig.level.Outcome(), RunOutcome::Finished);
  // 120.25 = level + 131.9 + 1 + 3.1
  for (const CalRow& row : rig.level.Rows()) EXPECT_NEAR(row.SigGenLevel, -15.75, 0.051) << row.Freq;
  // The reference level is the reading expected: 120 - 1 - 3.1, and 2 dB of margin.
  EXPECT_THAT(rig.Sent(13), testing::Contains("RL 117.9 DB"));
}

TEST_F(LevelCalibrationTest, FollowsTheLevelCurve) {
  rig.setup.LimitType = LimitType::File;
  rig.setup.LimitFile = rig.t.directory.Write("curve.lev", "1 1\r\n4 3\r\n");
  rig.Run();
  std::vector<std::string> targets;
  for (const CalRow& row : rig.level.Rows()) targets.push_back(CellsOf(row)[2]);
  EXPECT_THAT(targets, ElementsAre("120.00", "126.02", "129.54"));
}

struct EndCase {
  void (*arrange)(CalibrationRuns&);
  const char* text;
  std::size_t rows;
};

TEST_F(LevelCalibrationTest, EndsWithItsMessageRfOffAndThePointsKept) {
  const EndCase cases[] = {
      // 40 dBm are 10 W, 43 dBm 20 W
      {[](auto& r) { r.setup.LimitFwdPwr = 1, r.setup.FwdPwrLimit = 9.9F; }, "Forward power limit exceeded", 0},
      {[](auto& r) {
         r.setup.LimitFwdPwr = 1, r.setup.FwdPwrLimit = 15, r.levels = {120.25, 120.25}, r.gainErrorDb[4] = 3;
       },
       "Forward power limit exceeded", 2},
      {[](auto& r) {
         r.setup.MaxLevel = 100, r.levels = {120.25, 120.25}, r.portDb = 90;
       },
       "Level requested outside of range of instrument", 2},
      {[](auto& r) { r.levels = {120.25}, Redefine(r.meter, [](auto& d) { d.MaximumFreq = 1.5; }); },
       "Frequency requested exceeds meter's capability. ", 1},
      // 12.5 W are 0.969 dB above 10 W
      {[](auto& r) {
         r.setup.LimitFwdPwr = 1, r.setup.FwdPwrLimit = 12.5F, r.levels = {120.25, 120.5 - 0.98 * 1.5};
       },
       "Not able to increase power the necessary amount, check setup", 1},
      {[](auto& r) {
         r.levels = {120.25, 120.25}, r.portDb = 100;
       },
       "Level requested is higher than defined in the calibrations setup", 2},
      {[](auto& r) {
         r.levels = {120.25, 142};
       },
       "The level is above the meter's maximum level, check setup", 1},
      // a coarse generator: 118.7 or 120.7 dBuV
      {[](auto& r) { r.stepDbm = 2, r.portDb = 125.7; },
       "The level does not settle within the tolerance band, check setup", 0},
      {[](auto& r) {
         r.setup.RecordFwdPwr = 1, r.levels = {120.25}, r.bus.Answers(7, {"40", "9.91E+37"});
       },
       "The power meter's answer is no power:\r\n\"9.91E+37\"", 1},
      {[](auto& r) { r.setup.MaxLevel = 100, r.setup.InitLevel = 13, r.levels = {120.1}; },
       "The level found is above the signal generator's maximum level, check setup", 0},
      {[](auto& r) { r.setup.RecordRevPwr = 1, r.equipment.AmpConfiguration = AmpConfig::Single; },
       "Equipment file says power meter not configured for reverse power readings.", 1},
  };
  for (const EndCase& c : cases) {
    SCOPED_TRACE(c.text);
    CalibrationRuns ending;
    c.arrange(ending);
    ending.Run();
    EXPECT_EQ(ending.level.Outcome(), RunOutcome::EndedEarly);
    Strings shown{c.text};
    if (c.rows > 0) shown.push_back("Would you like to save the calibration data?");
    EXPECT_EQ(ending.t.dialogs.Texts(), shown);
    EXPECT_FALSE(ending.rfOnAtMessage);
    EXPECT_EQ(ending.Rows().size(), c.rows);
  }
}

TEST_F(LevelCalibrationTest, TakesAStepWithinTheHeadroom) {
  rig.setup.LimitFwdPwr = 1;
  rig.setup.FwdPwrLimit = 12.5F;
  rig.RunWithLevels({120 + 0.5 - 0.9 * 1.5, 120.25, 120.25, 120.25});
  EXPECT_THAT(rig.Sent(18), testing::Contains("POW -9.1 DBM"));
  EXPECT_EQ(rig.level.Outcome(), RunOutcome::Finished);
}

TEST_F(LevelCalibrationTest, AsksAtADwellOfZeroAndEndsAtEscape) {
  rig.setup.Dwell = 0;
  rig.levels = {118, 120.25};
  for (const auto answer : {MessageAnswer::Ok, MessageAnswer::Ok, MessageAnswer::Cancel, MessageAnswer::No})
    rig.t.dialogs.Answer(answer);
  rig.Run();
  EXPECT_EQ(rig.Shown("Press Enter to continue, Escape to halt"), 3);
  EXPECT_EQ(rig.Rows().size(), 1U);
  EXPECT_FALSE(rig.rfOn);
}

TEST_F(LevelCalibrationTest, HaltDuringAReadingRecordsNothingMoreAndIsSpent) {
  for (const double level : {110.0, 120.25}) {
    SCOPED_TRACE(level);  // below the tolerance band and within
    rig.levels = {120.25, level};
    rig.AtRead(2, [&] { rig.t.shell.delay.RequestHalt(); });
    rig.Run();
    EXPECT_EQ(rig.Rows().size(), 1U);
    EXPECT_EQ(std::count(rig.bus.Lines().begin(), rig.bus.Lines().end(), "> 18 POW -10.0 DBM"), level < 120 ? 1 : 2);
  }
  EXPECT_FALSE(rig.t.shell.delay.HaltRequested());
}

TEST_F(LevelCalibrationTest, StartsNoFrequencyAboveTheHighestLevel) {
  rig.setup.MaxLevel = -9.9F;
  rig.RunWithLevels({120.05});  // the middle is at -9.8 dBm
  EXPECT_EQ(CellsOf(rig.level.Rows().front())[1], "-9.800");
  for (const double levelDbm : rig.display.All(Readout::SigGenLevel)) EXPECT_LE(levelDbm, -9.9 + 1e-6);
}

TEST_F(LevelCalibrationTest, TriggersAMeterThatIsAlsoThePowerMeterWhenItIsRead) {
  for (const int address : {7, 13}) {
    CalibrationRuns run;
    run.pm.SetAddress(address);
    run.setup.RecordFwdPwr = 1;
    run.levels = {120.25};
    run.Run();
    const auto& lines = run.bus.Lines();
    const auto trigger = std::find(lines.begin(), lines.end(), "> 13 TS"),
               power = std::find(lines.begin(), lines.end(), "> " + std::to_string(address) + " AR?");
    EXPECT_EQ(trigger < power, address == 7);
  }
}

TEST_F(LevelCalibrationTest, SwitchesAndSensesAnIfiPair) {
  rig.UseIfi();
  rig.equipment.IfiPower = true;
  rig.setup.RecordFwdPwr = 1;
  rig.setup.StartFreq = 1.5, rig.setup.StopFreq = 3, rig.setup.StepType = StepType::Linear, rig.setup.LinearStep = 1.5;
  rig.portDb = 129.25;  // at the level at once
  rig.Run();
  EXPECT_THAT(rig.level.Frequencies(), ElementsAre(1.5, 2, 2.000001, 3));
  EXPECT_EQ(rig.level.Outcome(), RunOutcome::Finished) << rig.t.dialogs.LastText();
  EXPECT_THAT(rig.t.dialogs.Texts(),
              ElementsAre("Move sensor to low freq coupler", "Move sensor(s) to high freq coupler",
                          "Would you like to save the calibration data?"));
  // Reset, low band, high band, reset; the own power is read at every try.
  EXPECT_THAT(rig.Sent(10), ElementsAre("8", "8", "9", "RP", "RP", "8", "8"));
  EXPECT_THAT(rig.Sent(9), ElementsAre("FA", "L3", "M1", "ON", "B1", "ZA", "FA", "L3", "M1", "ON", "B1", "ZA", "FA",
                                       "L3", "M1", "ON", "B2", "ZA", "RP", "RP", "FA", "L3", "M1", "ON", "B1", "ZA"));
}

}  // namespace
}  // namespace hylden
