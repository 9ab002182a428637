#include "testrun/LevelRamp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

#include "documents/TestDefinition.h"

namespace hylden {
namespace {

constexpr auto kGenerator = LevelingMethod::SigGen, kForward = LevelingMethod::ForwardPower,
               kNet = LevelingMethod::NetPower;

/// An amplifier, a coupling device and a probe, which follow the generator. It is at -10 dBm for 40 dBm forward, 30 dBm
/// reverse and 81 dBuA, and the ramp begins 60 dB below.
struct FakeStation : RampStation {
  explicit FakeStation(LevelingMethod method) {
    test.LevelingMethod = method;
    test.LevelInc = 6;
  }
  void LimitCurrent(double limitDbua) {
    test.MonitorProbe = test.LimitCurrent = true;
    limit = limitDbua;
  }
  std::optional<ReachedLevel> Ramp(double offset = 60) {
    level = static_cast<float>(-10 - offset);
    StepTargets targets = *TargetsFor(test, {-10, 120, 40, 39.5424F});
    targets.InducedLimit = limit;
    return LevelRamp(*this, test, targets).From(offset);
  }

  bool Raise(float levelDbm) override {
    EXPECT_FALSE(over) << "the ramp goes on behind its end";
    if (++calls == endAtCall) return !(over = true);
    level = levelDbm;
    highest = std::max(highest, level);
    if (level > collapseAbove) gainDb = 30;
    return true;
  }
  void StartDwell() override { dwellAt = level; }
  std::optional<double> ReadForward() override { return Reading(double{level} + gainDb); }
  std::optional<double> ReadReverse() override { return Reading(double{level} + gainDb - returnLossDb); }
  std::optional<double> ReadProbe() override { return Reading(double{level} + 91); }
  void Held(Readout by) override { held.insert(by); }
  bool Fail(const std::string& text) override {
    EXPECT_FALSE(std::exchange(over, true)) << "it fails once";
    told = text;
    return false;
  }
  bool FailAloud(const std::string& text) override {
    aloud = true;
    return Fail(text);
  }

  TestDefinition test;
  double limit = 120, gainDb = 50, returnLossDb = 10;
  float collapseAbove = std::numeric_limits<float>::infinity();
  int endAtCall = 0;  ///< this raise or reading fails
  int calls = 0;
  float level = -200, highest = -200, dwellAt = -200;
  bool over = false, aloud = false;
  std::string told;
  std::set<Readout> held;

 private:
  std::optional<double> Reading(double reading) {
    EXPECT_FALSE(over) << "it reads behind its end";
    if (++calls == endAtCall) over = true;
    return over ? std::nullopt : std::optional(reading);
  }
};

TEST(LevelRamp, EndsAtItsLevelAndNotAbove) {
  constexpr double kNone = 200;
  const std::set<Readout> generator{Readout::SigGenLevel}, induced{Readout::InducedLevel}, power{Readout::ForwardPower};
  const struct {
    const char* name;
    LevelingMethod method;
    double offset, limit, gainDb, returnLossDb;
    double level, kept;  ///< where it ends, and what the next step begins below
    std::set<Readout> held;
  } cases[] = {
      {"generator", kGenerator, 12, kNone, 50, 10, -10, 0, generator},
      {"generator, at its level", kGenerator, 0, kNone, 50, 10, -10, 0, generator},
      {"generator, limit far off", kGenerator, 60, 90, 50, 10, -10, 0, generator},
      // 75 dBuA at -16 dBm
      {"generator, limit", kGenerator, 60, 74.9, 50, 10, -16, 6, induced},
      {"generator, exactly the limit", kGenerator, 60, 75, 50, 10, -16, 6, {}},
      {"forward power", kForward, 60, kNone, 50, 10, -9.9, 0, power},
      {"forward power, above from the start", kForward, -1, kNone, 50, 10, -9, 0, power},
      {"forward power, less gain", kForward, 60, kNone, 47.5, 10, -7.4, -2.5, power},
      {"forward power, limit", kForward, 60, 74.9, 50, 10, -16, 6, induced},
      {"forward power, nearly the limit", kForward, 60, 75, 50, 10, -15.9, 5.9, induced},
      {"net power, nearly the limit", kNet, 60, 75, 50, 10, -15.9, 5.9, induced},
      {"net power", kNet, 60, kNone, 50, 10, -10, 0, power},
      {"net power, more gain", kNet, 60, kNone, 53, 10, -12.9, 3, power},
      {"net power, limit", kNet, 60, 74.9, 50, 10, -16, 6, induced},
      {"net power, nearly all reflected", kNet, 60, kNone, 50, 1, -8, -2, power},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    FakeStation station(c.method);
    station.gainDb = c.gainDb, station.returnLossDb = c.returnLossDb;
    if (c.limit < kNone) station.LimitCurrent(c.limit);
    const auto reached = station.Ramp(c.offset);
    ASSERT_TRUE(reached) << station.told;
    EXPECT_NEAR(reached->Applied.SigGenLevel, c.level, 0.011);
    EXPECT_NEAR(reached->KeptOffset, c.kept, 0.011);
    EXPECT_LE(station.highest, c.level + 0.011);
    EXPECT_EQ(station.dwellAt, reached->Applied.SigGenLevel) << "the dwell is that of the level reached";
    EXPECT_EQ(reached->Applied.TestLevel, 120);
    EXPECT_EQ(station.held, c.held);
    const StepMarks& marks = reached->Applied.Marks;
    EXPECT_EQ(marks.SigGenAtCalibration + marks.InducedAboveLimit + marks.PowerAboveTarget + marks.ForwardCapHeld,
              static_cast<int>(c.held.size()));
    EXPECT_EQ(marks.ForwardCapHeld, station.returnLossDb == 1);
    EXPECT_EQ(reached->Applied.Induced.has_value(), station.test.MonitorProbe);
    EXPECT_EQ(reached->Applied.FwdPwr.has_value(), c.method != kGenerator);
    EXPECT_EQ(reached->Applied.RevPwr.has_value(), c.method == kNet);
  }
}

struct RefusalCase {
  const char* name;
  LevelingMethod method;
  void (*arrange)(FakeStation&);
  float highest;
  bool aloud;
  const char* text;
};

TEST(LevelRamp, EndsWithItsReasonBeforeTheLevelIsTooHigh) {
  constexpr const char* kLowGain = "Warning, amplifier gain is more than 3dB lower\r\nthan it should be.  Check setup.";
  constexpr const char* kLowGainByForward =
      "Warning, amplifier gain is more than 3dB lower\r\nthan it should be.  Check setup.\r\n"
      "Cal SigGen = -10.0dBm and Cal FwdPwr = 40.0dBm";
  const RefusalCase cases[] = {
      {"low gain", kForward, [](auto& s) { s.gainDb = 46; }, -7, true, kLowGainByForward},
      {"low gain", kNet, [](auto& s) { s.gainDb = 46; }, -6.5, false, kLowGain},
      {"gain that collapses", kForward, [](auto& s) { s.collapseAbove = -12; }, -7, true, kLowGainByForward},
      {"gain that collapses", kNet, [](auto& s) { s.collapseAbove = -12; }, -9, false, kLowGain},
      {"all reflected", kNet, [](auto& s) { s.returnLossDb = 0; }, -28, false,
       "Error, reverse power reading greater than forward power,\r\ncheck setup carefully."},
  };
  for (const RefusalCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.name << ", method " << static_cast<int>(c.method));
    FakeStation station(c.method);
    c.arrange(station);
    EXPECT_FALSE(station.Ramp());
    EXPECT_EQ(station.told, c.text);
    EXPECT_EQ(station.aloud, c.aloud);
    EXPECT_LE(station.highest, c.highest);
  }
}

TEST(LevelRamp, AFailureOrHaltAtAnyRaiseOrReadingEndsItThere) {
  for (const auto method : {kGenerator, kForward, kNet}) {
    for (const bool limited : {false, true}) {
      int calls = 1;
      for (int n = 0; n <= calls; ++n) {  // call 0 is never made: the ramp that counts the calls
        SCOPED_TRACE(testing::Message() << "method " << static_cast<int>(method) << ", call " << n);
        FakeStation station(method);
        if (limited) station.LimitCurrent(76);
        station.endAtCall = n;
        EXPECT_EQ(station.Ramp().has_value(), n == 0);
        EXPECT_EQ(station.told, "") << "the station has told it";
        if (n == 0) calls = station.calls;
      }
      EXPECT_GT(calls, 8);
    }
  }
}

}  // namespace
}  // namespace hylden
