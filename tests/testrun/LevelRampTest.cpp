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

struct RampCase {
  const char* name;
  LevelingMethod method;
  void (*arrange)(FakeStation&);
  double offset, level, kept;  ///< where it begins, ends, and what the next step begins below
  std::set<Readout> held;
};

TEST(LevelRamp, EndsAtItsLevelAndNotAbove) {
  const RampCase cases[] = {
      {"generator", kGenerator, [](auto&) {}, 12, -10, 0, {Readout::SigGenLevel}},
      {"generator, at its level", kGenerator, [](auto&) {}, 0, -10, 0, {Readout::SigGenLevel}},
      {"generator, limit far off", kGenerator, [](auto& s) { s.LimitCurrent(90); }, 60, -10, 0, {Readout::SigGenLevel}},
      // 75 dBuA at -16 dBm
      {"generator, limit", kGenerator, [](auto& s) { s.LimitCurrent(74.9); }, 60, -16, 6, {Readout::InducedLevel}},
      {"generator, exactly the limit", kGenerator, [](auto& s) { s.LimitCurrent(75); }, 60, -16, 6, {}},
      {"forward power", kForward, [](auto&) {}, 60, -9.9, 0, {Readout::ForwardPower}},
      {"forward power, above from the start", kForward, [](auto&) {}, -1, -9, 0, {Readout::ForwardPower}},
      {"forward power, less gain", kForward, [](auto& s) { s.gainDb = 47.5; }, 60, -7.4, -2.5, {Readout::ForwardPower}},
      {"forward power, limit", kForward, [](auto& s) { s.LimitCurrent(74.9); }, 60, -16, 6, {Readout::InducedLevel}},
      {"forward power, nearly the limit",
       kForward,
       [](auto& s) { s.LimitCurrent(75); },
       60,
       -15.9,
       5.9,
       {Readout::InducedLevel}},
      {"net power, nearly the limit",
       kNet,
       [](auto& s) { s.LimitCurrent(75); },
       60,
       -15.9,
       5.9,
       {Readout::InducedLevel}},
      {"net power", kNet, [](auto&) {}, 60, -10, 0, {Readout::ForwardPower}},
      {"net power, more gain", kNet, [](auto& s) { s.gainDb = 53; }, 60, -12.9, 3, {Readout::ForwardPower}},
      {"net power, limit", kNet, [](auto& s) { s.LimitCurrent(74.9); }, 60, -16, 6, {Readout::InducedLevel}},
      {"net power, nearly all reflected",
       kNet,
       [](auto& s) { s.returnLossDb = 1; },
       60,
       -8,
       -2,
       {Readout::ForwardPower}},
  };
  for (const RampCase& c : cases) {
    SCOPED_TRACE(c.name);
    FakeStation station(c.method);
    c.arrange(station);
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
