#include "run/RunClock.h"

#include <gtest/gtest.h>

namespace hylden {
namespace {

TEST(RunClock, TellsHoursAndTheTimeOfDayAtTheEnd) {
  EXPECT_EQ(HoursText(0), "0:00:00");
  EXPECT_EQ(HoursText(62.05), "1:02:03");
  EXPECT_EQ(HoursText(59.999), "1:00:00");
  for (const double none : {-1.0, 1e9}) EXPECT_EQ(HoursText(none), "--");
  const LocalTime evening{2026, 11, 23, 23, 50, 40};
  EXPECT_EQ(EndText(evening, 5), "23:56");
  EXPECT_EQ(EndText(evening, 75), "1:06 +1 d");
}

}  // namespace
}  // namespace hylden
