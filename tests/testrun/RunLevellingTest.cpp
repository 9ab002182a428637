// Runs from start to end: what each levelling method sends, shows and records, and that the level never overshoots.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "testrun/RunRig.h"

namespace hylden {
namespace {

using testing::ElementsAre;

/// The generator's commands between two of them, both left out.
Strings Between(const Strings& lines, const std::string& first, const std::string& last) {
  const auto begin = std::find(lines.begin(), lines.end(), first);
  const auto end = std::find(begin, lines.end(), last);
  return begin == lines.end() ? Strings{"never sent " + first} : Strings(begin + 1, end);
}

void OneStep(RunRig& rig) {
  rig.test.StopFreq = rig.test.StartFreq;
}
void LimitCurrent(RunRig& rig, double limitDbua) {
  rig.test.MonitorProbe = rig.test.LimitCurrent = true;
  // 120 dBuV in 150 ohm are 76.478 dBuA
  rig.test.LimitMargin = static_cast<float>(limitDbua - 76.4782);
}
void StartBelowTheMinimum(RunRig& rig) {
  Redefine(rig.sigGen, [](auto& d) { d.MinimumLevel = -20; });
  rig.test.InitLevOffset = -30;
}

struct LevellingTest : testing::Test {
  RunRig rig;
};

struct StepCase {
  const char* name;
  void (*arrange)(RunRig&);
  const char* row;
  double highestDbm;
};

TEST_F(LevellingTest, OneStepEndsAtItsLevelAndNotAbove) {
  constexpr auto kForward = LevelingMethod::ForwardPower, kNet = LevelingMethod::NetPower;
  const StepCase cases[] = {
      // 80 dBuV and 1 dB of cable
      {"monitored", [](auto& r) { r.test.MonitorProbe = true; }, "1.0, -10.0 **, 120.0, 81.0, , ", -10},
      {"adjusted", [](auto& r) { r.test.Extrapolate = true, r.test.ExtrapolateTo = -6; }, "1.0, -16.0 **, 114.0, , , ",
       -16},
      // 40 dBm and 1.21 dB of modulation
      {"forward power, AM", [](auto& r) { r.UsePower(kForward), r.UseAm(false, false); },
       "1.0, -8.7, 120.0, , 41.3 **, ", -8.7},
      {"net power", [](auto& r) { r.UsePower(kNet); }, "1.0, -10.0, 120.0, , 40.0 **, 30.0", -10},
      // reached at -16 dBm
      {"current limit", [](auto& r) { LimitCurrent(r, 75); }, "1.0, -16.0, 120.0, 75.0 **, , ", -15.9},
  };
  for (const StepCase& c : cases) {
    SCOPED_TRACE(c.name);
    RunRig one;
    OneStep(one);
    c.arrange(one);
    one.Run();
    EXPECT_THAT(one.Rows(), ElementsAre(c.row));
    EXPECT_LE(one.highestDbm, c.highestDbm + 1e-6);
  }
}

struct FailureCase {
  void (*arrange)(RunRig&);
  const char* text;
  double highestDbm;
  int firstToneMs = 2000;  ///< that of the run's end, unless there is a warning
};

TEST_F(LevellingTest, ARunThatCannotBeLevelledEndsWithItsMessageBeforeTheLevelIsTooHigh) {
  constexpr auto kForward = LevelingMethod::ForwardPower, kNet = LevelingMethod::NetPower;
  constexpr double kNeverOn = -200;
  const FailureCase cases[] = {
      {[](auto& r) { r.UsePower(kForward), r.gainDb = 46; },
       "Warning, amplifier gain is more than 3dB lower\r\nthan it should be.  Check setup.\r\n"
       "Cal SigGen = -10.0dBm and Cal FwdPwr = 40.0dBm",
       -7, 500},
      {[](auto& r) { r.UsePower(kNet), r.equipment.AmpConfiguration = AmpConfig::Single; },
       "Power meter not defined as dual-channel, check setup", -70},
      {[](auto& r) {
         r.UsePower(kForward), r.t.directory.Write("bench.cal", "1,-10,120,na,na,\r\n4,-6,120,na,na,\r\n");
       },
       "Forward power data not in calibration file.\r\nThis calibration file can't be used for \r\npower leveled "
       "tests.",
       kNeverOn},
      {[](auto& r) { LimitCurrent(r, 75), r.test.EUTCircuitImpedance = 0; },
       "The induced current can't be limited: check circuit impedance and test level", kNeverOn},
      {[](auto& r) { r.UseAm(true, true), r.test.UseAMdepth = true, r.bus.FailLine("> 18 AMD 0.0", gpib::kEabo); },
       "Error setting AM modulation", kNeverOn},
      {[](auto& r) { r.UseIfi(), r.bus.FailLine("> 10 9", gpib::kEabo); }, "Error sending command to amps", kNeverOn},
      {[](auto& r) { StartBelowTheMinimum(r), r.t.dialogs.Answer(MessageAnswer::No); },
       "but the starting offset puts it below the minimum. Proceed anyway?", kNeverOn},
      // 410 dBm would pass for a power
      {[](auto& r) { r.UsePower(kForward), r.bus.Answer(7, "9.91E+37"), Redefine(r.pm, [](auto& d) { d.Units = 0; }); },
       "The power meter's answer is no power:\r\n\"9.91E+37\"", -70},
      {[](auto& r) { r.test.MonitorProbe = true, r.bus.Answer(13, "OVLD"); },
       "The meter's answer holds no number:\r\n\"OVLD\"", -10},
  };
  for (const FailureCase& c : cases) {
    SCOPED_TRACE(c.text);
    RunRig failing;
    c.arrange(failing);
    failing.Run();
    EXPECT_TRUE(failing.t.dialogs.WasShownContaining(c.text)) << testing::PrintToString(failing.t.dialogs.Texts());
    EXPECT_EQ(failing.t.speaker.tones[0], (FakeSpeaker::Tone{1000, c.firstToneMs}));
    EXPECT_EQ(failing.t.dialogs.messages.size(), 2U) << "the reason, and the question whether to save";
    EXPECT_LE(failing.highestDbm, c.highestDbm);
    EXPECT_FALSE(failing.rfOnAtMessage);
    EXPECT_EQ(failing.Rows().size(), 1U);
    EXPECT_FALSE(failing.rfOn);
  }
}

TEST_F(LevellingTest, ByGeneratorTheLevelRisesFromBelowAtEachFrequency) {
  rig.test.StopFreq = 2;
  rig.Run();
  EXPECT_EQ(rig.Sent(18), (Strings{"*RST", "MOD OFF", "OUTP OFF",                                                 //
                                   "FREQ 1.0 MHZ", "POW -22.0 DBM", "OUTP ON", "POW -16.0 DBM", "POW -10.0 DBM",  //
                                   "POW -20.0 DBM", "FREQ 2.0 MHZ", "OUTP ON", "POW -14.0 DBM", "POW -8.0 DBM",   //
                                   "OUTP OFF", "POW -120.0 DBM", "FREQ 0.1 MHZ", "OUTP OFF"}));
  EXPECT_EQ(rig.Rows(), (Strings{"1.0, -10.0 **, 120.0, , , ", "2.0, -8.0 **, 120.0, , , "}));
  EXPECT_TRUE(rig.display.marked[Readout::SigGenLevel]);
  EXPECT_THAT(rig.t.dialogs.Texts(), ElementsAre("Would you like to save the testrun data?"));
}

TEST_F(LevellingTest, APhaseIsNamedWhileItLasts) {
  OneStep(rig);
  rig.Run();
  EXPECT_EQ(rig.display.statuses, (Strings{"State: Idle", "Calculating frequencies and dwell times...", "State: Idle",
                                           "Initializing instruments...", "", "Ramping level...", "Setting Sig-Gen...",
                                           "Intermediate dwell...", "Raising sig-gen level...", "Intermediate dwell...",
                                           "Raising sig-gen level...", "Intermediate dwell...",
                                           "Finishing Final Dwell...", "Shutting down instruments...", ""}));
}

TEST_F(LevellingTest, TheDwellIsHeldAtTheLevelAndElapsedTimeCountsFromTheSecondStep) {
  rig.Run();
  // Each step: three intermediate dwells of 0.5 s and 2 s at the level.
  ASSERT_EQ(rig.display.All(Readout::Elapsed).size(), 1U);
  EXPECT_NEAR(rig.display.All(Readout::Elapsed)[0], 7.0 / 60, 1e-9);
  EXPECT_NEAR(rig.display.All(Readout::Remaining)[0], 1 * 3.5 / 60, 1e-9);
  EXPECT_EQ(rig.display.plan.Steps, 3);
  EXPECT_NEAR(rig.display.plan.EstimatedMinutes, 3 * (1 + 2) / 60.0, 1e-9);
}

TEST_F(LevellingTest, WithCurrentLimitItStarts60DbBelowAndTheMeterIsRangedToTheLimit) {
  OneStep(rig);
  LimitCurrent(rig, 75);
  rig.Run();
  EXPECT_THAT(Between(rig.Sent(18), "FREQ 1.0 MHZ", "OUTP ON"), ElementsAre("POW -70.0 DBM"));
  // the reading expected at the limit, and 2 dB
  EXPECT_THAT(rig.Sent(13), testing::Contains(testing::StartsWith("RL 75.99")));
}

TEST_F(LevellingTest, ByForwardPowerTheNextStepStartsLowerByWhatWasTooMuch) {
  rig.UsePower(LevelingMethod::ForwardPower);
  rig.gainErrorDb[1] = 2.95;
  rig.test.StopFreq = 2;
  rig.Run();
  // Offset 2.85, plus 0.05 of overshoot, 12 below, and 6.02 dB for the doubled frequency.
  EXPECT_THAT(rig.Sent(18), testing::Contains("POW -28.9 DBM"));
  EXPECT_EQ(rig.Rows()[1], "2.0, -7.9, 120.0, , 42.1 **, ");
}

TEST_F(LevellingTest, TheReadingsShownAreNeverThoseOfTheStepBefore) {
  rig.UsePower(LevelingMethod::ForwardPower);
  double shown = -1;
  rig.AtStatus(
      "Intermediate dwell...", [&] { shown = rig.display.Now(Readout::ForwardPower); }, 2);
  rig.Run();
  EXPECT_EQ(shown, 0);
  EXPECT_NEAR(rig.display.Now(Readout::ForwardPower), 44.1, 0.01);
}

TEST_F(LevellingTest, WithConstantPeakTheCarrierDropsBeforeModulationGoesOn) {
  OneStep(rig);
  rig.UseAm(true, true);
  rig.Run();
  EXPECT_THAT(Between(rig.Sent(18), "POW -16.0 DBM", "OUTP OFF"),
              ElementsAre("POW -10.0 DBM", "POW -15.1 DBM", "AM ON"));
  EXPECT_NEAR(rig.display.Now(Readout::SigGenLevel), -15.1, 0.01);
  EXPECT_EQ(rig.Rows()[0].substr(0, 10), "1.0, -10.0");
}

TEST_F(LevellingTest, ModulationIsOffWhileTheFrequencyChanges) {
  rig.test.StopFreq = 2;
  rig.UseAm(true, false);
  rig.Run();
  EXPECT_THAT(Between(rig.Sent(18), "POW -10.0 DBM", "FREQ 2.0 MHZ"), ElementsAre("AM ON", "MOD OFF", "POW -20.0 DBM"));
}

TEST_F(LevellingTest, AStartBelowTheGeneratorsMinimumIsAskedForOnce) {
  StartBelowTheMinimum(rig);
  ASSERT_EQ(rig.Prepare(), RunReadiness::Ready);
  rig.t.dialogs.Answer(MessageAnswer::Yes);
  rig.t.dialogs.Answer(MessageAnswer::No);
  rig.engine.RunCdiTest();
  EXPECT_EQ(rig.Shown("Calibration sig-gen level is above the minimum possible sig-gen level,\r\n"
                      "but the starting offset puts it below the minimum. Proceed anyway?"),
            1);
  EXPECT_EQ(rig.t.dialogs.messages[0].title, "Sig-Gen level conflict");
  EXPECT_EQ(rig.Rows().size(), 3U);
  EXPECT_EQ(rig.Rows()[2], "4.0, -6.0 **, 120.0, , , ");
}

TEST_F(LevellingTest, RfIsOffWhileAConflictOfALaterStepIsAskedAboutAndComesBackAfterYes) {
  for (const std::string rfOff : {"OUTP OFF", ""}) {
    RunRig asking;
    StartBelowTheMinimum(asking);
    asking.test.InitLevOffset = asking.test.LevelInc = -10;
    asking.t.directory.Write("bench.cal", "1,-5,120,40,30,\r\n2,-18,120,42,32,\r\n4,-6,120,44,34,\r\n");
    Redefine(asking.sigGen, [&](auto& d) { d.RfOff = rfOff; });
    Strings atQuestion;
    double questionDbm = 0;
    asking.t.dialogs.onShow = [&](const Message& message) {
      if (message.title != "Sig-Gen level conflict") return;
      EXPECT_EQ(asking.Rows().size(), 2U);
      atQuestion = asking.Sent(18), questionDbm = asking.generatorDbm;
    };
    asking.Run();
    ASSERT_FALSE(atQuestion.empty());
    EXPECT_EQ(atQuestion.back(), rfOff.empty() ? "POW -20.0 DBM" : rfOff);
    EXPECT_EQ(questionDbm, rfOff.empty() ? -20 : -5);
    Strings after = asking.Sent(18);
    after.erase(after.begin(), after.begin() + static_cast<std::ptrdiff_t>(atQuestion.size()));
    Strings expected = {"POW -20.0 DBM", "FREQ 2.0 MHZ", "OUTP ON", "POW -18.0 DBM"};
    if (rfOff.empty()) expected.erase(expected.begin());
    after.resize(expected.size());
    EXPECT_EQ(after, expected);
    EXPECT_EQ(asking.Rows().size(), 3U);
  }
}

TEST_F(LevellingTest, APowerOf0WIsNoLevelInTheRunData) {
  rig.UsePower(LevelingMethod::NetPower);
  Redefine(rig.pm, [](auto& d) { d.Units = 0; });  // watts
  rig.t.directory.Write("bench.cal", "1,-10,120,50,30,\r\n4,-10,120,50,30,\r\n");
  rig.equipment.RevPortFile = rig.t.directory.Write("port.fac", "1 40\r\n4 41\r\n");
  rig.equipment.FwdPortFile = rig.t.directory.Write("forward.fac", "1 0\r\n2 0\r\n4 0\r\n");
  rig.gainDb = 150;
  rig.returnLossDb = 1000;
  rig.Run();
  ASSERT_EQ(rig.engine.Outcome(), RunOutcome::Finished) << rig.t.dialogs.LastText();
  for (const std::string& row : rig.Rows()) EXPECT_TRUE(row.ends_with(", ")) << row;
}

TEST_F(LevellingTest, OneSensorOnTwoCouplersIsMovedAtTheBandChange) {
  for (const char* rfOff : {"OUTP OFF", ""}) {
    RunRig moving;
    moving.UsePower(LevelingMethod::ForwardPower);
    const auto levelled = [&] {
      moving.Run();
      return moving.Rows();
    };
    const auto rows = levelled();
    moving.UseIfi();
    Redefine(moving.sigGen, [&](auto& d) { d.RfOff = rfOff; });
    moving.t.dialogs.Clear();
    moving.t.dialogs.onShow = [&](const Message&) { EXPECT_TRUE(!moving.rfOn || moving.generatorDbm == -120); };
    EXPECT_EQ(levelled(), rows) << "the power is read at the right level";
    EXPECT_EQ(moving.Shown("Move sensor to low freq coupler"), 1);
    EXPECT_EQ(moving.Shown("Move sensor(s) to high freq coupler"), 1);
  }
}

TEST_F(LevellingTest, ADwellOfZeroWaitsForTheOperatorAndCancelEndsTheRun) {
  rig.test.SweepDwell = 0;
  rig.t.dialogs.Answer(MessageAnswer::Ok);
  rig.t.dialogs.Answer(MessageAnswer::Cancel);
  rig.Run();
  EXPECT_EQ(rig.Shown("Press Enter to continue, Escape to halt"), 2);
  EXPECT_EQ(rig.Rows()[1], "2.0, , , , , ");
  EXPECT_FALSE(rig.rfOn);
}

}  // namespace
}  // namespace hylden
