#include "platform/VirtualTime.h"

#include <gtest/gtest.h>

#include <vector>

namespace hylden {
namespace {

TEST(VirtualClock, PassesMidnightAndMonthEnd) {
  VirtualClock clock({2024, 2, 29, 23, 59, 58});
  clock.Advance(2500);
  const LocalTime now = clock.Now();
  EXPECT_EQ(now.month, 3);
  EXPECT_EQ(now.day, 1);
  EXPECT_EQ(now.hour, 0);
  EXPECT_EQ(now.second, 0);
  EXPECT_DOUBLE_EQ(clock.SecondsSinceMidnight(), 0.5);
}

TEST(VirtualClock, OnAWallClockOnlyTheWaitsAreVirtual) {
  VirtualClock wall({2026, 3, 7, 23, 59, 0});
  VirtualClock clock(static_cast<const Clock&>(wall));  // a copy otherwise
  clock.Advance(3'600'000);
  EXPECT_DOUBLE_EQ(clock.SecondsSinceMidnight(), 59 * 60.0);
  EXPECT_EQ(clock.Now().hour, 23);
  EXPECT_EQ(clock.Now().day, 7);
  wall.Advance(60'000);
  EXPECT_EQ(clock.Now().day, 8);
}

TEST(VirtualEventLoop, StopsAtATimerOnTheWayToTheDeadline) {
  VirtualClock clock;
  VirtualEventLoop events(clock);
  std::vector<std::int64_t> ran;
  const std::int64_t start = clock.TickMs();
  events.At(start + 300, [&] { ran.push_back(clock.TickMs() - start); });
  events.At(start + 2000, [&] { ran.push_back(clock.TickMs() - start); });
  events.Yield(start + 1000);
  EXPECT_EQ(clock.TickMs(), start + 300);
  events.Yield(start + 1000);
  EXPECT_EQ(clock.TickMs(), start + 1000);
  EXPECT_EQ(ran, std::vector<std::int64_t>{300});
}

TEST(VirtualEventLoop, NeverGoesBackForAPassedDeadlineOrAnOverdueTimer) {
  VirtualClock clock;
  VirtualEventLoop events(clock);
  const std::int64_t start = clock.TickMs();
  bool ran = false;
  events.At(start - 500, [&] { ran = true; });
  events.Yield(start - 100);
  EXPECT_TRUE(ran);
  EXPECT_EQ(clock.TickMs(), start);
  events.Yield();
  EXPECT_EQ(clock.TickMs(), start + 1);
}

TEST(VirtualEventLoop, LetsATimerWaitByItself) {
  VirtualClock clock;
  VirtualEventLoop events(clock);
  const std::int64_t start = clock.TickMs();
  std::vector<int> order;
  events.At(start + 10, [&] {
    order.push_back(1);
    events.Yield(start + 50);
    order.push_back(3);
  });
  events.At(start + 20, [&] { order.push_back(2); });
  events.Yield(start + 100);
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

}  // namespace
}  // namespace hylden
