// What a test run visits, settled before anything is switched on: what record and tables cover, what a list adds.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "testrun/RunReport.h"
#include "testrun/RunRig.h"

namespace hylden {
namespace {

using testing::ElementsAre;

struct RunPreparationTest : testing::Test {
  /// Fixed steps of 2 MHz from 1 to 6: the number of steps is rounded up to 4, so the last one is at 7 MHz.
  RunPreparationTest() {
    rig.test.StopFreq = 6;
    rig.test.StepType = StepType::Linear;
    rig.test.LinearStep = 2;
    Record("1,-10,120,40,30,\r\n5,-8,120,42,32,\r\n8,-6,120,44,34,\r\n");
  }
  void Record(std::string_view data) { rig.t.directory.Write("bench.cal", data); }
  std::vector<double> Planned() const {
    std::vector<double> frequencies;
    for (const PlanStep& step : rig.engine.Steps()) frequencies.push_back(step.Freq);
    return frequencies;
  }

  RunRig rig;
};

TEST_F(RunPreparationTest, ARoundedLastStepStaysWhereEverythingCoversIt) {
  rig.Run();
  EXPECT_EQ(rig.engine.Outcome(), RunOutcome::Finished);
  EXPECT_EQ(rig.Rows().size(), 4U);
  EXPECT_EQ(rig.t.dialogs.messages.size(), 1U) << "the question whether to save";
}

TEST_F(RunPreparationTest, ARoundedLastStepThatIsNotCoveredIsLeftOutAndToldOnce) {
  Record("1,-10,120,40,30,\r\n5,-8,120,42,32,\r\n6,-6,120,44,34,\r\n");
  rig.equipment.FwdPortFile = rig.t.directory.Write("short.fac", "1 0\r\n6.5 0\r\n");
  rig.Run();
  EXPECT_EQ(rig.engine.Outcome(), RunOutcome::Finished);
  EXPECT_THAT(Planned(), ElementsAre(1, 3, 5));
  EXPECT_EQ(rig.display.plan.Steps, 3);
  EXPECT_EQ(rig.t.dialogs.messages.size(), 2U);
  EXPECT_EQ(rig.t.dialogs.Texts().front(),
            "The last step, 7 MHz, lies beyond the stop frequency, and tables or calibration do not cover it.\r\n"
            "It is left out; the last one is 5 MHz.");
}

TEST_F(RunPreparationTest, CoverageIsJudgedByThePlansOwnEnds) {
  rig.test.StopFreq = 5.9;  // the last step is at 5 MHz
  Record("1,-10,120,40,30,\r\n5,-8,120,42,32,\r\n");
  rig.equipment.FwdPortFile = rig.equipment.RevPortFile = rig.t.directory.Write("short.fac", "1 0\r\n5 0\r\n");
  EXPECT_EQ(rig.Prepare(), RunReadiness::Ready) << rig.t.dialogs.LastText();
  EXPECT_TRUE(rig.t.dialogs.messages.empty());
}

TEST_F(RunPreparationTest, ARecordThatEndsEarlyIsRefusedWithItsRange) {
  const char* const refusals[][2] = {
      {"1,-10,120,40,30,\r\n4.5,-8,120,42,32,\r\n", "1 to 4.5"},
      {"1.5,-10,120,40,30,\r\n9,-8,120,42,32,\r\n", "1.5 to 9"},
  };
  for (const auto& [data, range] : refusals) {
    Record(data);
    EXPECT_EQ(rig.Prepare(), RunReadiness::NotReady);
    EXPECT_EQ(rig.t.dialogs.LastText(),
              std::string("Calibration file does not cover frequency range:\r\nit goes from ") + range + " MHz.");
    EXPECT_EQ(rig.display.statuses.back(), "State: Not ready");
  }
  rig.engine.RunCdiTest();
  EXPECT_EQ(rig.bus.Calls(), 0);
}

TEST_F(RunPreparationTest, ARecordInFallingOrderIsTakenAsIfItRose) {
  Record("8,-6,120,44,34,\r\n5,-8,120,42,32,\r\n1,-10,120,40,30,\r\n");
  rig.Run();
  EXPECT_EQ(rig.engine.Outcome(), RunOutcome::Finished);
  EXPECT_EQ(rig.Rows()[2], "5.0, -8.0 **, 120.0, , , ");
}

TEST_F(RunPreparationTest, ALevelThatIsNoneIsRefusedBeforeAnythingIsSwitchedOn) {
  const char* const records[] = {
      "1,-10,120,40,30,\r\n3,-8,-999.00,42,32,\r\n8,-8,120,42,32,\r\n",
      "1,-10,120,40,30,\r\n3,-999,120,42,32,\r\n8,-8,120,42,32,\r\n",
  };
  for (const char* const data : records) {
    Record(data);
    EXPECT_EQ(rig.Prepare(), RunReadiness::NotReady);
    EXPECT_EQ(rig.t.dialogs.LastText(), "Calibration file gives no level at 3 MHz");
  }
}

TEST_F(RunPreparationTest, AListOfOneFrequencyBesideASweepIsToldAndNotReported) {
  rig.test.FreqList = true;
  rig.test.ListFile = rig.t.directory.Write("one.lst", "2\r\n");
  EXPECT_EQ(rig.Prepare(), RunReadiness::Ready);
  EXPECT_THAT(rig.t.dialogs.Texts(),
              ElementsAre("The frequency list holds one frequency only, and is left out:\r\n" + rig.test.ListFile));
  EXPECT_THAT(Planned(), ElementsAre(1, 3, 5, 7));
  const auto reported = [&] {
    std::string text;
    for (const PrintedLine& line : DetailedReport(rig.documents, rig.engine.Data()).lines) text += line.text + "\n";
    return (text + rig.documents.testSetup.StringPrintTestSetup()).find("one.lst") != std::string::npos;
  };
  EXPECT_FALSE(reported());
  EXPECT_TRUE(rig.test.FreqList) << "the definition itself stays";

  rig.t.directory.Write("one.lst", "2\r\n4\r\n");
  EXPECT_EQ(rig.Prepare(), RunReadiness::Ready);
  EXPECT_THAT(Planned(), ElementsAre(1, 2, 3, 4, 5, 7));
  EXPECT_TRUE(reported());
}

TEST_F(RunPreparationTest, AListThatCannotBeReadLeavesNoTestWithoutIt) {
  rig.test.FreqList = true;
  rig.test.ListFile = rig.t.directory.Write("bad.lst", "Freq\r\n");
  EXPECT_EQ(rig.Prepare(), RunReadiness::NotReady);
  EXPECT_THAT(rig.t.dialogs.Texts(), ElementsAre("Bad data in frequency list file"));
  rig.engine.RunCdiTest();
  EXPECT_EQ(rig.bus.Calls(), 0);
}

}  // namespace
}  // namespace hylden
