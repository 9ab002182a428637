// Every bus call, answer and wait of a run fails in turn, or is where the operator halts.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>

#include "BenchStation.h"

namespace hylden {
namespace {

constexpr double kMostOvershootDb = 0.6;
constexpr int kWholeBus = -1;

/// A run that is disturbed: what it does, what it has measured, and how it ended.
struct Subject {
  const char* name;
  void (*arrange)(BenchStation&);
  void (*run)(BenchStation&);
  std::vector<std::string> (*results)(const BenchStation&);
  RunOutcome (*outcome)(const BenchStation&);
  std::size_t points;        ///< that an undisturbed run measures
  const char* saveQuestion;  ///< title of the question whether to save; null where nobody asks
  bool accumulates;          ///< ended early, it has measured the first points of an undisturbed run
};

void PrintTo(const Subject& subject, std::ostream* out) {
  *out << subject.name;
}

std::string Joined(const std::vector<std::string>& cells) {
  std::string text;
  for (const std::string& cell : cells) text += cell + ",";
  return text;
}

std::vector<std::string> CompletedSteps(const BenchStation& station) {
  std::vector<std::string> rows;
  for (const RunEntry& entry : station.Rows())
    if (const RunRow row = CellsOf(entry); !row[1].empty()) rows.push_back(Joined({row.begin(), row.end()}));
  return rows;
}

std::vector<std::string> CalibratedRows(const BenchStation& station) {
  std::vector<std::string> rows;
  for (const CalRow& row : CompleteRows(station.level.Rows())) {
    const auto cells = CellsOf(row);
    rows.push_back(Joined({cells.begin(), cells.end()}));
  }
  return rows;
}

std::vector<std::string> MeasuredPoints(const BenchStation& station) {
  std::vector<std::string> points;
  for (const CablePoint& point : station.cable.Points())
    if (point.HasDirect())
      points.push_back(
          Joined({std::to_string(point.Freq), std::to_string(point.Direct), std::to_string(point.Insert)}));
  return points;
}

RunOutcome TestOutcome(const BenchStation& station) {
  return station.engine.Outcome();
}
RunOutcome LevelOutcome(const BenchStation& station) {
  return station.level.Outcome();
}
RunOutcome CableOutcome(const BenchStation& station) {
  return station.cable.Outcome();
}

/// Five steps, levelled by net power, with the induced current limited through the probe, and AM.
void FiveSteps(BenchStation& station) {
  station.Load("net-power-fm.tst");
  TestDefinition& test = station.Test();
  test.StartFreq = 20;
  test.StopFreq = 24;
  test.StepType = StepType::Linear;
  test.LinearStep = 1;
  test.SweepDwell = 0.5;
  test.ModType = Modulation::Am;
  test.AmDepth = 80;
  test.AmModFreq = 1;
  test.ModOffBetweenFreqs = true;
  test.MonitorProbe = test.LimitCurrent = true;
  test.LimitMargin = 3;
  test.EUTCircuitImpedance = 150;
  test.InitLevOffset = -6;
  test.LevelInc = 10;
  test.InterDwell = 0.1F;
  station.bench.Connect(MeterAt::Probe);
  station.bench.OnChange([&station](const BenchState& state) {
    if (!state.Generator.RfOn) return;
    EXPECT_LE(state.TestLevelDbuv, station.TargetDbuv(state.Generator.FreqMHz) + kMostOvershootDb);
  });
}

void ThreePoints(BenchStation& station) {
  CalSetupRecord& setup = station.Setup();
  setup.StartFreq = 20;
  setup.StopFreq = 22;
  setup.StepType = StepType::Linear;
  setup.LinearStep = 1;
  setup.RecordFwdPwr = setup.RecordRevPwr = setup.LimitFwdPwr = 1;
  setup.FwdPwrLimit = 25;
}

void ThreeCablePoints(BenchStation& station) {
  CableSetup& setup = station.cable.Setup;
  setup.StartFreq = 20;
  setup.StopFreq = 22;
  setup.StepType = StepType::Linear;
  setup.LinearStep = 1;
  setup.Level = -10;
  ASSERT_TRUE(station.cable.BuildPlan());
}

void DirectDone(BenchStation& station) {
  ThreeCablePoints(station);
  station.DirectPass();
  ASSERT_EQ(station.cable.Outcome(), RunOutcome::Finished);
}

struct Undisturbed {
  std::vector<std::string> results;
  int calls = 0, reads = 0, yields = 0;
};

/// The run's messages but those about saving; none may be shown twice.
std::vector<std::string> MessagesShownOnce(const BenchStation& station) {
  std::map<std::string, int> shown;
  for (const Message& message : station.machine.dialogs.messages)
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
  static std::unique_ptr<BenchStation> Arranged() {
    auto station = std::make_unique<BenchStation>();
    GetParam().arrange(*station);
    return station;
  }

  static Undisturbed RunUndisturbed() {
    const auto station = Arranged();
    Undisturbed result;
    const int calls = station->driver.Calls(), reads = station->driver.Reads();
    station->machine.events.onYield = [&] { ++result.yields; };
    GetParam().run(*station);
    EXPECT_EQ(GetParam().outcome(*station), RunOutcome::Finished) << station->machine.dialogs.LastText();
    EXPECT_THAT(MessagesShownOnce(*station), testing::IsEmpty());
    result.results = GetParam().results(*station);
    EXPECT_EQ(result.results.size(), GetParam().points);
    result.calls = station->driver.Calls() - calls;
    result.reads = station->driver.Reads() - reads;
    return result;
  }

  /// What has to hold at the end of every run, however it ended.
  static void ExpectOrderlyEnd(BenchStation& station) {
    EXPECT_FALSE(station.bench.State().Generator.RfOn) << "RF stayed on";
    EXPECT_FALSE(station.instruments.sigGen.RfIsOn());
    if (!GetParam().saveQuestion) return;
    const int asked = station.Asked(GetParam().saveQuestion);
    const bool recorded = !station.Rows().empty() || !station.level.Rows().empty();
    EXPECT_EQ(asked, recorded ? 1 : 0);
    EXPECT_TRUE(asked == 0 || !station.machine.speaker.tones.empty()) << "it ended in silence";
  }

  /// What was measured is what an undisturbed run measures, as far as it came.
  static void ExpectPointsKept(BenchStation& station, const Undisturbed& undisturbed) {
    const std::vector<std::string> results = GetParam().results(station);
    const bool finished = GetParam().outcome(station) == RunOutcome::Finished;
    ASSERT_LE(results.size(), undisturbed.results.size());
    EXPECT_TRUE(!finished || results.size() == undisturbed.results.size());
    if (!GetParam().accumulates) return;
    EXPECT_TRUE(std::equal(results.begin(), results.end(), undisturbed.results.begin()));
  }
};

TEST_P(FaultSweep, EverySingleBusFailureEndsInOrder) {
  const Undisturbed undisturbed = RunUndisturbed();
  ASSERT_GT(undisturbed.calls, 20);
  int silent = 0;
  for (int call = 1; call <= undisturbed.calls && !HasFailure(); ++call) {
    SCOPED_TRACE("bus call " + std::to_string(call));
    const auto station = Arranged();
    station->driver.FailCall(call, gpib::kEnol);
    station->machine.dialogs.onShow = [&](const Message& message) {
      if (message.text.starts_with("Error setting SigGen RF o")) return;  // the very call that failed
      EXPECT_FALSE(station->bench.State().Generator.RfOn) << message.text;
    };
    GetParam().run(*station);
    ExpectOrderlyEnd(*station);
    ExpectPointsKept(*station, undisturbed);
    const std::vector<std::string> texts = MessagesShownOnce(*station);
    const bool reported = std::any_of(texts.begin(), texts.end(), [](const std::string& text) {
      return text.find("iberr = ENOL <No Listener>") != std::string::npos;
    });
    if (reported) continue;
    // Only the calls that read away stale answers may fail unnoticed: the run then goes on to its end.
    ++silent;
    EXPECT_EQ(GetParam().outcome(*station), RunOutcome::Finished);
    EXPECT_THAT(texts, testing::IsEmpty());
  }
  EXPECT_LT(silent, undisturbed.calls);
}

TEST_P(FaultSweep, EverySingleExceptionIsToldOnceWithRfOff) {
  const Undisturbed undisturbed = RunUndisturbed();
  for (int call = 1; call <= undisturbed.calls && !HasFailure(); ++call) {
    SCOPED_TRACE("bus call " + std::to_string(call));
    const auto station = Arranged();
    station->driver.ThrowAtCall(call);
    station->machine.dialogs.onShow = [&](const Message& message) {
      EXPECT_FALSE(station->bench.State().Generator.RfOn) << message.text;
    };
    GetParam().run(*station);
    ExpectOrderlyEnd(*station);
    ExpectPointsKept(*station, undisturbed);
    EXPECT_THAT(MessagesShownOnce(*station), testing::ElementsAre(testing::StartsWith("Error # 51\rInternal error\r")));
  }
}

/// An instrument that dies for good: the run ends with one box about it, and one more where RF may have stayed on.
void ExpectShortEnd(BenchStation& station, int dead) {
  constexpr int kGenerator = 18;  // or the whole bus
  constexpr double kTwoTimeOuts = 20;
  const std::string kRfMayBeOn = "RF could not be switched off: switch the amplifier off by hand.";
  std::size_t failures = 0, warnings = 0;
  for (const std::string& text : MessagesShownOnce(station)) ++(text == kRfMayBeOn ? warnings : failures);
  EXPECT_LE(failures, 1U) << testing::PrintToString(station.machine.dialogs.Texts());
  EXPECT_LE(station.driver.FrozenSeconds(), kTwoTimeOuts);
  const bool warned = warnings == 1;
  EXPECT_TRUE(warned || !station.bench.State().Generator.RfOn) << "RF stayed on without a word";
  EXPECT_TRUE(!warned || dead == kGenerator || dead == kWholeBus);
  EXPECT_EQ(station.instruments.sigGen.RfIsOn(), warned);
}

TEST_P(FaultSweep, AnInstrumentThatDiesForGoodEndsTheRunSoonAndIsToldOnce) {
  const Undisturbed undisturbed = RunUndisturbed();
  for (const int dead : {18, 13, 14, kWholeBus}) {
    for (int call = 1; call <= undisturbed.calls && !HasFailure(); ++call) {
      SCOPED_TRACE("address " + std::to_string(dead) + " from bus call " + std::to_string(call));
      const auto station = Arranged();
      if (call % 3 == 0) station->ForgetShutdownTexts();
      dead == kWholeBus ? station->driver.KillBus(call) : station->driver.Kill(dead, call);
      GetParam().run(*station);
      ExpectShortEnd(*station, dead);
      ExpectPointsKept(*station, undisturbed);
    }
  }
}

TEST(DeadAmplifier, TheOtherUnitIsResetWheneverOneOfThePairDies) {
  const auto arranged = [] {
    auto station = std::make_unique<BenchStation>("ifi-station.eqp");
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
  const Undisturbed undisturbed = RunUndisturbed();
  ASSERT_GE(undisturbed.reads, 3);
  for (int read = 1; read <= undisturbed.reads && !HasFailure(); ++read) {
    SCOPED_TRACE("answer " + std::to_string(read));
    const auto station = Arranged();
    station->driver.SilenceReceive(read);
    GetParam().run(*station);
    ExpectOrderlyEnd(*station);
    EXPECT_EQ(GetParam().outcome(*station), RunOutcome::EndedEarly);
    ExpectPointsKept(*station, undisturbed);
    MessagesShownOnce(*station);
  }
}

TEST_P(FaultSweep, EveryGarbledAnswerEndsTheRunWithAMessageThatShowsIt) {
  const Undisturbed undisturbed = RunUndisturbed();
  for (int read = 1; read <= undisturbed.reads && !HasFailure(); ++read) {
    SCOPED_TRACE("answer " + std::to_string(read));
    const auto station = Arranged();
    station->driver.GarbleReceive(read, "MKA %&/ ?!\r\n");
    station->machine.dialogs.onShow = [&](const Message& message) {
      EXPECT_FALSE(station->bench.State().Generator.RfOn) << message.text;
    };
    GetParam().run(*station);
    ExpectOrderlyEnd(*station);
    EXPECT_EQ(GetParam().outcome(*station), RunOutcome::EndedEarly);
    ExpectPointsKept(*station, undisturbed);
    const std::vector<std::string> texts = MessagesShownOnce(*station);
    EXPECT_THAT(texts, testing::Contains(testing::EndsWith(" answer holds no number:\r\n\"MKA %&/ ?!\"")));
  }
}

TEST_P(FaultSweep, AHaltAtAnyWaitEndsInOrder) {
  const Undisturbed undisturbed = RunUndisturbed();
  ASSERT_GT(undisturbed.yields, 5);
  for (int wait = 1; wait <= undisturbed.yields && !HasFailure(); ++wait) {
    SCOPED_TRACE("wait " + std::to_string(wait));
    const auto station = Arranged();
    int yields = 0;
    double sentAtHalt = kNoValue, productAtHalt = kNoValue;
    station->bench.OnChange([&](const BenchState& state) {
      if (yields < wait || !state.Generator.RfOn) return;
      EXPECT_LE(state.Generator.LevelDbm, sentAtHalt) << "the level was raised after the halt";
      EXPECT_LE(state.TestLevelDbuv, productAtHalt + 0.01) << "the level was raised after the halt";
    });
    station->machine.events.onYield = [&] {
      if (++yields != wait) return;
      const BenchState& state = station->bench.State();
      if (state.Generator.RfOn) sentAtHalt = state.Generator.LevelDbm, productAtHalt = state.TestLevelDbuv;
      station->machine.shell.delay.RequestHalt();
    };
    GetParam().run(*station);
    ExpectOrderlyEnd(*station);
    ExpectPointsKept(*station, undisturbed);
    EXPECT_THAT(MessagesShownOnce(*station), testing::IsEmpty());
  }
}

INSTANTIATE_TEST_SUITE_P(Runs, FaultSweep,
                         testing::Values(Subject{"Test", FiveSteps, [](auto& s) { s.Run(); }, CompletedSteps,
                                                 TestOutcome, 5, "Save Run Data", true},
                                         Subject{"Level", ThreePoints, [](auto& s) { s.Calibrate(); }, CalibratedRows,
                                                 LevelOutcome, 3, "Save Calibration", true},
                                         Subject{"CableDirect", ThreeCablePoints, [](auto& s) { s.DirectPass(); },
                                                 MeasuredPoints, CableOutcome, 3, nullptr, true},
                                         Subject{"CableInsert", DirectDone, [](auto& s) { s.InsertPass(); },
                                                 MeasuredPoints, CableOutcome, 3, nullptr, false}),
                         [](const auto& subject) { return subject.param.name; });

}  // namespace
}  // namespace hylden
