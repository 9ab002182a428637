// Every bus call, answer and wait of a calibration fails in turn, or is where the operator halts.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "CalibrationStation.h"

namespace hylden {
namespace {

/// A calibration that is disturbed: what it does, what it has measured, and whether it asks whether to save.
struct Subject {
  const char* name;
  std::function<void(CalibrationStation&)> arrange;
  std::function<void(CalibrationStation&)> run;
  std::function<std::vector<std::string>(const CalibrationStation&)> results;
  std::function<RunOutcome(const CalibrationStation&)> outcome;
  bool asks;         ///< whether to save
  bool accumulates;  ///< ended early, it has measured the first points of an undisturbed run
};

void PrintTo(const Subject& subject, std::ostream* out) {
  *out << subject.name;
}

std::vector<std::string> CalibratedRows(const CalibrationStation& station) {
  std::vector<std::string> rows;
  for (const auto& cells : CompleteRows(station.level.Rows())) {
    std::string& row = rows.emplace_back();
    for (const std::string& cell : cells) row += cell + ",";
  }
  return rows;
}

std::vector<std::string> MeasuredPoints(const CalibrationStation& station) {
  std::vector<std::string> points;
  for (const CablePoint& point : station.cable.Points())
    if (point.HasDirect())
      points.push_back(std::to_string(point.Freq) + " " + std::to_string(point.Direct) + " " +
                       std::to_string(point.Insert));
  return points;
}

RunOutcome LevelOutcome(const CalibrationStation& station) {
  return station.level.Outcome();
}
RunOutcome CableOutcome(const CalibrationStation& station) {
  return station.cable.Outcome();
}

void ThreePoints(CalibrationStation& station) {
  CalSetupRecord& setup = station.Setup();
  setup.StartFreq = 20;
  setup.StopFreq = 22;
  setup.StepType = 0;
  setup.LinearStep = 1;
  setup.RecordFwdPwr = setup.RecordRevPwr = setup.LimitFwdPwr = 1;
  setup.FwdPwrLimit = 25;
}

void ThreeCablePoints(CalibrationStation& station) {
  CableSetup& setup = station.cable.Setup;
  setup.StartFreq = 20;
  setup.StopFreq = 22;
  setup.StepType = 0;
  setup.LinearStep = 1;
  setup.Level = -10;
  ASSERT_TRUE(station.cable.BuildPlan());
}

void DirectDone(CalibrationStation& station) {
  ThreeCablePoints(station);
  station.DirectPass();
  ASSERT_EQ(station.cable.Outcome(), RunOutcome::Finished);
  station.machine.speaker.tones.clear();
}

struct Undisturbed {
  std::vector<std::string> results;
  int calls = 0, reads = 0, yields = 0;
};

class CalibrationSweep : public testing::TestWithParam<Subject> {
 protected:
  std::unique_ptr<CalibrationStation> Arranged() {
    auto station = std::make_unique<CalibrationStation>();
    GetParam().arrange(*station);
    return station;
  }

  Undisturbed RunUndisturbed() {
    const auto station = Arranged();
    Undisturbed result;
    const int calls = station->driver.Calls(), reads = station->driver.Reads();
    station->machine.events.onYield = [&] { ++result.yields; };
    GetParam().run(*station);
    EXPECT_EQ(GetParam().outcome(*station), RunOutcome::Finished) << station->machine.dialogs.LastText();
    EXPECT_EQ(GetParam().results(*station).size(), 3U);
    result.results = GetParam().results(*station);
    result.calls = station->driver.Calls() - calls;
    result.reads = station->driver.Reads() - reads;
    return result;
  }

  /// What has to hold at the end of every run, however it ended.
  void ExpectOrderlyEnd(CalibrationStation& station, bool maybeNotStarted) {
    EXPECT_FALSE(station.bench.State().Generator.RfOn) << "RF stayed on";
    EXPECT_FALSE(station.instruments.sigGen.RfIsOn());
    if (!GetParam().asks) return;
    if (!maybeNotStarted || !station.level.Rows().empty()) {
      EXPECT_EQ(station.CalibrationQuestions(), 1);
    }
    EXPECT_LE(station.CalibrationQuestions(), 1);
  }

  /// What was measured before the failure is what an undisturbed run measures.
  void ExpectPointsKept(CalibrationStation& station, const Undisturbed& undisturbed) {
    const std::vector<std::string> results = GetParam().results(station);
    ASSERT_LE(results.size(), undisturbed.results.size());
    if (GetParam().outcome(station) == RunOutcome::Finished) return;
    if (!GetParam().accumulates) return;
    for (std::size_t i = 0; i < results.size(); ++i) EXPECT_EQ(results[i], undisturbed.results[i]);
  }
};

/// The run's messages but those about saving; none may be shown twice.
std::vector<std::string> MessagesShownOnce(const CalibrationStation& station) {
  std::map<std::string, int> shown;
  for (const Message& message : station.machine.dialogs.messages)
    if (message.title != "Save Calibration") ++shown[message.text];
  std::vector<std::string> texts;
  for (const auto& [text, count] : shown) {
    EXPECT_EQ(count, 1) << text;
    texts.push_back(text);
  }
  return texts;
}

TEST_P(CalibrationSweep, EverySingleBusFailureEndsInOrder) {
  const Undisturbed undisturbed = RunUndisturbed();
  ASSERT_GT(undisturbed.calls, 20);
  int silent = 0;
  for (int call = 1; call <= undisturbed.calls; ++call) {
    SCOPED_TRACE("bus call " + std::to_string(call));
    const auto station = Arranged();
    station->driver.FailCall(call, gpib::kEnol);
    GetParam().run(*station);
    ExpectOrderlyEnd(*station, true);
    ExpectPointsKept(*station, undisturbed);
    const std::vector<std::string> texts = MessagesShownOnce(*station);
    const bool reported = std::any_of(texts.begin(), texts.end(), [](const std::string& text) {
      return text.find("iberr = ENOL <No Listener>") != std::string::npos;
    });
    // Only the calls that read away stale answers may fail unnoticed: the run then goes on to its end.
    if (!reported) {
      ++silent;
      EXPECT_EQ(GetParam().outcome(*station), RunOutcome::Finished);
      EXPECT_TRUE(texts.empty()) << texts.front();
    }
    if (testing::Test::HasFailure()) return;
  }
  EXPECT_LT(silent, undisturbed.calls);
}

TEST_P(CalibrationSweep, EveryGarbledOrSilentAnswerEndsInOrder) {
  const Undisturbed undisturbed = RunUndisturbed();
  ASSERT_GE(undisturbed.reads, 3);
  for (int read = 1; read <= undisturbed.reads; ++read) {
    for (const bool silent : {false, true}) {
      SCOPED_TRACE((silent ? "silent answer " : "garbled answer ") + std::to_string(read));
      const auto station = Arranged();
      if (silent)
        station->driver.SilenceReceive(read);
      else
        station->driver.GarbleReceive(read, "\x80%&/ ?!\r\n");
      GetParam().run(*station);
      ExpectOrderlyEnd(*station, false);
      if (silent) {
        EXPECT_EQ(GetParam().outcome(*station), RunOutcome::EndedEarly);
        ExpectPointsKept(*station, undisturbed);
      }
      MessagesShownOnce(*station);
      if (testing::Test::HasFailure()) return;
    }
  }
}

TEST_P(CalibrationSweep, AHaltAtAnyWaitEndsInOrder) {
  const Undisturbed undisturbed = RunUndisturbed();
  ASSERT_GT(undisturbed.yields, 5);
  for (int wait = 1; wait <= undisturbed.yields; ++wait) {
    SCOPED_TRACE("wait " + std::to_string(wait));
    const auto station = Arranged();
    int yields = 0;
    double levelAtHalt = kNoValue;
    bool raised = false;
    station->bench.OnChange([&](const BenchState& state) {
      if (yields >= wait && state.Generator.RfOn && state.Generator.LevelDbm > levelAtHalt + 0.01) raised = true;
    });
    station->machine.events.onYield = [&] {
      if (++yields != wait) return;
      const GeneratorState& generator = station->bench.State().Generator;
      levelAtHalt = generator.RfOn ? generator.LevelDbm : kNoValue;
      station->machine.shell.delay.RequestHalt();
    };
    GetParam().run(*station);
    ExpectOrderlyEnd(*station, false);
    ExpectPointsKept(*station, undisturbed);
    EXPECT_THAT(MessagesShownOnce(*station), testing::IsEmpty());
    EXPECT_FALSE(raised) << "the level was raised after the halt";
    if (testing::Test::HasFailure()) return;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Calibrations, CalibrationSweep,
    testing::Values(Subject{"Level", ThreePoints, [](CalibrationStation& s) { s.Calibrate(); }, CalibratedRows,
                            LevelOutcome, true, true},
                    Subject{"CableDirect", ThreeCablePoints, [](CalibrationStation& s) { s.DirectPass(); },
                            MeasuredPoints, CableOutcome, false, true},
                    Subject{"CableInsert", DirectDone, [](CalibrationStation& s) { s.InsertPass(); }, MeasuredPoints,
                            CableOutcome, false, false}),
    [](const auto& subject) { return subject.param.name; });

}  // namespace
}  // namespace hylden
