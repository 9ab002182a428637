#include "calibration/PowerReading.h"

#include <gtest/gtest.h>

namespace hylden {
namespace {

struct SensorCase {
  double previous, frequency;
  const char* expected;
};
TEST(SensorPrompt, MovesTheSensorAtBandChangesOnly) {
  const SensorCase cases[] = {
      {0, 215, "Move sensor to low freq coupler"},
      {0, 215.001, "Move sensor to high freq coupler"},
      {215, 215.001, "Move sensor(s) to high freq coupler"},
      {300, 215, "Move sensor(s) to low freq coupler"},
      {100, 215, ""},
      {300, 216, ""},
  };
  for (const SensorCase& c : cases) EXPECT_EQ(SensorPrompt(c.previous, c.frequency, 215), c.expected);
}

}  // namespace
}  // namespace hylden
