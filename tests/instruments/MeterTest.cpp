#include "instruments/Meter.h"

#include <gmock/gmock.h>

#include <functional>

#include "support/TestStation.h"

namespace hylden {
namespace {

const std::string kNoErrorReport = "Error in reading meter. \r\nibsta = &H2120 < END CMPL CIC>\r\nNo error, iberr =  0";

struct MeterTest : testing::Test, TestStation {};

TEST_F(MeterTest, OpensWithTheReferenceAtItsMaximum) {
  Redefine(meter, [](auto& d) { d.EndOfString = 1; });
  EXPECT_EQ(Out(meter.InitMeter()), (Strings{"FIND 13", "REMOTE 13", "> 13 IP\\r", "> 13 RL 120.0 DB\\r"}));
  Redefine(meter, [](auto& d) { d.InitString = ""; });
  EXPECT_EQ(Out(meter.InitMeter()), (Strings{"FIND 13", "REMOTE 13", "> 13 RL 120.0 DB\\r"}));
}

TEST_F(MeterTest, CommandsTheLevelInTheMetersUnits) {
  const std::tuple<std::int32_t, std::int32_t, double, const char*> cases[] = {
      {1, 0, 100, "RL 102.0 DB"},
      {1, 2, 100, "RL 102.0 DB"},
      {1, 1, 100, "RL 93.2 DB"},
      {0, 0, 100, "RL 0.125893 DB"},
      {2, 0, 100, "RL 125.892541 DB"},
      {3, 0, 100, "RL 42.0 DB"},
      {4, 0, 100, "RL -4.9897 DB"},
      // 1.479 uV; a range in volts that six decimals would round away
      {0, 1, 10.2, "RL 0.000001479108 DB"},
      {0, 0, -20, "RL 0.000000125893 DB"},
      {2, 0, 10.2, "RL 0.004074 DB"},
      {2, 0, -40, "RL 0.000012589254 DB"},
      {0, 0, 50, "RL 0.000398 DB"},
      {4, 0, 104.9897, "RL 0.0 DB"}};
  for (const auto& [units, type, level, sent] : cases) {
    SCOPED_TRACE(sent);
    TestStation s;
    Redefine(s.meter, [u = units, t = type](auto& d) { d.Units = u, d.Type = t, d.MinimumLevel = -60; });
    EXPECT_TRUE(s.meter.MeterSetLevel(level));
    EXPECT_TRUE(s.meter.MeterSetLevel(level));  // unchanged: not sent again
    EXPECT_EQ(s.bus.transcript.SentTo(13), (Strings{sent}));
  }
}

TEST_F(MeterTest, RefusesLevelsAndFrequenciesOutsideItsLimits) {
  EXPECT_TRUE(meter.MeterSetLevel(120));
  EXPECT_TRUE(meter.MeterSetFreq(1000));
  for (const double outside : {120.1, 19.9})
    EXPECT_EQ(Told(meter.MeterSetLevel(outside)), Strings{"Level requested exceeds meter's capability. "});
  for (const double outside : {1000.1, 0.09})
    EXPECT_EQ(Told(meter.MeterSetFreq(outside)), Strings{"Frequency requested exceeds meter's capability. "});
  EXPECT_EQ(Took(), (Strings{"> 13 RL 122.0 DB", "> 13 CF 1000.0 MZ"}));
}

TEST_F(MeterTest, ASettingThatDidNotGetThroughIsSentAgain) {
  for (const bool level : {false, true})
    for (const int next : {50, 60}) {  // neither the new setting nor the one before is known to stand
      const auto set = [&](double value) { return level ? meter.MeterSetLevel(value) : meter.MeterSetFreq(value); };
      EXPECT_TRUE(set(50));
      bus.FailLine("> 13 ", gpib::kEnol);
      EXPECT_FALSE(set(60));
      Took();
      EXPECT_TRUE(set(next));
      EXPECT_EQ(Took().size(), 1U) << level << " " << next;
    }
}

TEST_F(MeterTest, TellsBadUnitsBeforeTheWriteFailure) {
  Redefine(meter, [](auto& d) { d.Units = 5; });
  const Strings told = Told(meter.MeterSetLevel(100));
  ASSERT_EQ(told.size(), 2U);
  EXPECT_EQ(told[0], "Error, bad units value in meter config file");
  EXPECT_TRUE(told[1].starts_with("Error in writing command to meter. \r\n"));
}

TEST_F(MeterTest, SetsAScopesTimeBaseToHalfAPeriod) {
  Redefine(meter, [](auto& d) { d.Type = 1, d.MinimumFreq = 0; });
  EXPECT_TRUE(meter.MeterSetFreq(1));
  EXPECT_TRUE(meter.MeterSetFreq(100));
  EXPECT_FALSE(meter.MeterSetFreq(0));
  EXPECT_EQ(Took(), (Strings{"> 13 CF 0.0000005 MZ", "> 13 CF 0.000000005 MZ"}));
}

TEST_F(MeterTest, APendingTriggerWaitsOnlyForWhatIsLeft) {
  bus.Answer(13, "72.5");
  EXPECT_TRUE(meter.MeterTrigger());
  const auto start = t.clock.TickMs();
  t.clock.Advance(300);
  Took();
  EXPECT_EQ(meter.MeterRead(ReadMode::Single), 72.5);
  EXPECT_EQ(t.clock.TickMs() - start, 500);
  EXPECT_EQ(Took(), (Strings{"> 13 MA?", "< 13 72.5"}));
}

TEST_F(MeterTest, AHaltEndsItsSettlingAtOnce) {
  for (const bool pending : {false, true}) {
    TestStation s;
    EXPECT_TRUE(!pending || s.meter.MeterTrigger());
    const auto start = s.t.clock.TickMs();
    s.t.events.At(start + 100, [&] { s.t.shell.delay.RequestHalt(); });
    EXPECT_TRUE(FailsSilently(s.meter.MeterRead(ReadMode::AutoRange)));
    EXPECT_EQ(s.t.clock.TickMs() - start, 100) << pending;
  }
}

TEST_F(MeterTest, ASettlingTimeOfZeroAsksTheOperator) {
  bus.Answer(13, "72.5");
  EXPECT_EQ(meter.MeterRead(ReadMode::Single, 0), 72.5);
  EXPECT_TRUE(ToldOnce("Press Enter to continue"));
}

TEST_F(MeterTest, TurnsAnswersIntoLevelsAndOneWithoutAUsableValueIsAFailedReading) {
  const std::tuple<const char*, const char*, std::int32_t, std::optional<double>> cases[] = {
      {"VALUE 72.669 DBUV", "Mid(x, 7, 6)", 1, 72.669},
      {"  7.2669E+01\r\n", "", 1, 72.669},
      {"0.1", "", 0, 100},
      {"100 MV", "", 2, 100},
      {"12", "", 3, 72},
      {"-6.9897", "", 4, 100},
      {"", "", 1, {}},
      {"1E999", "", 1, {}},
      {"1E308", "", 0, {}},
      {"5", "Mid(x, 9, 1)", 1, {}}};
  for (const auto& [answer, parse, units, level] : cases) {
    SCOPED_TRACE(std::string(answer) + " / " + parse);
    TestStation s;
    Redefine(s.meter, [u = units, p = parse](auto& d) { d.Units = u, d.ParseCmd = p; });
    s.bus.fallback = [a = answer](int, const std::string&) { return a; };
    const auto read = s.meter.MeterRead(level ? ReadMode::Single : ReadMode::AutoRange);
    EXPECT_TRUE(level ? read.has_value() : bool(FailsWith(read, kNoErrorReport)));
    EXPECT_NEAR(read.value_or(0), level.value_or(0), 1e-4);
    EXPECT_EQ(s.meter.LastAnswer(), answer);
  }
}

TEST_F(MeterTest, AZeroThatWasAnsweredIsToldFromAnAnswerWithoutANumber) {
  for (const char* answer : {"0", " +0.0", "-.0 DBM", "\r\n0E5", "00:ERR"}) {
    bus.Answer(13, answer);
    EXPECT_EQ(meter.MeterRead(ReadMode::Single), 0) << answer;
  }
  for (const char* answer : {".", "-", "+.x", "x0", "--0", "+ 0", "E5", " ", "VALUE 72.669 DBUV"}) {
    bus.Answer(13, answer);
    EXPECT_TRUE(FailsWith(meter.MeterRead(ReadMode::Single), "The meter's answer holds no number:\r\n")) << answer;
  }
}

TEST_F(MeterTest, EachFailedCallOfAReadingIsToldOnceAndLosesTheTrigger) {
  for (const std::string call : {"> 13 TS", "> 13 MA?", "< 13"}) {
    SCOPED_TRACE(call);
    TestStation s;
    if (call[0] == '>') s.bus.FailLine(call, gpib::kEnol);
    s.bus.Silence(13);
    const bool triggering = call == "> 13 TS";
    const Strings told = Told(s.meter.MeterRead(ReadMode::Single));
    ASSERT_EQ(told.size(), 1U);
    EXPECT_TRUE(told[0].starts_with(triggering ? "Error in writing command to meter. \r\nibsta = &H"
                                               : "Error in reading meter. \r\nibsta = &H"));
    EXPECT_EQ(told[0].ends_with("\r\nError in reading meter. "), triggering);
    s.Took();
    EXPECT_FALSE(s.meter.MeterRead(ReadMode::Single));
    EXPECT_THAT(s.Took(), testing::Contains("> 13 TS"));
  }
}

TEST_F(MeterTest, RangesUntilTheLevelSitsUnderTheReference) {
  const std::tuple<const char*, Strings, double, Strings> cases[] = {
      {"in range", {"85"}, 85, {}},
      {"lower edge is in range", {"84"}, 84, {}},
      {"up", {"95", "100"}, 100, {"RL 107.0 DB"}},
      {"up to the maximum", {"115", "116"}, 116, {"RL 122.0 DB"}},
      {"at the reference", {"90", "95"}, 95, {"RL 102.0 DB"}},
      {"down in steps", {"60", "60", "60", "60"}, 60, {"RL 82.0 DB", "RL 72.0 DB", "RL 65.0 DB"}},
      {"down to the minimum, whatever it reads there",
       {"5", "5", "5", "5", "5"},
       5,
       {"RL 82.0 DB", "RL 72.0 DB", "RL 62.0 DB", "RL 52.0 DB"}},
  };
  for (const auto& [name, answers, result, wanted] : cases) {
    SCOPED_TRACE(name);
    TestStation s;
    Redefine(s.meter, [](auto& d) { d.MinimumLevel = 50; });
    EXPECT_TRUE(s.meter.MeterSetLevel(90));
    s.bus.transcript.Clear();
    s.bus.Answers(13, answers);
    EXPECT_EQ(s.meter.MeterRead(ReadMode::AutoRange), result);
    Strings levels;
    for (const std::string& sent : s.bus.transcript.SentTo(13)) {
      if (sent.starts_with("RL")) levels.push_back(sent);
    }
    EXPECT_EQ(levels, wanted);
  }
}

TEST_F(MeterTest, WhatIsNoLevelSteersNoRangeAndIsTold) {
  const std::tuple<std::int32_t, const char*, const char*> cases[] = {
      {1, "ERR", "The meter's answer holds no number:\r\n\"ERR\""},
      {1, "9.91E37", "The meter's answer is no level:\r\n\"9.91E37\""},
      {0, "-1", "The meter's answer is no level:\r\n\"-1\""},
      {1, "120.1", "The level is above the meter's maximum level, check setup"}};
  for (const auto& [units, answer, told] : cases) {
    SCOPED_TRACE(answer);
    Redefine(meter, [code = units](auto& d) { d.Units = code; });
    bus.Answer(13, answer);
    EXPECT_EQ(Told(meter.MeterRead(ReadMode::AutoRange)), Strings{told});
    EXPECT_THAT(Sent(13), testing::Not(testing::Contains(testing::StartsWith("RL"))));
  }
}

TEST_F(MeterTest, RangingReadsStaleAnswersAwayTriggersAndReadsAgain) {
  EXPECT_TRUE(meter.MeterSetLevel(90));
  bus.StaleAnswer(13, "99.9");
  bus.Answers(13, {"95", "100"});
  Took();
  const auto start = t.clock.TickMs();
  EXPECT_EQ(meter.MeterRead(ReadMode::AutoRange, 0.25), 100);
  EXPECT_EQ(t.clock.TickMs() - start, 500);
  EXPECT_EQ(Took(), (Strings{"TMO 8", "< 13 99.9", "< 13 !6", "TMO 13", "> 13 TS", "> 13 MA?", "< 13 95",
                             "> 13 RL 107.0 DB", "TMO 8", "< 13 !6", "TMO 13", "> 13 TS", "> 13 MA?", "< 13 100"}));
}

TEST_F(MeterTest, AReadingAtTheMaximumRepeatsUntilAHalt) {
  EXPECT_TRUE(meter.MeterSetLevel(120));
  bus.fallback = [](int, const std::string&) { return "120"; };
  t.events.At(t.clock.TickMs() + 5000, [this] { t.shell.delay.RequestHalt(); });
  EXPECT_TRUE(FailsSilently(meter.MeterRead(ReadMode::AutoRange)));
  EXPECT_EQ(bus.transcript.SentTo(13).size(), 20U);  // the level, nine readings, a trigger
}

TEST_F(MeterTest, RangingEndsWithOneMessageWhereThereIsNoRange) {
  // At the maximum, and a reading that depends on the range: the answers come again and again.
  for (const auto& answers : {Strings{"120"}, Strings{"95", "70"}}) {
    TestStation s;
    EXPECT_TRUE(s.meter.MeterSetLevel(90));
    std::size_t reads = 0;
    s.bus.fallback = [&](int, const std::string&) { return answers[reads++ % answers.size()]; };
    EXPECT_TRUE(FailsWith(s.meter.MeterRead(ReadMode::AutoRange),
                          "The meter finds no range for its reading of " + answers[0] + ".0 dBuV"));
    EXPECT_EQ(reads, std::size_t{Meter::kMostRangings + 1});
  }
}

TEST_F(MeterTest, ReadsOnceWithoutALevelCommand) {
  Redefine(meter, [](auto& d) { d.LevSetPrefix = d.LevSetSuffix = ""; });
  bus.Answer(13, "30");
  EXPECT_EQ(meter.MeterRead(ReadMode::AutoRange), 30);
}

TEST_F(MeterTest, ShutsDownByItsCommandOrByStartingAnew) {
  EXPECT_EQ(Out(meter.MeterShutdown()), (Strings{"> 13 BYE", "LOCAL 13"}));
  bus.FailLine("> 13 BYE", gpib::kEnol);
  EXPECT_TRUE(FailsWith(meter.MeterShutdown(), "Error in writing command to meter. \r\n"));
  Redefine(meter, [](auto& d) { d.Shutdown = ""; });
  Took();
  EXPECT_EQ(Out(meter.MeterShutdown()), (Strings{"FIND 13", "REMOTE 13", "> 13 IP", "> 13 RL 120.0 DB", "LOCAL 13"}));
  bus.FailLine("> 13 RL", gpib::kEnol);
  EXPECT_TRUE(FailsWith(meter.MeterShutdown(), "Error in writing command to meter. \r\n"));
}

}  // namespace
}  // namespace hylden
