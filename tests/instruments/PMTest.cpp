#include "instruments/PM.h"

#include <functional>

#include "support/TestStation.h"

namespace hylden {
namespace {

struct PMTest : testing::Test, TestStation {};

TEST_F(PMTest, TellsEverySensorTheFrequencyOncePerChange) {
  EXPECT_TRUE(pm.PwrMtrSetFreq(100));
  EXPECT_EQ(Out(pm.PwrMtrSetFreq(100)), (Strings{"> 7 AP", "> 7 FR 100.0 MZ", "> 7 BP", "> 7 FR 100.0 MZ"}));
  Redefine(pm, [](auto& d) { d.SelectCh2 = ""; });
  EXPECT_EQ(Out(pm.PwrMtrSetFreq(101)), (Strings{"> 7 AP", "> 7 FR 101.0 MZ"}));
  for (const double outside : {1001.0, 0.05})
    EXPECT_EQ(Told(pm.PwrMtrSetFreq(outside)), Strings{"Frequency requested exceeds power meter's capability. "});
  EXPECT_TRUE(Took().empty());
}

TEST_F(PMTest, DoesNotTuneTheWrongChannelAndSendsTheFrequencyAgain) {
  bus.FailLine("> 7 BP", gpib::kEnol);
  EXPECT_TRUE(FailsWith(pm.PwrMtrSetFreq(100), "Error in writing to power meter. \r\n"));
  EXPECT_EQ(Took().back(), "> 7 BP !2");
  EXPECT_EQ(Out(pm.PwrMtrSetFreq(100)), (Strings{"> 7 AP", "> 7 FR 100.0 MZ", "> 7 BP", "> 7 FR 100.0 MZ"}));
}

TEST_F(PMTest, LetsTheBandChooseTheChannel) {
  const Strings first = {"AP", "AT", "AR?"}, second = {"BP", "BT", "BR?"};
  const std::tuple<double, int, Strings> cases[] = {
      {215, 0, first}, {215.001, 0, second}, {500, 1, first}, {1, 2, second}, {1, 3, {}}};
  for (const auto& [freqMHz, channel, sent] : cases) {
    SCOPED_TRACE(testing::Message() << freqMHz << " MHz, channel " << channel);
    TestStation s;
    EXPECT_TRUE(s.pm.PwrMtrSetFreq(freqMHz));
    s.bus.transcript.Clear();
    s.bus.Answer(7, "-3.5");
    EXPECT_EQ(s.pm.ReadPower(channel), -3.5);
    EXPECT_EQ(s.bus.transcript.SentTo(7), sent);
  }
}

TEST_F(PMTest, TriesNothingMoreAfterAFailedSelection) {
  bus.FailLine("> 7 AP", gpib::kEnol);
  EXPECT_TRUE(FailsWith(pm.PwrMtrTrigger(1), "Error in writing to power meter. \r\n"));
  EXPECT_EQ(Took(), (Strings{"> 7 AP !2"}));
}

TEST_F(PMTest, ReadsAPendingTriggerAfterWhatIsLeftOfTheSettlingTimeOrAHalt) {
  bus.Answers(7, {"1", "2"});
  EXPECT_TRUE(pm.PwrMtrTrigger(1));
  auto start = t.clock.TickMs();
  t.clock.Advance(450);
  Took();
  EXPECT_EQ(pm.ReadPower(1), 1);
  EXPECT_EQ(t.clock.TickMs() - start, 500);
  EXPECT_EQ(Took(), (Strings{"> 7 AR?", "< 7 1"}));
  EXPECT_TRUE(pm.PwrMtrTrigger(1));
  start = t.clock.TickMs();
  t.events.At(start + 10, [this] { t.shell.delay.RequestHalt(); });
  EXPECT_TRUE(FailsSilently(pm.ReadPower(1)));
  EXPECT_EQ(t.clock.TickMs() - start, 10);
}

TEST_F(PMTest, TurnsAnswersIntoDbm) {
  const std::tuple<std::int32_t, const char*, double> cases[] = {
      {0, "0.001", 0},    {0, "0", -999}, {1, "+1.2345E+01", 12.345}, {2, "106.9897", 0}, {3, "223.607", 0},
      {4, "0.223607", 0}, {4, "0", -107}, {5, "46.9897", 0}};
  for (const auto& [units, answer, dbm] : cases) {
    SCOPED_TRACE(answer);
    TestStation s;
    Redefine(s.pm, [code = units](auto& d) { d.Units = code; });
    s.bus.Answer(7, answer);
    EXPECT_NEAR(s.pm.ReadPower(1).value(), dbm, 1e-3);
    EXPECT_EQ(s.pm.LastAnswer(), answer);
  }
}

TEST_F(PMTest, TellsWhyAReadingFailed) {
  bus.Answer(7, "5");
  Redefine(pm, [](auto& d) { d.Units = 6; });
  const Strings told = Told(pm.ReadPower(1));
  ASSERT_EQ(told.size(), 2U);
  EXPECT_EQ(told[0], "Error, bad units value in meter config file");
  EXPECT_TRUE(told[1].starts_with("Error in reading power meter. \r\n"));
  for (const std::string call : {"> 7 AR?", "< 7"}) {
    SCOPED_TRACE(call);
    TestStation s;
    if (call[0] == '>') s.bus.FailLine(call, gpib::kEnol);
    EXPECT_TRUE(FailsWith(s.pm.ReadPower(1), "Error in reading power meter. \r\nibsta = &H"));
  }
  const char* const noPowers[][2] = {{"A: 12", "The power meter's answer holds no number:\r\n\"A: 12\""},
                                     {"-9.9E37", "The power meter's answer is no power:\r\n\"-9.9E37\""},
                                     {"999", "The power meter's answer is no power:\r\n\"999\""}};
  for (const auto& [answer, why] : noPowers) {
    TestStation s;
    s.bus.Answer(7, answer);
    EXPECT_EQ(Told(s.pm.ReadPower(1)), Strings{why});
  }
}

TEST_F(PMTest, OpensAndShutsDown) {
  EXPECT_TRUE(pm.InitPwrMtr());
  EXPECT_EQ(Out(pm.PwrMtrShutdown()), (Strings{"FIND 7", "REMOTE 7", "> 7 PR", "> 7 BYE", "LOCAL 7"}));
  Redefine(pm, [](auto& d) { d.Shutdown = d.InitString = ""; });
  EXPECT_EQ(Out(pm.PwrMtrShutdown()), (Strings{"FIND 7", "REMOTE 7", "LOCAL 7"}));
  Redefine(pm, [](auto& d) { d.Shutdown = "BYE"; });
  bus.FailLine("> 7 BYE", gpib::kEnol);
  EXPECT_TRUE(FailsWith(pm.PwrMtrShutdown(), "Error in writing command to power meter. \r\n"));
  Redefine(pm, [](auto& d) { d.Shutdown = ""; });
  bus.FailLine("REMOTE 7", gpib::kEnol);
  EXPECT_TRUE(FailsWith(pm.PwrMtrShutdown(), "Error in setting PwrMtr to remote mode. \r\n"));
}

}  // namespace
}  // namespace hylden
