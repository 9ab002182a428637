#include "calibration/CalRunCurves.h"

#include <gtest/gtest.h>

namespace hylden {
namespace {

TEST(CalRunCurves, HoldTheCompleteRowsAndTheGainOfThoseWithAForwardPower) {
  CalRows rows = {{1, -10, 120, 40.0, 30.0}, {2, -11, 120.2, -999.0, {}}, {3, -12, 120.1, 41.0, {}, false}};
  rows[0].Reached = 120.3;
  rows[2].Reached = 120.4;  // the second is one of a former run
  CalRunCurves gain(CalQuantity::Gain, rows, {}), level(CalQuantity::Level, rows, {{1, 120}});
  ASSERT_EQ(gain.Curves()[0].Points.size(), 2U) << "the last one waits for its reverse power";
  EXPECT_EQ(gain.Curves()[0].Points[0].Value, 50);
  EXPECT_EQ(gain.PlaceOf(2), std::nullopt) << "no forward power, no gain";
  rows[2].Complete = true;
  EXPECT_EQ(gain.Add(rows, 3).size(), 1U);
  EXPECT_TRUE(gain.Add(rows, 3).empty());
  EXPECT_EQ(level.Curves()[0].Points.at(0), (CurvePoint{1, 120.3}));
  EXPECT_EQ(level.Curves()[2].Points.at(0), (CurvePoint{1, 120.5}));
}

TEST(CableCurves, ShowWhatThePassHasMeasuredBesideTheDirectReadings) {
  const std::vector<CablePoint> points = {{1, 0, 90, 89, 1}, {2, 0, 91, 89, 2}};
  const CablePassShown insert{true, true, 1}, direct{true, false, 1};
  EXPECT_EQ(CableCurves(CableQuantity::Loss, points, {}).Curves()[0].Points.size(), 2U);
  EXPECT_EQ(CableCurves(CableQuantity::Loss, points, direct).Curves()[0].Points.size(), 0U) << "of an earlier pass";
  CableCurves readings(CableQuantity::Readings, points, insert);
  EXPECT_EQ(readings.Curves()[0].Points.size(), 2U);
  EXPECT_EQ(readings.Curves()[1].Points.size(), 1U);
  EXPECT_EQ(readings.Add(points, 2, {true, true, 2}).size(), 1U);
  EXPECT_EQ(readings.RowOf(1, 1), 2);
}

}  // namespace
}  // namespace hylden
