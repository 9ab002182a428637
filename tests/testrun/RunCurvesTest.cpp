#include "testrun/RunCurves.h"

#include <gtest/gtest.h>

#include <cmath>

namespace hylden {
namespace {

RunEntry Step(double freq, StepResult result) {
  return StepEntry{freq, result};
}

std::vector<double> ValuesOf(const Curve& curve) {
  std::vector<double> values;
  values.reserve(curve.Points.size());
  for (const CurvePoint& point : curve.Points) values.push_back(point.Value);
  return values;
}

const std::vector<RunEntry> kRows = {Step(1, {-10, 120, 74, 40, 30, {}}), Step(2, {-9, 120, {}, 40, -999, {}}),
                                     ThresholdEntry{2, -1.5, "flickers"}, Step(3, {-8, 120, 72, {}, {}, {}})};

struct UnitCase {
  RunQuantity Quantity;
  RunUnitChoice Units;
  const char* Unit;
  double First;  ///< of the first curve
};

class RunCurvesUnits : public testing::TestWithParam<UnitCase> {};

TEST_P(RunCurvesUnits, HoldWhatTheRowsHoldInTheChosenUnit) {
  const UnitCase& c = GetParam();
  const RunCurves curves(c.Quantity, {c.Units, 150, false, {{1, 120, -10.5, 76}}}, kRows);
  const Curve& shown = curves.Curves().front();
  EXPECT_EQ(shown.Unit, c.Unit);
  ASSERT_FALSE(shown.Points.empty());
  EXPECT_EQ(shown.Points[0].Freq, 1);
  EXPECT_NEAR(shown.Points[0].Value, c.First, 1e-3 * std::abs(c.First) + 1e-9);
}

INSTANTIATE_TEST_SUITE_P(All, RunCurvesUnits,
                         testing::Values(UnitCase{RunQuantity::TestLevel, {RunUnit::DbuV}, "dBuV", 120},
                                         UnitCase{RunQuantity::TestLevel, {RunUnit::DbuA}, "dBuA", 76.478},
                                         UnitCase{RunQuantity::TestLevel, {RunUnit::Dbm}, "dBm", 8.239},
                                         UnitCase{RunQuantity::TestLevel, {RunUnit::Milliwatts}, "mW", 6.667},
                                         UnitCase{RunQuantity::TestLevel, {RunUnit::Volts}, "V", 1},
                                         UnitCase{RunQuantity::Generator, {}, "dBm", -10},
                                         UnitCase{RunQuantity::Induced, {{}, RunUnit::DbuV}, "dBuV", 117.522},
                                         UnitCase{RunQuantity::Induced, {{}, RunUnit::DbuA}, "dBuA", 74},
                                         UnitCase{RunQuantity::Induced, {{}, RunUnit::Dbm}, "dBm", 5.761},
                                         UnitCase{RunQuantity::Induced, {{}, RunUnit::Milliwatts}, "mW", 3.768},
                                         UnitCase{RunQuantity::Induced, {{}, RunUnit::Volts}, "V", 0.7518},
                                         UnitCase{RunQuantity::Induced, {{}, RunUnit::Relative}, "dB", -2},
                                         UnitCase{RunQuantity::Power, {{}, {}, RunUnit::Dbm}, "dBm", 40},
                                         UnitCase{RunQuantity::Power, {{}, {}, RunUnit::Watts}, "W", 10}));

TEST(RunCurves, WhatWasNotMeasuredIsAGapAndAThresholdStandsAtItsOffset) {
  const RunCurves induced(RunQuantity::Induced, {}, kRows), power(RunQuantity::Power, {}, kRows);
  EXPECT_TRUE(std::isnan(induced.Curves()[0].Points.at(1).Value));
  EXPECT_TRUE(induced.Marks().empty()) << "no current was measured there";
  EXPECT_TRUE(std::isnan(power.Curves()[1].Points.at(1).Value)) << "0 W have no dBm";
  EXPECT_EQ(power.Marks().at(0).At, (CurvePoint{2, 38.5}));
  EXPECT_EQ(power.Marks()[0].Text, "flickers");
  EXPECT_TRUE(RunCurves(RunQuantity::TestLevel, {{RunUnit::DbuA}}, kRows).Curves()[0].Points.empty())
      << "an impedance is not known";
}

TEST(RunCurves, StepsInAnyOrderAndTwiceAtAFrequencyLeadBackToTheirRows) {
  const std::vector<RunEntry> rows = {Step(9, {1, 120}), StepEntry{8}, Step(7, {2, 120}), Step(9, {3, 120}),
                                      ThresholdEntry{9.00000004, 1, {}}};
  const RunCurves curves(RunQuantity::Generator, {}, rows);
  EXPECT_EQ(ValuesOf(curves.Curves()[0]), (std::vector<double>{2, 1, 3}));
  EXPECT_EQ(curves.RowOf(0, 0), 3);
  EXPECT_EQ(curves.RowOf(0, 1), 1);
  EXPECT_EQ(curves.PlaceOf(4), std::pair(std::size_t{0}, std::size_t{2}));
  EXPECT_EQ(curves.PlaceOf(2), std::nullopt);
  EXPECT_EQ(curves.RowOf(1, 0), 0);
  ASSERT_EQ(curves.Marks().size(), 1U);
  EXPECT_EQ(curves.Marks()[0].At.Value, 4) << "that of the step as it was run last";
  EXPECT_EQ(curves.Marks()[0].Text, "Threshold 1.0dB");
}

TEST(RunCurves, ACompleteRowIsAddedOnceAndACommentIsTakenOver) {
  std::vector<RunEntry> rows = {StepEntry{5}};
  RunCurves curves(RunQuantity::TestLevel, {}, rows);
  std::get<StepEntry>(rows[0]).Result = StepResult{-10, 120};
  EXPECT_EQ(curves.Add(rows, 1).size(), 1U);
  EXPECT_TRUE(curves.Add(rows, 1).empty());
  rows.emplace_back(ThresholdEntry{5, -2, {}});
  curves.Add(rows, 2);
  std::get<ThresholdEntry>(rows[1]).Comment = "resets";
  curves.Add(rows, 2);
  ASSERT_EQ(curves.Marks().size(), 1U);
  EXPECT_EQ(curves.Marks()[0].Text, "resets");
}

TEST(RunCurves, AHundredThousandRowsInFallingOrderAreThere) {
  constexpr int kRowsOfALongRun = 100'000;
  std::vector<RunEntry> rows;
  rows.reserve(kRowsOfALongRun);
  for (int i = 0; i < kRowsOfALongRun; ++i) rows.push_back(Step(kRowsOfALongRun - i, {-10, 120}));
  const RunCurves curves(RunQuantity::Generator, {}, rows);
  EXPECT_EQ(curves.RowOf(0, 0), kRowsOfALongRun);
  EXPECT_EQ(curves.RowOf(0, kRowsOfALongRun - 1), 1);
}

TEST(RunCurves, TheAimsAreThoseOfTheSteps) {
  const RunCurves curves(RunQuantity::Power, {{}, 150, true, {{1, 120, -10, 76, 39, 42}, {2, 120, -10, 76}}}, kRows);
  EXPECT_EQ(curves.Curves()[2].Name, "Net");
  EXPECT_NEAR(curves.Curves()[2].Points.at(0).Value, 39.542, 1e-3) << "10 W forward and 1 W reverse";
  EXPECT_EQ(curves.Curves()[3].Points, (std::vector<CurvePoint>{{1, 39}}));
  EXPECT_EQ(curves.Curves()[4].Points, (std::vector<CurvePoint>{{1, 42}}));
}

}  // namespace
}  // namespace hylden
