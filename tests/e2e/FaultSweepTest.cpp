#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "BenchStation.h"

namespace hylden {
namespace {

constexpr double kMostOvershootDb = 0.6;
constexpr int kSteps = 5;

/// Five steps, levelled by net power, with the induced current limited through the probe, and AM.
class FiveSteps : public BenchStation {
 public:
  FiveSteps() {
    Load("net-power-fm.tst");
    TestDefinition& test = Test();
    test.StartFreq = 20;
    test.StopFreq = 24;
    test.StepType = 0;
    test.LinearStep = 1;
    test.SweepDwell = 0.5;
    test.ModType = static_cast<std::int32_t>(Modulation::Am);
    test.AmDepth = 80;
    test.AmModFreq = 1;
    test.ModOffBetweenFreqs = true;
    test.MonitorProbe = test.LimitCurrent = true;
    test.LimitMargin = 3;
    test.EUTCircuitImpedance = 150;
    test.InitLevOffset = -6;
    test.LevelInc = 10;
    test.InterDwell = 0.1F;
    bench.Connect(MeterAt::Probe);
    bench.OnChange([this](const BenchState& state) {
      if (state.Generator.RfOn && state.TestLevelDbuv > TargetDbuv(state.Generator.FreqMHz) + kMostOvershootDb)
        ++overshoots;
    });
  }

  int overshoots = 0;
};

/// Rows of steps that were completed.
std::vector<RunRow> Completed(const BenchStation& station) {
  std::vector<RunRow> rows;
  for (const RunRow& row : station.Rows())
    if (!row[1].empty()) rows.push_back(row);
  return rows;
}

/// What has to hold at the end of every run, however it ended.
void ExpectOrderlyEnd(const FiveSteps& run, const std::vector<RunRow>& undisturbed) {
  EXPECT_FALSE(run.bench.State().Generator.RfOn) << "RF stayed on";
  EXPECT_FALSE(run.instruments.sigGen.RfIsOn());
  EXPECT_EQ(run.SaveQuestions(), 1);
  EXPECT_FALSE(run.machine.speaker.tones.empty());
  EXPECT_EQ(run.overshoots, 0);
  const std::vector<RunRow> rows = Completed(run);
  ASSERT_LE(rows.size(), undisturbed.size());
  if (run.engine.Outcome() != RunOutcome::Finished) {
    for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(rows[i], undisturbed[i]) << "row " << i;
  }
}

/// Every message but those about saving, and that none was shown twice.
std::vector<std::string> MessagesShownOnce(const FiveSteps& run) {
  std::map<std::string, int> shown;
  for (const Message& message : run.machine.dialogs.messages)
    if (message.title != "Save Run Data" && message.text != "No run data to save") ++shown[message.text];
  std::vector<std::string> texts;
  for (const auto& [text, count] : shown) {
    EXPECT_EQ(count, 1) << text;
    texts.push_back(text);
  }
  return texts;
}

struct Undisturbed {
  std::vector<RunRow> rows;
  int calls = 0, reads = 0, yields = 0;
  std::vector<std::string> lines;
};

Undisturbed RunUndisturbed() {
  FiveSteps run;
  Undisturbed result;
  run.machine.events.onYield = [&] { ++result.yields; };
  run.Run();
  EXPECT_EQ(run.engine.Outcome(), RunOutcome::Finished) << run.machine.dialogs.LastText();
  EXPECT_EQ(Completed(run).size(), static_cast<std::size_t>(kSteps) + 1);
  EXPECT_THAT(MessagesShownOnce(run), testing::IsEmpty());
  result.rows = Completed(run);
  result.calls = run.driver.Calls();
  result.reads = run.driver.Reads();
  return result;
}

TEST(FaultSweep, EverySingleBusFailureEndsInOrder) {
  const Undisturbed undisturbed = RunUndisturbed();
  ASSERT_GT(undisturbed.calls, 100);
  int silent = 0;
  for (int call = 1; call <= undisturbed.calls; ++call) {
    SCOPED_TRACE("bus call " + std::to_string(call));
    FiveSteps run;
    run.driver.FailCall(call, gpib::kEnol);
    run.Run();
    ExpectOrderlyEnd(run, undisturbed.rows);
    const std::vector<std::string> texts = MessagesShownOnce(run);
    const bool reported = std::any_of(texts.begin(), texts.end(), [](const std::string& text) {
      return text.find("iberr = ENOL <No Listener>") != std::string::npos;
    });
    // Only the calls that read away stale answers may fail unnoticed: the run then goes on to its end.
    if (!reported) {
      ++silent;
      EXPECT_EQ(run.engine.Outcome(), RunOutcome::Finished);
      EXPECT_TRUE(texts.empty()) << texts.front();
    }
    if (testing::Test::HasFailure()) return;
  }
  EXPECT_LT(silent, undisturbed.calls);
}

void SweepReads(const std::function<void(FailingDriver&, int)>& disturb) {
  const Undisturbed undisturbed = RunUndisturbed();
  ASSERT_GT(undisturbed.reads, 20);
  for (int read = 1; read <= undisturbed.reads; ++read) {
    SCOPED_TRACE("answer " + std::to_string(read));
    FiveSteps run;
    disturb(run.driver, read);
    run.Run();
    ExpectOrderlyEnd(run, undisturbed.rows);
    MessagesShownOnce(run);
    if (testing::Test::HasFailure()) return;
  }
}

TEST(FaultSweep, EveryGarbledAnswerEndsInOrder) {
  SweepReads([](FailingDriver& driver, int read) { driver.GarbleReceive(read, "\x80%&/ ?!\r\n"); });
}

TEST(FaultSweep, EverySilentAnswerEndsTheRunInOrder) {
  SweepReads([](FailingDriver& driver, int read) { driver.SilenceReceive(read); });
}

TEST(HaltSweep, AHaltAtAnyWaitEndsInOrder) {
  const Undisturbed undisturbed = RunUndisturbed();
  ASSERT_GT(undisturbed.yields, 50);
  for (int wait = 1; wait <= undisturbed.yields; ++wait) {
    SCOPED_TRACE("wait " + std::to_string(wait));
    FiveSteps run;
    int yields = 0;
    double levelAtHalt = kNoValue;
    bool raised = false;
    run.bench.OnChange([&](const BenchState& state) {
      if (yields >= wait && state.Generator.RfOn && state.TestLevelDbuv > levelAtHalt + 0.01) raised = true;
    });
    run.machine.events.onYield = [&] {
      if (++yields != wait) return;
      levelAtHalt = run.bench.State().TestLevelDbuv;
      run.machine.shell.delay.RequestHalt();
    };
    run.Run();
    ExpectOrderlyEnd(run, undisturbed.rows);
    EXPECT_THAT(MessagesShownOnce(run), testing::IsEmpty());
    EXPECT_FALSE(raised) << "the level was raised after the halt";
    if (testing::Test::HasFailure()) return;
  }
}

}  // namespace
}  // namespace hylden
