#include "testrun/StepPlan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "documents/TestDefinition.h"
#include "testrun/TestPlan.h"

namespace hylden {
namespace {

TestDefinition Sweep(int type, double start, double stop, double step) {
  TestDefinition test;
  test.FreqSweep = true;
  test.StepType = static_cast<StepType>(type);
  test.StartFreq = start;
  test.StopFreq = stop;
  test.LinearStep = test.LogStep = step;
  test.SweepDwell = 3;
  return test;
}

TEST(StepPlan, StepsRiseByTheDefinitionsRule) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    const char* name;
    TestDefinition test;
    std::vector<double> frequencies;
  } cases[] = {{"linear", Sweep(0, 1, 3, 1), {1, 2, 3}},
               {"half a step rounds to even: up", Sweep(0, 1, 10, 2), {1, 3, 5, 7, 9, 11}},
               {"half a step rounds to even: down", Sweep(0, 1, 8, 2), {1, 3, 5, 7}},
               {"log", Sweep(1, 1, 2, 50), {1, 1.5, 2}},
               {"log hits the stop once", Sweep(1, 1, 4, 100), {1, 2, 4}},
               {"log from the stop", Sweep(1, 5, 5, 1), {5}},
               {"linear without step", Sweep(0, 1, 2, 0), {}},
               {"linear with negative step", Sweep(0, 1, 2, -1), {}},
               {"linear backwards", Sweep(0, 5, 1, 1), {}},
               {"log without step", Sweep(1, 1, 2, 0), {}},
               {"log from zero", Sweep(1, 0, 2, 1), {}},
               {"no number", Sweep(0, 1, nan, 1), {}},
               {"more than a million, linear", Sweep(0, 1, 2, 1e-9), {}},
               {"more than a million, log", Sweep(1, 1, 2, 1e-13), {}},
               {"unknown step type", Sweep(7, 1, 2, 1), {}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<double> planned;
    for (const PlanStep& step : PlanSweep(c.test)) {
      planned.push_back(step.Freq);
      EXPECT_EQ(step.Dwell, 3);
    }
    EXPECT_THAT(planned, testing::Pointwise(testing::DoubleNear(1e-9), c.frequencies));
  }
}

TEST(StepPlan, ALinearSweepMayEndHalfAStepLateALogSweepEndsAtExactlyItsStop) {
  const auto linear = PlanSweep(Sweep(0, 0.15, 230, 1)), log = PlanSweep(Sweep(1, 0.15, 80, 1));
  EXPECT_EQ(linear.size(), 231U);
  EXPECT_NEAR(linear.back().Freq, 230.15, 1e-9);
  EXPECT_EQ(log.size(), 633U);
  EXPECT_EQ(log.back().Freq, 80);
}

TEST(TestPlanText, TellsWhatTheEntriesDefine) {
  TestDefinition test = Sweep(1, 0.15, 80, 1);
  test.ListFile = "/lab/none.lst";
  const struct {
    const char *control, *text, *calibrated, *told;
  } rows[] = {{"txtLogStep", "1", "", "633 frequencies, about 0:31:39"},
              {"txtLogStep", "1", "0.15 - 0.3", "71 frequencies, about 0:03:33"},
              {"txtSweepDwell", "0", "", "633 frequencies; a dwell of 0 waits for you"},
              {"txtLogStep", "0", "", "step of 0: no frequencies"},
              {"txtStopFreq", "0.1", "", "stop not above start: no frequencies"},
              {"txtLogStep", "1e-12", "", "more than 1000000 frequencies: wider steps are needed"},
              {"txtStopFreq", "80,0", "", "an entry is no number"},
              {"chkFreqList", "1", "", "no frequency list: can't read none.lst"},
              {"chkFreqSweep", "", "", "neither a swept nor a discrete frequency test: no frequencies"}};
  for (const auto& row : rows) {
    FormEntries entries = EntriesShowing(test);
    entries[row.control] = row.text;
    EXPECT_EQ(TestPlanText(entries, test, row.calibrated), row.told);
  }
}

TEST(StepPlan, AListIsMergedInOrderAndInRangeOnly) {
  TestDefinition test = Sweep(0, 1, 3, 1);
  test.DiscreteDwell = 7;
  auto steps = PlanSweep(test);
  MergeList(steps, {2.5, 0.9, 2, 1.5, 3.1, 3}, test);
  std::vector<std::pair<double, double>> plan;
  for (const PlanStep& step : steps) plan.emplace_back(step.Freq, step.Dwell);
  const std::vector<std::pair<double, double>> expected{{1, 3}, {1.5, 7}, {2, 3}, {2, 7}, {2.5, 7}, {3, 3}, {3, 7}};
  EXPECT_EQ(plan, expected);
}

TEST(StepPlan, TheEstimateCountsRampsAndDwells) {
  TestDefinition test = Sweep(0, 1, 3, 1);
  test.InitLevOffset = -12;
  test.LevelInc = 6;
  test.InterDwell = 0.5F;
  EXPECT_DOUBLE_EQ(EstimateRunSeconds(PlanSweep(test), test), 3 * (1.0 + 3.0));
  test.LevelInc = 0;  // ramps by 6 dB then
  EXPECT_DOUBLE_EQ(EstimateRunSeconds(PlanSweep(test), test), 3 * (1.0 + 3.0));
  test.InitLevOffset = 0;
  EXPECT_DOUBLE_EQ(EstimateRunSeconds(PlanSweep(test), test), 9);
}

}  // namespace
}  // namespace hylden
