// What an operator may rely on whatever a calibration meets: RF off, readings true, nothing lost, one run at a time.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "calibration/CalibrationRuns.h"

namespace hylden {
namespace {

using testing::ElementsAre;

class RunSafetyTest : public testing::Test {
 protected:
  CalibrationRuns rig;
};

TEST_F(RunSafetyTest, KeepsThePointsBeforeWhenARunIsHaltedOrFailsComingUp) {
  rig.setup.RecordFwdPwr = 1;
  rig.Run();
  const auto rows = rig.Rows();
  ASSERT_EQ(rows.size(), 3U);
  rig.t.dialogs.Answer(MessageAnswer::No);  // not to be saved
  for (const char* line : {"", "FIND 18", "FIND 7", "FIND 13", "> 10 8"}) {
    SCOPED_TRACE(line);
    const bool halts = *line == 0;
    rig.t.events.onYield = [&] {
      if (halts) rig.t.shell.delay.RequestHalt();
    };
    if (!halts) rig.bus.FailLine(line, gpib::kEnol);
    if (*line == '>') rig.UseIfi();
    rig.t.dialogs.Clear();
    rig.bus.transcript.Clear();
    rig.level.Run();
    EXPECT_EQ(rig.t.dialogs.messages.size(), halts ? 2U : 1U) << testing::PrintToString(rig.t.dialogs.Texts());
    EXPECT_EQ(rig.Rows(), rows);
    EXPECT_EQ(rig.level.Outcome(), RunOutcome::EndedEarly);
    EXPECT_EQ(rig.display.phases.back(), RunPhase::Ready);
    EXPECT_THAT(rig.bus.Lines(), testing::Not(testing::Contains("> 18 OUTP ON")));
  }
}

TEST_F(RunSafetyTest, RecordsNoPowerThatWasReadAfterRfWentOff) {
  rig.setup.RecordRevPwr = 1;
  rig.levels = {120.25, 120.25, 120.25};
  int readings = 0;
  rig.bus.transcript.onLine = [&, follow = rig.bus.transcript.onLine](const std::string& line) {
    follow(line);
    if (line != "> 7 BR?" || ++readings != 3) return;
    // As when the program is asked to end.
    rig.t.shell.delay.RequestHalt();
    EXPECT_TRUE(rig.instruments.sigGen.SilenceRf());
  };
  rig.Run();
  ASSERT_EQ(rig.Rows().size(), 3U);
  EXPECT_EQ(CellsOf(rig.level.Rows()[2])[4], "");
  EXPECT_EQ(CompleteRows(rig.level.Rows()).size(), 2U);
}

TEST_F(RunSafetyTest, AnExceptionIsToldWithRfOffThoughTheFirstRfOffDoesNotGetThrough) {
  for (const bool throws : {false, true}) {
    CalibrationRuns failing;
    failing.onMeterRead = [&](double) {
      throws ? failing.throwAtLines.push_back("> 18 OUTP OFF") : failing.bus.FailLine("> 18 OUTP OFF", gpib::kEnol);
      throw RuntimeError(ErrorNumber::Overflow);
    };
    failing.Run();
    EXPECT_EQ(failing.Shown("Error # 6\rOverflow\rfrmRunCal.RunCal\r"), 1);
    EXPECT_FALSE(failing.rfOnAtMessage);
  }
}

TEST_F(RunSafetyTest, ACableReadingThatIsNoneIsToldWithRfOffThoughThreeRfOffsDoNotGetThrough) {
  rig.levels = {9.91e37};
  rig.onMeterRead = [&](double) {
    for (int attempt = 0; attempt < 3; ++attempt) rig.bus.FailLine("> 18 OUTP OFF", gpib::kEnol);
  };
  rig.cable.DirectPass(rig.display);
  EXPECT_TRUE(rig.t.dialogs.WasShownContaining("The meter's answer is no level"));
  EXPECT_FALSE(rig.rfOnAtMessage);
}

TEST_F(RunSafetyTest, RunsOneAtATime) {
  bool within = false;
  rig.onMeterRead = [&](double) {
    if (within) return;
    within = true;
    rig.cable.DirectPass(rig.display);
  };
  rig.Run();
  EXPECT_EQ(rig.Shown("Another run is using the instruments"), 1);
  EXPECT_EQ(rig.level.Outcome(), RunOutcome::Finished);
  EXPECT_EQ(rig.cable.Outcome(), RunOutcome::NotRun);
  rig.cable.DirectPass(rig.display);
  EXPECT_EQ(rig.cable.Outcome(), RunOutcome::Finished);
}

TEST_F(RunSafetyTest, LeavesNoReadingsOfTheInsertPassBefore) {
  rig.cable.DirectPass(rig.display);
  rig.cable.InsertPass(rig.display);
  rig.display.done.clear();
  rig.t.events.onYield = [&] {
    if (!rig.display.done.empty()) rig.t.shell.delay.RequestHalt();
  };
  rig.t.dialogs.Answer(MessageAnswer::No);  // not to be saved
  rig.cable.InsertPass(rig.display);
  ASSERT_EQ(rig.cable.Points().size(), 3U);
  for (const CablePoint& point : rig.cable.Points()) EXPECT_EQ(point.HasBoth(), point.Freq == 1) << point.Freq;
}

}  // namespace
}  // namespace hylden
