#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include "e2e/DemoRuns.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

struct TimedRuns : testing::TestWithParam<const char*> {};

/// The run that comes takes what was predicted, to 5 %.
void ExpectPredicted(DemoRuns& s, const char* what) {
  s.Run();
  const RunInfo& info = s.engine.Info();
  EXPECT_GT(info.PredictedSeconds, 0) << what;
  EXPECT_NEAR(info.PredictedSeconds / info.ActualSeconds, 1, 0.05) << what << ", " << info.ActualSeconds << " s";
}

TEST_P(TimedRuns, AfterOneRunTheNextIsPredicted) {
  DemoRuns s;
  s.Load(GetParam());
  s.Run();
  EXPECT_EQ(s.engine.Info().PredictedSeconds, 0) << "there was none before";
  EXPECT_GT(s.engine.Info().ActualSeconds, 0);
  ExpectPredicted(s, "the same");
  s.Test().SweepDwell *= 2.5, s.Test().DiscreteDwell *= 2.5, s.Test().InterDwell *= 1.5F;
  ExpectPredicted(s, "other dwells");
  s.Test().StopFreq = s.Test().StartFreq + (s.Test().StopFreq - s.Test().StartFreq) / 3;
  ExpectPredicted(s, "fewer frequencies");
}
INSTANTIATE_TEST_SUITE_P(Methods, TimedRuns,
                         testing::Values("substitution-am.tst", "forward-power-constant-peak.tst", "net-power-fm.tst",
                                         "probe-limited-pulse.tst", "sweep-and-list.tst"));

TEST(TimedRun, AHaltedRunTeachesWhatItsStepsTook) {
  DemoRuns s;
  s.Load("forward-power-constant-peak.tst");
  s.display.onStep = [&](int step) {
    if (step == 12) s.shell.delay.RequestHalt();
  };
  s.Run();
  EXPECT_GT(s.engine.Info().ActualSeconds, 0);
  s.display.onStep = nullptr;
  ExpectPredicted(s, "behind a halted one");
}

TEST(TimedRun, WhatWaitsForTheOperatorAndAStalledStepSpoilNoEstimate) {
  DemoRuns s;
  s.Load("net-power-fm.tst");
  s.display.onStep = [&](int step) {
    if (step == 5) s.clock.Advance(60'000);
    if (step == 7) s.shell.dialogs.Tell("Move the sensor");
  };
  s.dialogs.onShow = [&](const Message&) { s.clock.Advance(600'000); };
  s.Run();
  const double stalled = s.engine.Info().ActualSeconds;
  s.display.onStep = nullptr;
  ExpectPredicted(s, "behind a stall");
  EXPECT_NEAR(stalled - s.engine.Info().ActualSeconds, 60, 5);
}

TEST(TimedRun, ACalibrationIsPredictedToo) {
  DemoRuns s;
  s.Calibrate();
  s.Setup().Dwell *= 2;
  ASSERT_TRUE(s.level.Prepare());
  int h = 0, m = 0, sec = 0;
  ASSERT_EQ(std::sscanf(s.calibrationDisplay.ahead.back().Text.c_str(), "takes about %d:%d:%d", &h, &m, &sec), 3);
  const std::int64_t start = s.clock.TickMs();
  s.level.Run();
  EXPECT_NEAR((h * 3600 + m * 60 + sec) * 1000.0 / static_cast<double>(s.clock.TickMs() - start), 1, 0.05);
}

TEST(TimedRun, ThePassesOfACableArePredictedToo) {
  DemoRuns s;
  s.cable.Setup.StartFreq = 1, s.cable.Setup.StopFreq = 20, s.cable.Setup.LogStep = 10;
  for (const bool again : {false, true}) {
    ASSERT_TRUE(s.cable.BuildPlan());
    s.calibrationDisplay.ahead.clear();
    const std::int64_t start = s.clock.TickMs();
    s.DirectPass();
    ASSERT_EQ(s.cable.Outcome(), RunOutcome::Finished) << s.dialogs.LastText();
    int h = 0, m = 0, sec = 0;
    const std::string told = s.calibrationDisplay.ahead.front().Text;
    EXPECT_EQ(std::sscanf(told.c_str(), "takes about %d:%d:%d", &h, &m, &sec) == 3, again) << told;
    if (again) {
      EXPECT_NEAR((h * 3600 + m * 60 + sec) * 1000.0, static_cast<double>(s.clock.TickMs() - start), 2500);
    }
    s.cable.Setup.Dwell *= 2;
  }
}

TEST(TimedRun, TellsTheRestAtThePaceThatItHas) {
  DemoRuns s;
  s.Load("substitution-am.tst");
  s.Run();
  s.display.onStep = [&](int) { s.clock.Advance(1000); };  // an instrument that has become slow
  s.display.ahead.clear();
  const std::int64_t start = s.clock.TickMs();
  s.Run();
  const double actual = static_cast<double>(s.clock.TickMs() - start) / 1000;
  EXPECT_GT(actual, 1.5 * s.engine.Info().PredictedSeconds);
  double share = 0;
  std::size_t told = 0;
  for (const RunAhead& ahead : s.display.ahead) {
    int h = 0, m = 0, sec = 0;
    if (std::sscanf(ahead.Text.c_str(), "about %d:%d:%d left", &h, &m, &sec) != 3) continue;
    EXPECT_GE(ahead.Share, share) << "progress does not go back";
    share = ahead.Share;
    if (++told != 35) continue;
    EXPECT_NEAR(share, 0.5, 0.1);
    EXPECT_NEAR(h * 3600 + m * 60 + sec, actual / 2, actual / 10);
  }
  EXPECT_GT(told, 60U);
  EXPECT_GT(share, 0.95);
}

TEST(TimedRun, ATimesFileThatCanNotBeUsedCostsTheEstimateOnly) {
  DemoRuns s;
  s.Load("substitution-am.tst");
  std::filesystem::create_directory(s.directory.File("times.txt"));
  for (int run = 0; run < 2; ++run) {
    s.Run();
    EXPECT_EQ(s.engine.Outcome(), RunOutcome::Finished);
    EXPECT_EQ(s.engine.Info().PredictedSeconds, 0);
    EXPECT_TRUE(s.display.ahead.empty() || s.display.ahead.back().Text.empty());
  }
  const std::vector<RunTimes> none = TimesOfText("Hylden times 1\r\n1 1 nan 1 1 1 1 1 1 1 1 1 test; a\r\n1 2\r\n");
  EXPECT_TRUE(none.empty());
}

}  // namespace
}  // namespace hylden
