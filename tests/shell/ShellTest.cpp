#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <new>

#include "shell/FormPosition.h"
#include "support/ScriptedBus.h"
#include "support/SilentRun.h"
#include "support/TestShell.h"

namespace hylden {
namespace {

TEST(FormPosition, AWindowNeverOpensOffTheScreen) {
  const TwipSize window{4000, 3001};
  const std::vector<TwipScreen> screen{{{0, 0}, {15000, 12000}}};
  const TwipPlace centred{5500, 4500};  // 4499.5 goes to the even neighbour
  const std::pair<const char*, std::optional<TwipPlace>> cases[] = {{"", std::nullopt},
                                                                    {"1,", std::nullopt},
                                                                    {"1200,900", TwipPlace{1200, 900}},
                                                                    {"0,0", TwipPlace{0, 0}},
                                                                    {"11000,8999", TwipPlace{11000, 8999}},
                                                                    {"11001,900", centred},
                                                                    {"1200,9000", centred},
                                                                    {"-1,900", centred},
                                                                    {"1200,-15", centred},
                                                                    {"99999,900", centred},
                                                                    {"1200.5,899.6", TwipPlace{1200, 900}},
                                                                    {"-0.4,10", TwipPlace{0, 10}},
                                                                    {"1200", std::nullopt},
                                                                    {"left,top", std::nullopt}};
  for (const auto& [text, expected] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(SetFormPosition(text, window, screen), expected);
  }
}

TEST(FormPosition, AWindowComesBackOnEveryScreenThatIsThere) {
  const TwipSize window{4000, 3000};
  const TwipScreen middle{{0, 0}, {57600, 32400}}, left{{-28800, -1500}, {28800, 16200}},
      right{{57600, 0}, {28800, 16200}};
  const std::vector<TwipScreen> all{middle, left, right};
  const TwipPlace centred{26800, 14700};
  for (const char* text : {"-28800,-1500", "-2000,100", "50000,29000", "56000,13000", "80000,500"}) {
    SCOPED_TRACE(text);
    const auto place = SetFormPosition(text, window, all);
    ASSERT_TRUE(place);
    EXPECT_EQ(FormPositionText(*place), text);
  }
  for (const char* text : {"-28801,0", "80000,13300", "56000,14000", "-4000,-1600"})
    EXPECT_EQ(SetFormPosition(text, window, all), centred) << text;
  EXPECT_EQ(SetFormPosition("80000,500", window, {middle}), centred) << "its screen has gone";
}

class ShellTest : public testing::Test {
 protected:
  void Logging(const std::string& value) {
    t_.directory.Write("Hylden.ini", "[System]\r\nLogToFile=" + value + "\r\n");
  }

  ScriptedBus bus_;
  VirtualClock clock_{{2026, 3, 7, 8, 5, 9}};
  TestShell t_{bus_, clock_};
  TempDir work_;
  WorkingDirectory inWork_{work_.Path()};
};

TEST_F(ShellTest, TheRunLogIsKeptOnlyWhileItIsSwitchedOn) {
  t_.shell.log.LogFile("unseen");
  EXPECT_FALSE(work_.Exists("runlog.hyl"));
  Logging("1");
  t_.shell.log.LogFile("Test run started\r\nStart Freq: .15");
  clock_.Advance(57000);
  t_.shell.log.LogFile("Frequency sweep finished");
  Logging("0");
  t_.shell.log.LogFile("unseen");
  EXPECT_EQ(work_.Read("runlog.hyl"),
            "03/07/26 08:05:09 - Test run started\r\nStart Freq: .15\r\n"
            "03/07/26 08:06:06 - Frequency sweep finished\r\n");
}

TEST_F(ShellTest, ARunLogThatCannotBeWrittenDisturbsNobodyAndComplainsOnce) {
  Logging("1");
  work_.Write("runlog.hyl/inside", "");  // a directory of that name
  testing::internal::CaptureStderr();
  t_.shell.log.LogFile("one");
  t_.shell.log.LogFile("two");
  const std::string complaint = testing::internal::GetCapturedStderr();
  EXPECT_EQ(std::count(complaint.begin(), complaint.end(), '\n'), 1);
  EXPECT_NE(complaint.find("runlog.hyl"), std::string::npos);
  EXPECT_TRUE(t_.dialogs.messages.empty());
}

TEST_F(ShellTest, ARunLogThatIsAPipeHoldsNobodyUp) {
  Logging("1");
  ASSERT_EQ(mkfifo("runlog.hyl", 0600), 0);
  testing::internal::CaptureStderr();
  t_.shell.log.LogFile("one");
  EXPECT_NE(testing::internal::GetCapturedStderr().find("runlog.hyl"), std::string::npos);
}

TEST_F(ShellTest, SettingsThatCannotBeReadAreToldOnceAndNeverDuringARun) {
  t_.directory.Write("Hylden.ini/inside", "");  // a directory of that name
  SilentRun run;
  ASSERT_TRUE(t_.shell.ClaimInstruments(run));
  t_.shell.log.LogFile("Test run started");
  EXPECT_TRUE(t_.dialogs.messages.empty());
  t_.shell.ReleaseInstruments();
  t_.shell.log.LogFile("Instruments taken offline");
  t_.shell.log.LogFile("once more");
  ASSERT_EQ(t_.dialogs.messages.size(), 1U);
  EXPECT_NE(t_.dialogs.LastText().find(t_.directory.File("Hylden.ini")), std::string::npos);
}

TEST_F(ShellTest, AFailureThatNobodyForesawHaltsARunWithRfOffBeforeItIsReported) {
  for (const bool run : {false, true}) {
    SilentRun claiming;
    if (run) t_.shell.ClaimInstruments(claiming);
    t_.dialogs.onShow = [&](const Message&) { EXPECT_EQ(claiming.rfOff, run); };
    t_.shell.ReportUnforeseen(std::bad_alloc(), "frmRunTest.mnuHelp");
    EXPECT_EQ(t_.shell.delay.HaltRequested(), run);
    EXPECT_EQ(t_.dialogs.LastText(), "Error # 51\rInternal error\rfrmRunTest.mnuHelp\r");
    EXPECT_EQ(t_.dialogs.messages.back().title, "Error");
    EXPECT_EQ(t_.dialogs.messages.back().icon, MessageIcon::Critical);
    t_.shell.ReleaseInstruments();
  }
}

TEST_F(ShellTest, AFailureIsToldOnceWithRfOff) {
  SilentRun claiming;
  t_.shell.ClaimInstruments(claiming);
  EXPECT_FALSE(t_.shell.Ok(Done(Because())));
  EXPECT_TRUE(t_.shell.Ok(Result<double>(1)));
  EXPECT_FALSE(claiming.rfOff);
  t_.dialogs.onShow = [&](const Message&) { EXPECT_TRUE(claiming.rfOff); };
  EXPECT_FALSE(t_.shell.Ok(Done(Because("Bad data"))));
  EXPECT_EQ(t_.dialogs.Texts(), std::vector<std::string>{"Bad data"});
}

}  // namespace
}  // namespace hylden
