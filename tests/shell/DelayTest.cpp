#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/TestShell.h"

namespace hylden {
namespace {

class DelayTest : public testing::Test, protected CountdownWindow {
 protected:
  void Countdown(double seconds) override { countdown_.push_back(seconds); }

  /// Ticks that pass during the action.
  template <class Action>
  std::int64_t Took(Action action) {
    const std::int64_t start = t_.clock.TickMs();
    action();
    return t_.clock.TickMs() - start;
  }

  TestShell t_;
  BDelay& delay_ = t_.shell.delay;
  std::vector<double> countdown_;
};

TEST_F(DelayTest, ZeroSecondsAsksTheOperator) {
  delay_.RequestHalt();
  EXPECT_TRUE(delay_.Delay(0, true));
  ASSERT_EQ(t_.dialogs.Texts(), std::vector<std::string>{"Press Enter to continue"});
  EXPECT_EQ(t_.dialogs.messages[0].title, "");
  EXPECT_EQ(t_.dialogs.messages[0].buttons, MessageButtons::Ok);
}

TEST_F(DelayTest, LastsItsTimeToTheNearestMillisecond) {
  EXPECT_EQ(Took([&] { EXPECT_TRUE(delay_.Delay(0.0306, true)); }), 31);
  EXPECT_EQ(Took([&] { EXPECT_TRUE(delay_.Delay(2, false)); }), 2000);
}

TEST_F(DelayTest, NegativeOrTinyTimesMakeOnePass) {
  int passes = 0;
  t_.events.onYield = [&] { ++passes; };
  for (const double seconds : {-1.0, 0.0001, std::nan("")}) {
    EXPECT_EQ(Took([&] { EXPECT_TRUE(delay_.Delay(seconds, true)); }), 0) << seconds;
  }
  EXPECT_EQ(passes, 3);
  EXPECT_TRUE(t_.dialogs.messages.empty());
}

TEST_F(DelayTest, AHaltEndsOnlyAWaitThatMayBeHalted) {
  t_.events.At(t_.clock.TickMs() + 500, [&] { delay_.RequestHalt(); });
  EXPECT_EQ(Took([&] { EXPECT_TRUE(delay_.Delay(2, false)); }), 2000);
  delay_.StartDelay(3);
  EXPECT_EQ(Took([&] { EXPECT_TRUE(delay_.WaitDelay(false)); }), 3000);
  delay_.ClearHalt();
  t_.events.At(t_.clock.TickMs() + 500, [&] { delay_.RequestHalt(); });
  EXPECT_EQ(Took([&] { EXPECT_FALSE(delay_.Delay(2, true)); }), 500);
  EXPECT_TRUE(delay_.HaltRequested()) << "a wait does not use the request up";
}

TEST_F(DelayTest, AHaltInTheLastPassStillCounts) {
  t_.events.At(t_.clock.TickMs() + 1000, [&] { delay_.RequestHalt(); });
  EXPECT_FALSE(delay_.Delay(1, true));
}

TEST_F(DelayTest, WorkDoneMeanwhileCountsTowardTheTimer) {
  delay_.StartDelay(1);
  t_.clock.Advance(700);
  EXPECT_EQ(Took([&] { EXPECT_TRUE(delay_.WaitDelay(true)); }), 300);
  delay_.StartDelay(1);
  t_.clock.Advance(1500);
  EXPECT_EQ(Took([&] { EXPECT_TRUE(delay_.WaitDelay(true, this)); }), 0);
  EXPECT_EQ(countdown_, std::vector<double>{-0.5});
}

TEST_F(DelayTest, TheCountdownStopsWhereItWasWhenHalted) {
  const std::int64_t start = t_.clock.TickMs();
  delay_.StartDelay(3);
  t_.events.At(start + 1000, [] {});
  t_.events.At(start + 1400, [&] { delay_.RequestHalt(); });
  EXPECT_FALSE(delay_.WaitDelay(true, this));
  EXPECT_EQ(t_.clock.TickMs(), start + 1400);
  EXPECT_EQ(countdown_, (std::vector<double>{3, 2}));
}

TEST_F(DelayTest, ATimerOfZeroWaitsForTheOperator) {
  t_.dialogs.Answer(MessageAnswer::Cancel);
  delay_.StartDelay(0);
  EXPECT_FALSE(delay_.WaitDelay(false));
  EXPECT_TRUE(delay_.WaitDelay(true));
  ASSERT_EQ(t_.dialogs.messages.size(), 2u);
  EXPECT_EQ(t_.dialogs.LastText(), "Press Enter to continue, Escape to halt");
  EXPECT_EQ(t_.dialogs.messages[0].title, "Wait for user");
  EXPECT_EQ(t_.dialogs.messages[0].buttons, MessageButtons::OkCancel);
}

TEST_F(DelayTest, WaitUntilEndsAtItsTickOrAtAHalt) {
  const std::int64_t start = t_.clock.TickMs();
  delay_.WaitUntil(start + 250);
  EXPECT_EQ(t_.clock.TickMs(), start + 250);
  t_.events.At(start + 300, [&] { delay_.RequestHalt(); });
  delay_.WaitUntil(start + 900);
  EXPECT_EQ(t_.clock.TickMs(), start + 300);
}

}  // namespace
}  // namespace hylden
