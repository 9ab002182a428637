#include "testrun/ManualMode.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "testrun/ManualPanel.h"
#include "testrun/RunRig.h"

namespace hylden {
namespace {

using testing::Contains;
using testing::ElementsAre;

TEST(ManualPanel, ArrowKeysStayInRange) {
  struct Case {
    int step, tenths;
    ArrowKey key;
    int expectedStep, expectedTenths;
  };
  const Case cases[] = {
      {3, 0, ArrowKey::Up, 3, 1},     {3, 0, ArrowKey::Down, 3, -1},      {3, 0, ArrowKey::Right, 4, 0},
      {3, 0, ArrowKey::Left, 2, 0},   {12, 0, ArrowKey::Right, 12, 0},    {1, 0, ArrowKey::Left, 1, 0},
      {3, 100, ArrowKey::Up, 3, 100}, {3, -600, ArrowKey::Down, 3, -600},
  };
  RunRig rig;
  for (const Case& c : cases) {
    ManualPanel panel(rig.engine.Manual());
    panel.Open({.Step = c.step, .HighestStep = 12});
    panel.MoveOffset(c.tenths);
    panel.Key(c.key);
    EXPECT_EQ(panel.Scroll().Step, c.expectedStep);
    EXPECT_EQ(panel.Scroll().OffsetTenths, c.expectedTenths);
  }
}

/// A run that goes to manual mode after its second step, or another; `manual` is played there, one action per turn of
/// the user interface, and manual mode is left after the last.
struct ManualTest : testing::Test {
  RunRig rig;
  ManualMode& mode = rig.engine.Manual();
  ManualPanel panel{mode};
  std::vector<std::function<void()>> manual;
  std::function<void()> onYield;  ///< besides
  std::size_t sentBefore = 0;
  int manualAfter = 2;

  void SetUp() override { rig.test.InitLevOffset = -6; }

  void Run() {
    rig.t.events.onYield = [this, next = std::size_t{0}, asked = false, other = onYield]() mutable {
      if (other) other();
      if (!asked && rig.display.steps.size() == static_cast<std::size_t>(manualAfter)) {
        asked = true;
        rig.engine.RequestManual();
      }
      if (!rig.manual.isOpen || mode.IsBusy()) return;
      if (next == 0) {
        panel.Open(rig.manual.opened);
        sentBefore = rig.Sent(18).size();
      }
      if (next < manual.size())
        manual[next++]();
      else
        mode.manExitClick();
    };
    rig.Run();
  }
  void InManual(const std::function<void()>& action) {
    manual = {action};
    Run();
  }
  /// What the generator was sent in manual mode, up to the next step's frequency.
  std::vector<std::string> Sent() {
    auto sent = rig.Sent(18);
    sent.erase(sent.begin(), sent.begin() + static_cast<std::ptrdiff_t>(sentBefore));
    return sent;
  }
};

TEST_F(ManualTest, OpensAfterTheStepAndTheRunGoesOn) {
  InManual([&] { EXPECT_EQ(rig.manual.at, std::pair(2, 2)); });
  EXPECT_EQ(rig.manual.opened.Step, 2);
  EXPECT_EQ(rig.manual.opened.HighestStep, 2);
  EXPECT_EQ(rig.manual.opened.Freq, 2);
  EXPECT_TRUE(rig.manual.opened.RfOn);
  EXPECT_FALSE(rig.manual.opened.ModEnabled);
  EXPECT_EQ(rig.display.steps, (std::vector<int>{1, 2, 3}));
  EXPECT_THAT(rig.display.statuses, Contains("Manual Mode"));
  EXPECT_THAT(rig.manual.calls, ElementsAre("manual opened", "manual closed"));
  EXPECT_EQ(rig.Rows().size(), 3U);
}

TEST_F(ManualTest, ChangesWaitForTheTimerAndTheLowerLevelComesFirst) {
  std::vector<std::string> up, down;
  manual = {[&] {
              EXPECT_TRUE(panel.MoveOffset(15));
              EXPECT_TRUE(panel.MoveStep(1));
              EXPECT_EQ(panel.Scroll().OffsetTenths, 15);
              EXPECT_EQ(rig.Sent(18).size(), sentBefore);
            },
            [&] { panel.Tick(); },
            [&] {
              panel.Tick();  // nothing has changed since
              up = Sent();
              panel.MoveStep(2);
              panel.MoveOffset(-5);
              panel.Tick();
              down = Sent();
              down.erase(down.begin(), down.begin() + static_cast<std::ptrdiff_t>(up.size()));
            }};
  Run();
  EXPECT_THAT(up, ElementsAre("POW -10.0 DBM", "FREQ 1.0 MHZ", "POW -8.5 DBM"));
  EXPECT_THAT(down, ElementsAre("POW -10.5 DBM", "FREQ 2.0 MHZ", "POW -8.5 DBM"));
}

TEST_F(ManualTest, TheLevelRisesByTheTestsIncrementPerTickAndFallsAtOnce) {
  rig.test.LevelInc = 4;
  InManual([&] {
    panel.MoveOffset(kHighestOffsetTenths);
    for (int tick = 0; tick < 4; ++tick) panel.Tick();
    panel.MoveOffset(-80);
    panel.Tick();
  });
  auto sent = Sent();
  sent.resize(4);
  EXPECT_THAT(sent, ElementsAre("POW -4.0 DBM", "POW 0.0 DBM", "POW 2.0 DBM", "POW -16.0 DBM"));
}

TEST_F(ManualTest, RfThatComesBackDoesNotJumpToWhatWasRaisedMeanwhile) {
  rig.test.LevelInc = 4;
  InManual([&] {
    mode.manRfOn(false);
    panel.MoveOffset(kHighestOffsetTenths);
    for (int tick = 0; tick < 3; ++tick) panel.Tick();
    mode.manRfOn(true);
    EXPECT_EQ(rig.generatorDbm, -8 + 4);
    panel.Tick();
    EXPECT_EQ(rig.generatorDbm, -8 + 8);
    panel.Tick();
    EXPECT_EQ(rig.generatorDbm, -8 + 10);
    mode.manRfOn(false);
    panel.MoveOffset(-300);
    panel.Tick();
    mode.manRfOn(true);
    mode.manRfOn(false);
    panel.MoveOffset(0);
    for (int tick = 0; tick < 8; ++tick) panel.Tick();
    mode.manRfOn(true);
    EXPECT_EQ(rig.generatorDbm, -8 - 26);
  });
}

TEST_F(ManualTest, AThresholdNotesWhatStandsAndEndsTheRise) {
  InManual([&] {
    panel.MoveOffset(95);
    panel.Tick();
    const auto standing = panel.Threshold();
    ASSERT_TRUE(standing);
    EXPECT_EQ(standing->Freq, 2);
    EXPECT_EQ(standing->Offset, 6);
    EXPECT_EQ(panel.Scroll().OffsetTenths, 60) << "the bar goes back to what stands";
    panel.Tick();
    EXPECT_EQ(rig.generatorDbm, -8 + 6);
  });
}

TEST_F(ManualTest, ARefusedStepShowsTheFrequencyThatRfComesBackWith) {
  InManual([&] {
    rig.bus.FailLine("> 18 FREQ", gpib::kEnol);
    panel.MoveStep(1);
    panel.Tick();
    EXPECT_FALSE(rig.rfOn);
    EXPECT_EQ(rig.manual.freq, 1);
    EXPECT_EQ(rig.display.Now(Readout::Frequency), 1);
    EXPECT_EQ(panel.Threshold()->Freq, 2) << "the product never saw the other";
    mode.manRfOn(true);
    EXPECT_TRUE(rig.rfOn);
    EXPECT_EQ(rig.frequencyMHz, 1);
    EXPECT_EQ(panel.Threshold()->Freq, 1);
  });
}

TEST_F(ManualTest, ARefusedOffsetIsGivenUp) {
  rig.test.LevelInc = 10;
  Redefine(rig.sigGen, [](auto& d) { d.MaximumLevel = 0; });
  InManual([&] {
    panel.MoveOffset(70);
    panel.Tick();
    panel.MoveOffset(90);
    panel.Tick();
    EXPECT_FALSE(rig.rfOn);
    EXPECT_FALSE(rig.manual.rf);
    EXPECT_TRUE(rig.manual.isOpen);
    EXPECT_EQ(panel.Scroll().OffsetTenths, 70);
    for (int tick = 0; tick < 3; ++tick) panel.Tick();
    EXPECT_EQ(rig.Shown("Level requested outside of range of instrument"), 1);
    EXPECT_EQ(panel.Threshold()->Offset, 7);
    mode.manRfOn(true);
    EXPECT_EQ(rig.generatorDbm, -1);
  });
}

TEST_F(ManualTest, ReturningRaisesNothingAnyMore) {
  InManual([&] {
    panel.MoveStep(1);
    panel.MoveOffset(50);
    panel.Leave();
    EXPECT_EQ(rig.manual.at.first, 1);
  });
  EXPECT_EQ(rig.highestAt[1], -10);
}

TEST_F(ManualTest, NoThresholdWhileTheAmplifiersChangeOver) {
  rig.UseIfi(1.5);
  bool changingOver = false;
  manual = {[&] {
    changingOver = true;
    panel.MoveStep(1);
    panel.Tick();
    changingOver = false;
  }};
  int asked = 0;
  onYield = [&] {
    if (!changingOver) return;
    ++asked;
    EXPECT_FALSE(panel.Threshold());
    mode.manThresholdClick(2, 0);
  };
  Run();
  EXPECT_GT(asked, 0);
  EXPECT_TRUE(rig.t.dialogs.inputs.empty());
  EXPECT_EQ(rig.Rows().size(), 4U) << "three steps, the second of them twice";
}

TEST_F(ManualTest, OnlyStepsThatWereRunCanBeReached) {
  InManual([&] {
    EXPECT_FALSE(panel.MoveStep(3));
    EXPECT_FALSE(panel.MoveStep(0));
    EXPECT_FALSE(panel.Key(ArrowKey::Right));
    mode.manStepNumChange(3);
    EXPECT_EQ(rig.manual.at.first, 2);
  });
}

TEST_F(ManualTest, TheRunGoesOnBehindTheStepThatIsShown) {
  InManual([&] {
    panel.Key(ArrowKey::Left);
    panel.MoveOffset(-15);
    panel.Tick();
    EXPECT_EQ(rig.manual.at, std::pair(1, 1));
    EXPECT_EQ(rig.display.Now(Readout::TestLevel), 118.5);
    EXPECT_EQ(rig.display.Now(Readout::Frequency), 1);
  });
  EXPECT_EQ(rig.display.steps, (std::vector<int>{1, 2, 2, 3}));
  EXPECT_EQ(rig.Rows().size(), 4U);
  EXPECT_LE(rig.highestAt[2], -8);
}

TEST_F(ManualTest, RfAndModulationFollowTheOperator) {
  rig.UseAm(true, true);
  manual = {[&] { mode.manModOn(false); }, [&] { mode.manRfOn(false); },
            [&] {
              EXPECT_FALSE(rig.manual.rf);
              EXPECT_FALSE(rig.manual.mod);
              mode.manLevOffsetChange(-3);
            },
            [&] { mode.manRfOn(true); }, [&] { mode.manModOn(true); }};
  Run();
  EXPECT_TRUE(rig.manual.opened.ModEnabled && rig.manual.opened.ModOn && rig.manual.mod);
  auto sent = Sent();
  sent.resize(5);
  EXPECT_THAT(sent, ElementsAre("MOD OFF", "OUTP OFF", "POW -16.1 DBM", "OUTP ON", "AM ON"));
}

TEST_F(ManualTest, ModulationThatTheGeneratorRefusesIsNotShownAsSwitched) {
  rig.UseAm(true, false);
  InManual([&] {
    rig.bus.FailLine("> 18 MOD OFF", gpib::kEnol);
    mode.manModOn(false);
    EXPECT_TRUE(rig.manual.mod);
    mode.manModOn(false);
    EXPECT_FALSE(rig.manual.mod);
    rig.bus.FailLine("> 18 AM ON", gpib::kEnol);
    mode.manModOn(true);
    EXPECT_FALSE(rig.manual.mod);
    EXPECT_FALSE(rig.rfOn);
  });
}

TEST_F(ManualTest, AFailureAfterOneThatTheOperatorWentOnFromIsToldToo) {
  const char* const lines[] = {"> 18 POW -9.0", "> 18 POW -7.0", "> 18 FREQ 4.0"};  // twice by hand, then the next step
  for (const char* line : lines) rig.bus.FailLine(line, gpib::kEnol);
  const auto offset = [&](float db) { mode.manLevOffsetChange(db); };
  manual = {[&] { mode.manRfOn(true), offset(-1); }, [&] { mode.manRfOn(true), offset(1); }};
  Run();
  const auto texts = rig.t.dialogs.Texts();
  EXPECT_EQ(std::count_if(texts.begin(), texts.end(),
                          [](const auto& text) { return text.starts_with("Error in writing command to Signal"); }),
            3);
}

TEST_F(ManualTest, ModulationSwitchedOffByHandIsBackForTheNextStep) {
  rig.UseAm(false, false);
  InManual([&] { mode.manModOn(false); });
  EXPECT_THAT(rig.Sent(18), testing::Contains("AM ON").Times(2));
}

TEST_F(ManualTest, ModulationIsBackForTheNextStepAlsoWhereItMayBeOff) {
  rig.UseAm(false, false);
  InManual([&] {
    rig.bus.FailLine("> 18 MOD OFF", gpib::kEnol);
    mode.manModOn(false);
  });
  EXPECT_THAT(rig.Sent(18), testing::Contains("AM ON").Times(2));
}

TEST_F(ManualTest, AFormThatAnExceptionLeftOpenIsTakenAwayWithRfOff) {
  onYield = [&, thrown = false]() mutable {
    if (rig.manual.isOpen && !std::exchange(thrown, true)) throw RuntimeError(ErrorNumber::Overflow);
  };
  Run();
  EXPECT_THAT(rig.manual.calls, ElementsAre("manual opened", "manual closed"));
  EXPECT_FALSE(rig.rfOn);
  EXPECT_EQ(rig.engine.Outcome(), RunOutcome::EndedEarly);
}

TEST_F(ManualTest, AThresholdIsRecordedBetweenTheStepsWithItsCommentIfAny) {
  rig.t.dialogs.AnswerInput("display flickers");
  rig.t.dialogs.AnswerInput(std::nullopt);
  manual = {[&] { mode.manThresholdClick(2, -1.5F); }, [&] { mode.manThresholdClick(2, 0); }};
  Run();
  ASSERT_EQ(rig.Rows().size(), 5U);
  EXPECT_EQ(rig.Rows()[2], "2.0, Threshold -1.5dB, display flickers");
  EXPECT_EQ(rig.Rows()[3], "2.0, Threshold 0.0dB, ");
  EXPECT_EQ(rig.t.dialogs.inputs[0].title, "Threshold Comment");
  EXPECT_EQ(rig.t.dialogs.inputs[0].prompt, "Enter comments");
}

TEST_F(ManualTest, AHaltEndsTheRunAndRemovesTheForm) {
  manual = {[&] { rig.t.shell.delay.RequestHalt(); }, [&] { mode.manLevOffsetChange(3); }};
  Run();
  EXPECT_EQ(rig.Rows().size(), 2U);
  EXPECT_THAT(rig.manual.calls, Contains("manual closed"));
  EXPECT_FALSE(rig.rfOn);
  EXPECT_EQ(rig.highestDbm, -8);
}

TEST_F(ManualTest, AnAmplifierThatFailsHaltsTheRun) {
  rig.UseIfi(1.5);
  InManual([&] {
    rig.bus.FailLine("> 10 8", gpib::kEabo);
    mode.manStepNumChange(1);
    EXPECT_TRUE(rig.t.shell.delay.HaltRequested());
  });
  EXPECT_EQ(rig.Rows().size(), 2U);
  EXPECT_FALSE(rig.rfOn);
}

class ManualThrowTest : public ManualTest, public testing::WithParamInterface<bool> {};

TEST_P(ManualThrowTest, AnExceptionIsToldWithRfOffThoughTheFirstRfOffDoesNotGetThrough) {
  InManual([&] {
    rig.throwAtLines = {"> 18 POW"};
    GetParam() ? rig.throwAtLines.push_back("> 18 OUTP OFF") : rig.bus.FailLine("> 18 OUTP OFF", gpib::kEnol);
    mode.manLevOffsetChange(-3);
  });
  EXPECT_EQ(rig.Shown("Error # 6\rOverflow\rfrmRunTest.RunCDI\r"), 1);
  EXPECT_FALSE(rig.rfOnAtMessage);
  EXPECT_EQ(rig.Rows().size(), 2U) << "the run is halted";
}

INSTANTIATE_TEST_SUITE_P(RfOff, ManualThrowTest, testing::Values(false, true),
                         [](const auto& throws) { return throws.param ? "throws" : "fails"; });

TEST_F(ManualTest, RfThatManualModeLeftOnIsOffWhileTheSensorIsMoved) {
  rig.UsePower(LevelingMethod::ForwardPower);
  rig.UseIfi();
  manualAfter = 3;
  manual = {[&] { mode.manStepNumChange(1); },
            [&] {
              mode.manRfOn(true);
              EXPECT_TRUE(rig.rfOn);
            }};
  Run();
  EXPECT_EQ(rig.Shown("Move sensor(s) to low freq coupler"), 1);
  EXPECT_FALSE(rig.rfOnAtMessage);
  EXPECT_EQ(rig.Rows().size(), 5U);
  EXPECT_EQ(rig.Rows()[3], rig.Rows()[1]);
}

TEST_F(ManualTest, TheManualButtonCutsALongDwellToOneIntermediateDwell) {
  rig.test.SweepDwell = 1000;
  std::int64_t pressedAt = 0;
  ASSERT_EQ(rig.Prepare(), RunReadiness::Ready);
  rig.t.events.onYield = [&] {
    if (rig.display.statuses.back() == "Finishing Final Dwell..." && pressedAt == 0) {
      rig.engine.RequestManual();
      pressedAt = rig.t.clock.TickMs();
    }
    if (!rig.manual.isOpen) return;
    EXPECT_LE(rig.t.clock.TickMs() - pressedAt, 502);
    rig.t.shell.delay.RequestHalt();
  };
  rig.engine.RunCdiTest();
  EXPECT_EQ(rig.Rows().size(), 1U);
  EXPECT_EQ(rig.manual.opened.Step, 1);
}

TEST_F(ManualTest, TheRunLogTellsHowLongACutDwellWasHeld) {
  const WorkingDirectory here(rig.t.directory.Path());
  rig.t.shell.settings.Store().SaveSettingStr("System", "LogToFile", "1");
  rig.test.SweepDwell = 60;
  ASSERT_EQ(rig.Prepare(), RunReadiness::Ready);
  rig.AtStatus(
      "Intermediate dwell...",
      [&] {
        const std::int64_t levelReached = rig.t.clock.TickMs();
        rig.t.events.At(levelReached + 1500, [&] { rig.engine.RequestManual(); });
        rig.t.events.At(levelReached + 2100, [&] { mode.manExitClick(); });
      },
      4);
  rig.engine.RunCdiTest();
  const std::string log = rig.t.directory.Read("runlog.hyl");
  EXPECT_THAT(log, testing::HasSubstr("Dwell cut short by Manual at 2.0 MHz: held 2.0 s of 60.0 s\r\n"));
  EXPECT_EQ(log.find("cut short"), log.rfind("cut short")) << "the others were held to their end";
}

TEST_F(ManualTest, ElapsedAndRemainingTimeLeaveManualModeOut) {
  std::vector<double> elapsed, remaining;
  for (const std::int64_t minutes : {0, 10}) {
    SCOPED_TRACE(minutes);
    RunRig timed;
    timed.test.StopFreq = 3;
    timed.test.StepType = StepType::Linear;
    timed.test.LinearStep = 0.25;
    ASSERT_EQ(timed.Prepare(), RunReadiness::Ready);
    timed.t.events.onYield = [&, asked = false]() mutable {
      if (!asked && timed.display.steps.size() == 4) {
        asked = true;
        timed.engine.RequestManual();
      }
      if (!timed.manual.isOpen) return;
      timed.t.clock.Advance(minutes * 60000);
      timed.engine.Manual().manExitClick();
    };
    timed.engine.RunCdiTest();
    elapsed.push_back(timed.display.Now(Readout::Elapsed));
    const std::vector<double> shown = timed.display.All(Readout::Remaining);
    remaining.push_back(shown.at(shown.size() - 2));
  }
  EXPECT_NEAR(elapsed[0], elapsed[1], 0.01);
  EXPECT_NEAR(remaining[0], remaining[1], 0.01);
}

TEST_F(ManualTest, StepsThatAreRunAgainCountInTheTimePerStep) {
  rig.test.InitLevOffset = 0;
  InManual([&] {
    panel.MoveStep(1);
    panel.Tick();
  });
  // Steps 2, 2 and 3 are timed, 2.5 s each but for the cut dwell; after the last, one step is still counted as left.
  const double minutes = rig.display.Now(Readout::Elapsed);
  EXPECT_NEAR(*(rig.display.All(Readout::Remaining).end() - 2), minutes / 3, 1e-9);
}

}  // namespace
}  // namespace hylden
