// Every bus call, answer and wait of a run fails in turn, or is where the operator halts.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <tuple>

#include "e2e/DemoRuns.h"

namespace hylden {
namespace {

constexpr double kMostOvershootDb = 0.6;
constexpr int kWholeBus = -1;
constexpr double kTwoTimeOuts = 20;

std::string Joined(const auto& cells) {
  std::string text;
  for (const std::string& cell : cells) text += cell + ",";
  return text;
}

/// A run that is disturbed: what it does, what it has measured, and how it ended.
struct Subject {
  const char* name;
  void (*arrange)(DemoRuns&);
  void (*run)(DemoRuns&);
  std::vector<std::string> (*results)(const DemoRuns&);
  RunOutcome (*outcome)(const DemoRuns&);
  std::size_t points;        ///< that an undisturbed run measures
  const char* saveQuestion;  ///< title of the question whether to save; null where nobody asks
  bool accumulates;          ///< ended early, it has measured the first points of an undisturbed run
};

void PrintTo(const Subject& subject, std::ostream* out) {
  *out << subject.name;
}

std::vector<std::string> CompletedSteps(const DemoRuns& station) {
  std::vector<std::string> rows;
  for (const RunEntry& entry : station.Rows())
    if (const RunRow row = CellsOf(entry); !row[1].empty()) rows.push_back(Joined(row));
  return rows;
}

std::vector<std::string> CalibratedRows(const DemoRuns& station) {
  std::vector<std::string> rows;
  for (const CalRow& row : CompleteRows(station.level.Rows())) rows.push_back(Joined(CellsOf(row)));
  return rows;
}

std::vector<std::string> MeasuredPoints(const DemoRuns& station) {
  std::vector<std::string> points;
  for (const CablePoint& point : station.cable.Points())
    if (point.HasDirect()) points.push_back(testing::PrintToString(std::tuple(point.Freq, point.Direct, point.Insert)));
  return points;
}

/// Five steps, levelled by net power, with the induced current limited through the probe, and AM.
void FiveSteps(DemoRuns& station) {
  station.Load("net-power-fm.tst");
  TestDefinition& test = station.Test();
  test.StartFreq = 20, test.StopFreq = 24, test.StepType = StepType::Linear, test.LinearStep = 1;
  test.SweepDwell = 0.5;
  test.ModType = Modulation::Am, test.AmDepth = 80, test.AmModFreq = 1;
  test.ModOffBetweenFreqs = test.MonitorProbe = test.LimitCurrent = true;
  test.LimitMargin = 3, test.EUTCircuitImpedance = 150;
  test.InitLevOffset = -6, test.LevelInc = 10, test.InterDwell = 0.1F;
  station.bench.Connect(MeterAt::Probe);
  station.bench.OnChange([&station](const BenchState& state) {
    if (!state.Generator.RfOn) return;
    EXPECT_LE(state.TestLevelDbuv, station.TargetDbuv(state.Generator.FreqMHz) + kMostOvershootDb);
  });
}

/// 20, 21 and 22 MHz.
template <class Setup>
void ThreePoints(Setup& setup) {
  setup.StartFreq = 20, setup.StopFreq = 22, setup.StepType = StepType::Linear, setup.LinearStep = 1;
}
void LevelPoints(DemoRuns& station) {
  CalSetupRecord& setup = station.Setup();
  ThreePoints(setup);
  setup.RecordFwdPwr = setup.RecordRevPwr = setup.LimitFwdPwr = 1;
  setup.FwdPwrLimit = 25;
}
void CablePoints(DemoRuns& station) {
  ThreePoints(station.cable.Setup);
  station.cable.Setup.Level = -10;
  ASSERT_TRUE(station.cable.BuildPlan());
}
void DirectDone(DemoRuns& station) {
  CablePoints(station);
  station.DirectPass();
  ASSERT_EQ(station.cable.Outcome(), RunOutcome::Finished);
}

struct Undisturbed {
  std::vector<std::string> results;
  int calls = 0, reads = 0, yields = 0;
};

/// The run's messages but those about saving; none may be shown twice.
std::vector<std::string> MessagesShownOnce(const DemoRuns& station) {
  std::map<std::string, int> shown;
  for (const Message& message : station.dialogs.messages)
    if (!message.title.starts_with("Save ") && message.text != "No run data to save") ++shown[message.text];
  std::vector<std::string> texts;
  for (const auto& [text, count] : shown) {
    EXPECT_EQ(count, 1) << text;
    texts.push_back(text);
  }
  return texts;
}

class FaultSweep : public testing::TestWithParam<Subject> {
 protected:
  void SetUp() override {
    DemoRuns station;
    GetParam().arrange(station);
    const int calls = station.driver.Calls(), reads = station.driver.Reads();
    station.events.onYield = [&] { ++undisturbed.yields; };
    GetParam().run(station);
    EXPECT_EQ(GetParam().outcome(station), RunOutcome::Finished) << station.dialogs.LastText();
    EXPECT_THAT(MessagesShownOnce(station), testing::IsEmpty());
    undisturbed.results = GetParam().results(station);
    EXPECT_EQ(undisturbed.results.size(), GetParam().points);
    undisturbed.calls = station.driver.Calls() - calls;
    undisturbed.reads = station.driver.Reads() - reads;
    ASSERT_TRUE(undisturbed.calls > 20 && undisturbed.reads >= 3 && undisturbed.yields > 5);
  }

  /// Disturbs a run at the first, the second, ... of so many places, and looks at its end.
  template <class Disturb, class Expect>
  void Sweep(const std::string& what, int places, const Disturb& disturb, const Expect& expect) {
    for (int place = 1; place <= places && !HasFailure(); ++place) {
      SCOPED_TRACE(what + " " + std::to_string(place));
      DemoRuns station;
      GetParam().arrange(station);
      disturb(station, place);
      GetParam().run(station);
      ExpectPointsKept(station);
      expect(station);
    }
  }

  static void ExpectRfOffAtMessages(DemoRuns& station) {
    station.dialogs.onShow = [&](const Message& message) {
      if (message.text.starts_with("Error setting SigGen RF o")) return;  // the very call that failed
      EXPECT_FALSE(station.RfIsOn()) << message.text;
    };
  }

  /// What has to hold at the end of every run, however it ended.
  static void ExpectOrderlyEnd(DemoRuns& station) {
    EXPECT_FALSE(station.RfIsOn()) << "RF stayed on";
    EXPECT_FALSE(station.instruments.sigGen.RfIsOn());
    if (!GetParam().saveQuestion) return;
    const auto& messages = station.dialogs.messages;
    const auto asked = std::count_if(messages.begin(), messages.end(),
                                     [](const Message& m) { return m.title == GetParam().saveQuestion; });
    EXPECT_EQ(asked, station.Rows().empty() && station.level.Rows().empty() ? 0 : 1);
    EXPECT_TRUE(asked == 0 || !station.speaker.tones.empty()) << "it ended in silence";
  }

  /// What was measured is what an undisturbed run measures, as far as it came.
  void ExpectPointsKept(DemoRuns& station) const {
    const std::vector<std::string> results = GetParam().results(station);
    const bool finished = GetParam().outcome(station) == RunOutcome::Finished;
    ASSERT_LE(results.size(), undisturbed.results.size());
    EXPECT_TRUE(!finished || results.size() == undisturbed.results.size());
    if (!GetParam().accumulates) return;
    EXPECT_TRUE(std::equal(results.begin(), results.end(), undisturbed.results.begin()));
  }

  Undisturbed undisturbed;
};

TEST_P(FaultSweep, EverySingleBusFailureEndsInOrder) {
  int silent = 0;
  const auto fail = [](DemoRuns& station, int call) {
    station.driver.FailCall(call, gpib::kEnol);
    ExpectRfOffAtMessages(station);
  };
  Sweep("bus call", undisturbed.calls, fail, [&](DemoRuns& station) {
    ExpectOrderlyEnd(station);
    const std::vector<std::string> texts = MessagesShownOnce(station);
    const bool reported = std::any_of(texts.begin(), texts.end(), [](const std::string& text) {
      return text.find("iberr = ENOL <No Listener>") != std::string::npos;
    });
    if (reported) {
      EXPECT_GE(station.dialogs.pointerResets, 1) << "the pointer says that it is busy";
      return;
    }
    // Only the calls that read away stale answers may fail unnoticed: the run then goes on to its end.
    ++silent;
    EXPECT_EQ(GetParam().outcome(station), RunOutcome::Finished);
    EXPECT_THAT(texts, testing::IsEmpty());
  });
  EXPECT_LT(silent, undisturbed.calls);
}

TEST_P(FaultSweep, EverySingleExceptionIsToldOnceWithRfOff) {
  const auto throwAt = [](DemoRuns& station, int call) {
    station.driver.ThrowAtCall(call);
    ExpectRfOffAtMessages(station);
  };
  Sweep("bus call", undisturbed.calls, throwAt, [](DemoRuns& station) {
    ExpectOrderlyEnd(station);
    EXPECT_THAT(MessagesShownOnce(station), testing::ElementsAre(testing::StartsWith("Error # 51\rInternal error\r")));
  });
}

/// Meter and power meter go offline by starting anew.
void ForgetShutdownTexts(Instruments& instruments) {
  MeterDefinition meter = instruments.meter.Definition();
  PowerMeterDefinition powerMeter = instruments.pm.Definition();
  meter.Shutdown = powerMeter.Shutdown = "";
  instruments.meter.PutDefinition(meter);
  instruments.pm.PutDefinition(powerMeter);
}

/// An instrument that dies for good: the run ends with one box about it, and one more where RF may have stayed on.
void ExpectShortEnd(DemoRuns& station, int dead) {
  constexpr int kGenerator = 18;  // or the whole bus
  std::size_t failures = 0, warnings = 0;
  for (const std::string& text : MessagesShownOnce(station)) ++(text == kRfMayBeOn ? warnings : failures);
  EXPECT_LE(failures, 1U) << testing::PrintToString(station.dialogs.Texts());
  EXPECT_LE(station.driver.FrozenSeconds(), kTwoTimeOuts);
  const bool warned = warnings == 1;
  EXPECT_TRUE(warned || !station.RfIsOn()) << "RF stayed on without a word";
  EXPECT_TRUE(!warned || dead == kGenerator || dead == kWholeBus);
  EXPECT_EQ(station.instruments.sigGen.RfIsOn(), warned);
}

TEST_P(FaultSweep, AnInstrumentThatDiesForGoodEndsTheRunSoonAndIsToldOnce) {
  for (const int dead : {18, 13, 14, kWholeBus}) {
    const auto kill = [dead](DemoRuns& station, int call) {
      if (call % 3 == 0) ForgetShutdownTexts(station.instruments);
      dead == kWholeBus ? station.driver.KillBus(call) : station.driver.Kill(dead, call);
    };
    Sweep("address " + std::to_string(dead) + " from bus call", undisturbed.calls, kill,
          [dead](DemoRuns& station) { ExpectShortEnd(station, dead); });
  }
}

/// A command that timed out stands half in the generator, and the next one comes onto its tail.
TEST_P(FaultSweep, AGeneratorThatHangsAmidACommandEndsTheRunSoonAndWithRfOff) {
  constexpr int kGenerator = 18;
  const auto hang = [](DemoRuns& station, int call) { station.driver.FailCall(call, gpib::kEabo); };
  const auto stutter = [](DemoRuns& station, int call) { station.driver.LetStutter(kGenerator, call); };
  Sweep("hung at bus call", undisturbed.calls, hang, [](DemoRuns& station) {
    EXPECT_FALSE(station.RfIsOn()) << "RF stayed on";
    EXPECT_FALSE(station.instruments.sigGen.RfIsOn());
    EXPECT_LE(station.driver.FrozenSeconds(), kTwoTimeOuts);
  });
  Sweep("stuttering from bus call", undisturbed.calls, stutter,
        [](DemoRuns& station) { ExpectShortEnd(station, kGenerator); });
}

TEST(DeadAmplifier, TheOtherUnitIsResetWheneverOneOfThePairDies) {
  const auto arranged = [] {
    auto station = std::make_unique<DemoRuns>("ifi-station.eqp");
    station->Load("ifi-band-change.tst");
    return station;
  };
  const auto undisturbed = arranged();
  const int before = undisturbed->driver.Calls();
  int bringingUp = 0;
  undisturbed->display.onRow = [&](int row) {
    if (row == 1 && bringingUp == 0) bringingUp = undisturbed->driver.Calls() - before;
  };
  undisturbed->Run();
  const int calls = undisturbed->driver.Calls() - before;
  for (const int dead : {10, 9, 18}) {
    for (int call = 1; call <= calls && !testing::Test::HasFailure(); ++call) {
      SCOPED_TRACE("address " + std::to_string(dead) + " from bus call " + std::to_string(call));
      const auto station = arranged();
      station->driver.Kill(dead, call);
      station->Run();
      ExpectShortEnd(*station, dead);
      const auto& low = station->driver.SentTo(10);
      const auto& high = station->driver.SentTo(9);
      EXPECT_TRUE(low.empty() || low.back() == "8\r\n");
      EXPECT_TRUE(high.empty() || dead == 9 || high.back() == "ZA\r\n");
    }
  }
  for (int call = 1; call <= bringingUp && !testing::Test::HasFailure(); ++call) {
    SCOPED_TRACE("bus call " + std::to_string(call) + " alone");
    const auto station = arranged();
    station->driver.FailCall(call, gpib::kEnol);
    station->Run();
    for (const int unit : {10, 9}) {
      const auto& sent = station->driver.SentTo(unit);
      EXPECT_TRUE(sent.empty() || sent.back() == (unit == 10 ? "8\r\n" : "ZA\r\n")) << "it was not reset";
    }
  }
}

TEST_P(FaultSweep, EverySilentAnswerEndsTheRunInOrder) {
  const auto silence = [](DemoRuns& station, int read) { station.driver.SilenceReceive(read); };
  Sweep("answer", undisturbed.reads, silence, [](DemoRuns& station) {
    ExpectOrderlyEnd(station);
    EXPECT_EQ(GetParam().outcome(station), RunOutcome::EndedEarly);
    MessagesShownOnce(station);
  });
}

TEST_P(FaultSweep, EveryGarbledAnswerEndsTheRunWithAMessageThatShowsIt) {
  const auto garble = [](DemoRuns& station, int read) {
    station.driver.GarbleReceive(read, "MKA %&/ ?!\r\n");
    ExpectRfOffAtMessages(station);
  };
  Sweep("answer", undisturbed.reads, garble, [](DemoRuns& station) {
    ExpectOrderlyEnd(station);
    EXPECT_EQ(GetParam().outcome(station), RunOutcome::EndedEarly);
    EXPECT_THAT(MessagesShownOnce(station),
                testing::Contains(testing::EndsWith(" answer holds no number:\r\n\"MKA %&/ ?!\"")));
  });
}

TEST_P(FaultSweep, AHaltAtAnyWaitEndsInOrderAndRaisesNothing) {
  int yields = 0;
  double sentAtHalt = kNoValue, productAtHalt = kNoValue;
  const auto halt = [&](DemoRuns& station, int wait) {
    yields = 0;
    sentAtHalt = productAtHalt = kNoValue;
    station.bench.OnChange([&, wait](const BenchState& state) {
      if (yields < wait || !state.Generator.RfOn) return;
      EXPECT_LE(state.Generator.LevelDbm, sentAtHalt) << "the level was raised after the halt";
      EXPECT_LE(state.TestLevelDbuv, productAtHalt + 0.01) << "the level was raised after the halt";
    });
    station.events.onYield = [&, wait] {
      if (++yields != wait) return;
      const BenchState& state = station.bench.State();
      if (state.Generator.RfOn) sentAtHalt = state.Generator.LevelDbm, productAtHalt = state.TestLevelDbuv;
      station.shell.delay.RequestHalt();
    };
  };
  Sweep("wait", undisturbed.yields, halt, [](DemoRuns& station) {
    ExpectOrderlyEnd(station);
    EXPECT_THAT(MessagesShownOnce(station), testing::IsEmpty());
  });
}

TEST_P(FaultSweep, AHaltDuringAnyBusCallEndsInOrderAndRaisesNothing) {
  double sentAtHalt = kNoValue;
  bool halted = false;
  const auto halt = [&](DemoRuns& station, int place) {
    sentAtHalt = kNoValue;
    halted = false;
    station.bench.OnChange([&](const BenchState& state) {
      if (!halted || !state.Generator.RfOn) return;
      EXPECT_LE(state.Generator.LevelDbm, sentAtHalt) << "the level was raised after the halt";
    });
    const int call = station.driver.Calls() + place;
    station.driver.onCall = [&, call](int now) {
      if (now == call) station.shell.delay.RequestHalt();  // the call itself goes on
      if (now != call + 1) return;
      halted = true;
      if (station.RfIsOn()) sentAtHalt = station.bench.State().Generator.LevelDbm;
    };
  };
  Sweep("bus call", undisturbed.calls, halt, [](DemoRuns& station) {
    ExpectOrderlyEnd(station);
    EXPECT_THAT(MessagesShownOnce(station), testing::IsEmpty());
  });
}

RunOutcome CableOutcome(const DemoRuns& station) {
  return station.cable.Outcome();
}

INSTANTIATE_TEST_SUITE_P(
    Runs, FaultSweep,
    testing::Values(Subject{"Test", FiveSteps, [](auto& s) { s.Run(); }, CompletedSteps,
                            [](const auto& s) { return s.engine.Outcome(); }, 5, "Save Run Data", true},
                    Subject{"Level", LevelPoints, [](auto& s) { s.Calibrate(); }, CalibratedRows,
                            [](const auto& s) { return s.level.Outcome(); }, 3, "Save Calibration", true},
                    Subject{"CableDirect", CablePoints, [](auto& s) { s.DirectPass(); }, MeasuredPoints, CableOutcome,
                            3, nullptr, true},
                    Subject{"CableInsert", DirectDone, [](auto& s) { s.InsertPass(); }, MeasuredPoints, CableOutcome, 3,
                            nullptr, false}),
    [](const auto& subject) { return subject.param.name; });

}  // namespace
}  // namespace hylden
