// What a level calibration visits, and what its record says about it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "calibration/CalibrationRuns.h"
#include "run/FactorLoading.h"

namespace hylden {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

TEST(PlanRangeTest, OnlyARoundedLastPointIsLeftOut) {
  const struct {
    const char* name;
    std::vector<double> plan;
    std::optional<double> stop;
    double from, to;
    bool within;
    std::optional<double> leftOut;
  } cases[] = {
      {"covered", {1, 3, 5}, 4, 1, 5, true, {}},
      {"rounded up", {1, 3, 5}, 4, 1, 4, true, 5},
      {"too short for the point before", {1, 3, 5}, 4, 1, 2.9, false, {}},
      {"late start", {1, 3, 5}, 4, 1.1, 9, false, {}},
      {"not beyond the stop", {1, 3, 5}, 5, 1, 4, false, {}},
      {"not linear", {1, 3, 5}, {}, 1, 4, false, {}},
      {"one point", {5}, 4, 1, 4, false, {}},
      {"falling list", {5, 3, 1}, {}, 1, 5, true, {}},
      {"empty table", {1, 3}, {}, -1, -1, false, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    PlanRange range(c.plan, c.stop);
    EXPECT_EQ(range.IsWithin(c.from, c.to), c.within);
    EXPECT_EQ(range.LeftOut(), c.leftOut);
    EXPECT_EQ(range.LeftOut().has_value(), range.Highest() != *std::max_element(c.plan.begin(), c.plan.end()));
  }
}

class LevelPlanTest : public testing::Test {
 protected:
  LevelPlanTest() { rig.t.dialogs.AnswerSave(rig.t.directory.File("a.cal")); }
  std::string Record() const { return rig.t.directory.Read("a.cal") + rig.t.directory.Read("a.hyinfo"); }

  CalibrationRuns rig;
};

TEST_F(LevelPlanTest, ARoundedLastPointThatIsNotCoveredIsLeftOutAndToldOnce) {
  // Steps of 2 MHz from 1 to 4.5: the last of the three is at 5 MHz.
  rig.setup.StopFreq = 4.5, rig.setup.StepType = StepType::Linear, rig.setup.LinearStep = 2;
  rig.equipment.CableLossFile = rig.t.directory.Write("short.los", "1 1\r\n4.5 1\r\n");
  rig.equipment.FwdPortFile = rig.t.directory.Write("short.fac", "1 0\r\n4 0\r\n");
  rig.setup.RecordFwdPwr = 1;
  rig.Run();
  EXPECT_EQ(rig.level.Outcome(), RunOutcome::Finished);
  EXPECT_EQ(rig.t.dialogs.messages.size(), 2U);
  EXPECT_THAT(rig.t.dialogs.Texts().front(), HasSubstr("The last step, 5 MHz, lies beyond the stop frequency"));
  EXPECT_EQ(rig.display.plan.Steps, 2);
  EXPECT_EQ(rig.display.plan.StopMHz, 3);
  EXPECT_THAT(Record(), HasSubstr("\r\n1 - 3\r\n"));
}

TEST_F(LevelPlanTest, ACurveThatGivesNoLevelIsToldWithItsFile) {
  rig.setup.LimitType = LimitType::File;
  for (const char* const curve : {"0 1\r\n3 3\r\n5 3\r\n", "1 -1\r\n5 -1\r\n", "1 0\r\n5 0\r\n"}) {
    rig.setup.LimitFile = rig.t.directory.Write("curve.lev", curve);
    EXPECT_FALSE(rig.level.Prepare());
    EXPECT_EQ(rig.t.dialogs.LastText(),
              "The test level file gives no level at 1 MHz:\r\n" + rig.t.directory.File("curve.lev"));
  }
}

TEST_F(LevelPlanTest, AFallingListMakesARisingRecord) {
  rig.setup.StepType = StepType::List;
  rig.setup.ListFile = rig.t.directory.Write("a.lst", "4\r\n2\r\n1\r\n");
  rig.Run();
  EXPECT_THAT(Record(), AllOf(StartsWith("1.0,"), HasSubstr("\r\n2.0,"), HasSubstr("\r\n4.0,")));
  EXPECT_EQ(rig.Rows().front().substr(0, 4), "4.0,");
}

TEST_F(LevelPlanTest, ADescriptionBesideANewNameIsReplacedOnlyWhenAsked) {
  const std::string info = rig.t.directory.Write("a.hyinfo", "another cable");
  rig.t.dialogs.Answer(MessageAnswer::Yes);  // save
  rig.t.dialogs.Answer(MessageAnswer::No);
  rig.Run();
  EXPECT_EQ(rig.t.dialogs.LastText(), info + " exists. Replace it?");
  EXPECT_FALSE(rig.t.directory.Exists("a.cal"));
  EXPECT_EQ(rig.t.directory.Read("a.hyinfo"), "another cable");
  EXPECT_TRUE(rig.level.Unsaved().AreMissed());

  rig.t.directory.Write("a.cal", "the file dialog has asked");
  rig.t.dialogs.AnswerSave(rig.t.directory.File("a.cal"));
  EXPECT_TRUE(rig.level.Save());
  EXPECT_THAT(rig.t.directory.Read("a.hyinfo"), StartsWith("1 V\r\n"));
}

TEST_F(LevelPlanTest, AnotherRunAsksBeforeItDropsRowsAndTheirRecordNamesTheRangeThatItHolds) {
  constexpr const char* kQuestion = "The calibration data has not been saved.\r\nSave it?";
  rig.HaltAt(4);
  rig.t.dialogs.Answer(MessageAnswer::No);
  rig.Run();
  const auto rows = rig.Rows();
  ASSERT_EQ(rows.size(), 2U);
  rig.onMeterRead = nullptr;

  rig.bus.transcript.Clear();
  rig.t.dialogs.Answer(MessageAnswer::No);  // not continued
  rig.t.dialogs.Answer(MessageAnswer::Cancel);
  rig.level.Run();
  EXPECT_EQ(rig.Shown(kQuestion), 1);
  EXPECT_EQ(rig.Rows(), rows);
  EXPECT_TRUE(rig.bus.Lines().empty());

  rig.t.dialogs.Answer(MessageAnswer::No);
  rig.t.dialogs.Answer(MessageAnswer::Yes);
  rig.t.dialogs.Answer(MessageAnswer::Ok);  // it ended early
  rig.t.dialogs.Answer(MessageAnswer::No);
  rig.level.Run();
  EXPECT_EQ(rig.Shown("The calibration ended early: its record holds 1 - 2 MHz only."), 1);
  EXPECT_THAT(Record(), HasSubstr("\r\n1 - 2\r\n"));
  EXPECT_EQ(rig.Rows().size(), 3U);
}

TEST_F(LevelPlanTest, AnotherRunContinuesOneThatEndedEarlyWhenToldTo) {
  rig.HaltAt(4);
  rig.t.dialogs.Answer(MessageAnswer::No);
  rig.Run();
  const auto former = rig.Rows();
  rig.onMeterRead = nullptr;
  rig.t.dialogs.Clear();
  rig.t.dialogs.Answer(MessageAnswer::Yes);
  rig.t.dialogs.Answer(MessageAnswer::No);
  rig.level.Run();
  EXPECT_THAT(rig.t.dialogs.Texts().at(0),
              StartsWith("The last run ended early. Continue it at step 3 (4.0 MHz)?\r\n"));
  EXPECT_EQ(rig.t.dialogs.messages.size(), 2U) << "nothing is dropped";
  const auto rows = rig.Rows();
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_TRUE(std::equal(former.begin(), former.end(), rows.begin()));
}

}  // namespace
}  // namespace hylden
