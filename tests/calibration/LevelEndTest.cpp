// However a level calibration ends or fails to start: RF off, the instruments offline, the points still there, and one
// question whether to save them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "calibration/CalibrationRuns.h"

namespace hylden {
namespace {

using testing::ElementsAre;

constexpr const char* kSaveQuestion = "Would you like to save the calibration data?";

class LevelEndTest : public testing::Test {
 protected:
  CalibrationRuns rig;
};

/// A table from 2 to 3 MHz.
std::string Short(CalibrationRuns& rig) {
  return rig.t.directory.Write("short", "2 1\r\n3 2\r\n");
}

struct NotReadyCase {
  void (*arrange)(CalibrationRuns&);
  Strings texts;
};

TEST_F(LevelEndTest, StartsNoRunWithoutPlanOrTables) {
  const NotReadyCase cases[] = {
      {[](auto& r) { r.setup.LogStep = 0; }, {"Error, no frequencies to calibrate? Check setup."}},
      {[](auto& r) { r.equipment.CableLossFile = ""; }, {"Error loading cable loss file"}},
      {[](auto& r) { r.setup.StartFreq = 2000, r.setup.StopFreq = 3000; },
       {"Cable loss file does not cover frequency range"}},
      {[](auto& r) { r.setup.LimitFile = ""; }, {"Error loading test level file"}},
      {[](auto& r) { r.setup.LimitFile = Short(r); }, {"Test Level file does not cover frequency range"}},
      {[](auto& r) { r.equipment.FwdPortFile = ""; }, {"Error loading foward coupling port file"}},
      {[](auto& r) { r.equipment.FwdPortFile = Short(r); }, {"Forward port file does not cover frequency range"}},
      {[](auto& r) { r.equipment.RevPortFile = ""; }, {"Error loading reverse coupling port file"}},
      {[](auto& r) { r.equipment.RevPortFile = Short(r); }, {"Reverse port file does not cover frequency range"}},
      {[](auto& r) { r.setup.StepType = StepType::List, r.setup.ListFile = r.t.directory.Write("x.lst", "Freq\r\n"); },
       {"Bad data in frequency list file", "Error, no frequencies to calibrate? Check setup."}},
  };
  for (const NotReadyCase& c : cases) {
    SCOPED_TRACE(c.texts.back());
    CalibrationRuns refused;
    refused.setup.RecordFwdPwr = refused.setup.RecordRevPwr = 1;
    refused.setup.LimitType = LimitType::File;
    refused.setup.LimitFile = refused.t.directory.Write("curve.lev", "1 1\r\n4 3\r\n");
    c.arrange(refused);
    EXPECT_FALSE(refused.level.Prepare());
    const auto told = refused.t.dialogs.Texts();
    ASSERT_EQ(told.size(), c.texts.size());
    EXPECT_TRUE(told.front().starts_with(c.texts.front())) << told.front();
    EXPECT_EQ(told.back(), c.texts.back());
    refused.level.Run();
    EXPECT_EQ(refused.level.Outcome(), RunOutcome::NotRun);
    EXPECT_TRUE(refused.bus.Lines().empty());
  }
}

TEST_F(LevelEndTest, TakesInstrumentsDownThoughTheEndThrows) {
  rig.display.throwAtStatus = "Shutting down instruments...";
  rig.Run();
  EXPECT_THAT(rig.bus.Lines(), testing::Contains("LOCAL 18"));
  EXPECT_EQ(rig.Shown(kSaveQuestion), 1);
  EXPECT_EQ(rig.display.phases.back(), RunPhase::Ready);
}

TEST_F(LevelEndTest, PassesTheEndOfTheProgramOnAndKeepsThePoints) {
  rig.levels = {120.25, 120.25};
  rig.AtRead(2, [] { throw ProgramEnd("the bus is gone"); });
  ASSERT_TRUE(rig.level.Prepare());
  EXPECT_THROW(rig.level.Run(), ProgramEnd);
  EXPECT_EQ(rig.Rows().size(), 1U);
  EXPECT_FALSE(rig.rfOn);
  EXPECT_THAT(rig.t.dialogs.Texts(), ElementsAre(kSaveQuestion));
}

TEST_F(LevelEndTest, LeavesAnIncompleteRowOutOfTheRecord) {
  rig.setup.RecordRevPwr = 1;
  rig.levels = {120.25, 120.25, 120.25};
  rig.AtRead(3, [&] { rig.equipment.AmpConfiguration = AmpConfig::Single; });
  rig.t.dialogs.AnswerSave(rig.t.directory.File("a.cal"));
  rig.Run();
  EXPECT_EQ(rig.Rows().size(), 3U);
  EXPECT_EQ(rig.t.directory.Read("a.cal"), "1.0,-10.000,120.00,40.00,30.00,\r\n2.0,-10.000,120.00,40.00,30.00,\r\n");
  EXPECT_EQ(rig.t.directory.Read("a.hyinfo"), "1 V\r\n\r\n\r\n1v\r\n1 - 2\r\n 2 \r\n");
  const FileRequest& request = rig.t.dialogs.saveRequests.front();
  EXPECT_EQ(request.title, "Enter Calibration Filename");
  EXPECT_EQ(request.filter, "Calibration File (*.cal)|*.cal");
}

TEST_F(LevelEndTest, KeepsThePointsWhenASaveFails) {
  namespace fs = std::filesystem;
  const std::string kept = rig.t.directory.Write("a.cal", "old");
  fs::permissions(kept, fs::perms::owner_read);
  rig.t.dialogs.AnswerSave(kept);
  rig.Run();
  EXPECT_TRUE(rig.t.dialogs.WasShownContaining("frmRunCal.SaveCal\r" + kept));
  EXPECT_EQ(rig.t.directory.Read("a.cal"), "old");
  EXPECT_EQ(rig.Rows().size(), 3U);
  rig.t.dialogs.AnswerSave(rig.t.directory.File("b.cal"));
  EXPECT_TRUE(rig.level.Save());
  EXPECT_FALSE(rig.level.Save());  // cancelled
}

TEST_F(LevelEndTest, KeepsThePointsBeforeWhenARunIsHaltedOrFailsComingUp) {
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

TEST_F(LevelEndTest, RecordsNoPowerThatWasReadAfterRfWentOff) {
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

TEST_F(LevelEndTest, AnExceptionIsToldWithRfOffThoughTheFirstRfOffDoesNotGetThrough) {
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

}  // namespace
}  // namespace hylden
