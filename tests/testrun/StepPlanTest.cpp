#include "testrun/StepPlan.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>

#include "documents/TestDefinition.h"

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

struct PlanCase {
  const char* name;
  TestDefinition test;
  std::vector<double> frequencies;
};

class PlanTest : public testing::TestWithParam<PlanCase> {};

TEST_P(PlanTest, HasTheseFrequencies) {
  const auto steps = PlanSweep(GetParam().test);
  ASSERT_EQ(steps.size(), GetParam().frequencies.size());
  for (std::size_t i = 0; i < steps.size(); ++i) {
    EXPECT_NEAR(steps[i].Freq, GetParam().frequencies[i], 1e-9);
    EXPECT_EQ(steps[i].Dwell, 3);
  }
}

const double kNan = std::numeric_limits<double>::quiet_NaN();

INSTANTIATE_TEST_SUITE_P(
    StepPlan, PlanTest,
    testing::Values(PlanCase{"linear", Sweep(0, 1, 3, 1), {1, 2, 3}},
                    PlanCase{"half_a_step_rounds_to_even_up", Sweep(0, 1, 10, 2), {1, 3, 5, 7, 9, 11}},
                    PlanCase{"half_a_step_rounds_to_even_down", Sweep(0, 1, 8, 2), {1, 3, 5, 7}},
                    PlanCase{"log", Sweep(1, 1, 2, 50), {1, 1.5, 2}},
                    PlanCase{"log_hits_the_stop_once", Sweep(1, 1, 4, 100), {1, 2, 4}},
                    PlanCase{"log_from_the_stop", Sweep(1, 5, 5, 1), {5}},
                    PlanCase{"linear_without_step", Sweep(0, 1, 2, 0), {}},
                    PlanCase{"linear_with_negative_step", Sweep(0, 1, 2, -1), {}},
                    PlanCase{"linear_backwards", Sweep(0, 5, 1, 1), {}},
                    PlanCase{"log_without_step", Sweep(1, 1, 2, 0), {}},
                    PlanCase{"log_from_zero", Sweep(1, 0, 2, 1), {}}, PlanCase{"no_number", Sweep(0, 1, kNan, 1), {}},
                    PlanCase{"more_than_a_million_linear", Sweep(0, 1, 2, 1e-9), {}},
                    PlanCase{"more_than_a_million_log", Sweep(1, 1, 2, 1e-13), {}},
                    PlanCase{"unknown_step_type", Sweep(7, 1, 2, 1), {}}),
    [](const auto& row) { return row.param.name; });

TEST(StepPlan, TheLinearSweepOf230MHzEndsHalfAStepLate) {
  const auto steps = PlanSweep(Sweep(0, 0.15, 230, 1));
  ASSERT_EQ(steps.size(), 231U);
  EXPECT_NEAR(steps.back().Freq, 230.15, 1e-9);
}

TEST(StepPlan, TheLogSweepEndsAtExactlyTheStopFrequency) {
  const auto steps = PlanSweep(Sweep(1, 0.15, 80, 1));
  EXPECT_EQ(steps.size(), 633U);
  EXPECT_EQ(steps.back().Freq, 80);
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

TEST(StepPlan, AHundredThousandListFrequenciesMergeAtOnce) {
  const TestDefinition test = Sweep(0, 1, 1001, 0.01);
  auto steps = PlanSweep(test);
  std::vector<double> list;
  for (int i = 100'000; i > 0; --i) list.push_back(1 + i * 0.01);
  const auto start = std::chrono::steady_clock::now();
  MergeList(steps, list, test);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  EXPECT_EQ(steps.size(), 200'001U);
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
