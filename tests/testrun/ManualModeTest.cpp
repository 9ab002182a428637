#include "testrun/ManualMode.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "testrun/ManualPanel.h"
#include "testrun/RunRig.h"

namespace hylden {
namespace {

using testing::ElementsAre;

/// A run that goes to manual mode after its second step, or another.
struct ManualRun : RunRig {
  ManualRun() { test.InitLevOffset = -6; }

  /// Runs; in manual mode these actions are played, one per turn of the user interface, then it is left.
  void Play(const std::vector<std::function<void()>>& actions) {
    t.events.onYield = [&, next = std::size_t{0}, asked = false]() mutable {
      if (onYield) onYield();
      if (!asked && display.steps.size() == manualAfter) asked = true, engine.RequestManual();
      if (!manual.isOpen || mode.IsBusy()) return;
      if (next == 0) panel.Open(manual.opened);
      if (next < actions.size()) return actions[next++]();
      highestAt.clear();
      mode.manExitClick();
    };
    Run();
  }
  void Play(const std::function<void()>& action) { Play(std::vector{action}); }

  // The operator's hands.
  void Tick(int times = 1) {
    while (times-- > 0) panel.Tick();
  }
  void Level(int tenths) {
    EXPECT_TRUE(panel.MoveOffset(tenths));
    Tick();
  }
  void Step(int step) {
    EXPECT_TRUE(panel.MoveStep(step));
    Tick();
  }
  void Threshold(double frequencyMHz, float offsetDb) {
    const auto noted = panel.Threshold();
    ASSERT_TRUE(noted);
    EXPECT_EQ(noted->Freq, frequencyMHz);
    EXPECT_EQ(noted->Offset, offsetDb);
  }
  std::string Window() const {
    return ShortestText(manual.freq) + " MHz " + ShortestText(panel.Scroll().OffsetTenths / 10.0) + " dB" +
           (manual.rf ? " RF" : "") + (manual.mod ? " Mod" : "");
  }

  ManualMode& mode = engine.Manual();
  ManualPanel panel{mode};
  std::function<void()> onYield;  ///< besides
  std::size_t manualAfter = 2;
};

struct Turn {
  void (*act)(ManualRun&);
  Strings sent;  ///< to the generator
  std::string window;
};

struct Session {
  const char* name;  ///< the promise
  void (*arrange)(ManualRun&);
  std::vector<Turn> turns;
};

class ManualTest : public testing::TestWithParam<Session> {};

TEST_P(ManualTest, TheRunGoesOnBehindTheStepThatIsShown) {
  ManualRun m;
  GetParam().arrange(m);
  std::vector<std::function<void()>> actions;
  for (const Turn& turn : GetParam().turns) {
    actions.emplace_back([&] {
      SCOPED_TRACE(turn.window);
      m.bus.transcript.Clear();
      turn.act(m);
      EXPECT_EQ(m.Sent(18), turn.sent);
      EXPECT_EQ(m.Window(), turn.window);
      EXPECT_EQ(m.rfOn, m.manual.rf);
      EXPECT_TRUE(m.manual.at.first == m.manual.freq && m.manual.at.second == m.manual.freq) << "step and row";
      EXPECT_EQ(m.display.Now(Readout::Frequency), m.manual.freq);
      EXPECT_NEAR(m.display.Now(Readout::TestLevel), 120 + m.mode.Standing().Offset, 1e-5);
    });
  }
  m.Play(actions);
  EXPECT_EQ(m.manual.opened.Step, 2);
  EXPECT_EQ(m.manual.opened.HighestStep, 2);
  EXPECT_EQ(m.manual.opened.ModEnabled, m.test.ModType != Modulation::None);
  EXPECT_TRUE(m.manual.opened.RfOn);
  EXPECT_THAT(m.display.statuses, testing::Contains("Manual Mode"));
  EXPECT_THAT(m.manual.calls, ElementsAre("manual opened", "manual closed"));
  EXPECT_EQ(m.display.steps, m.manual.at.first == 1 ? (std::vector{1, 2, 2, 3}) : (std::vector{1, 2, 3}));
  EXPECT_EQ(m.Rows().size(), m.display.steps.size());
  EXPECT_EQ(m.Rows().back(), "4.0, -6.0 **, 120.0, , , ");
  for (const auto& [frequency, dbm] : m.highestAt) EXPECT_LE(dbm, frequency == 4 ? -6 : -8) << frequency;
}

const Session kSessions[] = {
    {"ChangesWaitForTheTimerAndTheLowerLevelComesFirst",
     [](auto&) {},
     {
         {[](auto& m) { m.panel.MoveOffset(15), m.panel.MoveStep(1); }, {}, "2 MHz 1.5 dB RF"},
         {[](auto& m) { m.Tick(); }, {"POW -10.0 DBM", "FREQ 1.0 MHZ", "POW -8.5 DBM"}, "1 MHz 1.5 dB RF"},
         {[](auto& m) { m.Tick(); }, {}, "1 MHz 1.5 dB RF"},  // nothing has changed since
         {[](auto& m) { m.panel.MoveOffset(-5), m.Step(2); },
          {"POW -10.5 DBM", "FREQ 2.0 MHZ", "POW -8.5 DBM"},
          "2 MHz -0.5 dB RF"},
         {[](auto& m) { m.panel.MoveOffset(-15), m.panel.Key(ArrowKey::Left), m.Tick(); },
          {"POW -9.5 DBM", "POW -11.5 DBM", "FREQ 1.0 MHZ"},
          "1 MHz -1.5 dB RF"},
     }},
    {"TheLevelRisesByTheTestsIncrementPerTickAndFallsAtOnce",
     [](auto& m) { m.test.LevelInc = 4; },
     {
         {[](auto& m) { m.Level(kHighestOffsetTenths); }, {"POW -4.0 DBM"}, "2 MHz 10 dB RF"},
         {[](auto& m) { m.Tick(4); }, {"POW 0.0 DBM", "POW 2.0 DBM"}, "2 MHz 10 dB RF"},
         {[](auto& m) { m.Level(-80); }, {"POW -16.0 DBM"}, "2 MHz -8 dB RF"},
     }},
    {"RfThatComesBackDoesNotJumpToWhatWasRaisedMeanwhile",
     [](auto& m) { m.test.LevelInc = 4; },
     {
         {[](auto& m) { m.mode.manRfOn(false); }, {"OUTP OFF"}, "2 MHz 0 dB"},
         {[](auto& m) { m.Level(100), m.Tick(2); }, {}, "2 MHz 10 dB"},
         {[](auto& m) { m.mode.manRfOn(true); }, {"POW -4.0 DBM", "OUTP ON"}, "2 MHz 10 dB RF"},
         {[](auto& m) { m.Tick(2); }, {"POW 0.0 DBM", "POW 2.0 DBM"}, "2 MHz 10 dB RF"},
         {[](auto& m) { m.mode.manRfOn(false), m.Level(-300); }, {"OUTP OFF"}, "2 MHz -30 dB"},
         {[](auto& m) { m.mode.manRfOn(true), m.mode.manRfOn(false); },
          {"POW -38.0 DBM", "OUTP ON", "OUTP OFF"},
          "2 MHz -30 dB"},
         {[](auto& m) { m.Level(0), m.Tick(7), m.mode.manRfOn(true); }, {"POW -34.0 DBM", "OUTP ON"}, "2 MHz 0 dB RF"},
     }},
    {"AThresholdNotesWhatStandsAndEndsTheRise",
     [](auto&) {},
     {
         {[](auto& m) { m.Level(95); }, {"POW -2.0 DBM"}, "2 MHz 9.5 dB RF"},
         {[](auto& m) { m.Threshold(2, 6), m.Tick(); }, {}, "2 MHz 6 dB RF"},
     }},
    {"ARefusedStepShowsTheFrequencyThatRfComesBackWith",
     [](auto&) {},
     {
         {[](auto& m) { m.bus.FailLine("> 18 FREQ", gpib::kEnol), m.Step(1); },
          {"POW -10.0 DBM", "FREQ 1.0 MHZ !2", "OUTP OFF", "\\n", "OUTP OFF", "OUTP OFF"},
          "1 MHz 0 dB"},
         {[](auto& m) { m.Threshold(2, 0); }, {}, "1 MHz 0 dB"},  // the product never saw the other
         {[](auto& m) { m.mode.manRfOn(true); }, {"FREQ 1.0 MHZ", "POW -10.0 DBM", "OUTP ON"}, "1 MHz 0 dB RF"},
         {[](auto& m) { m.Threshold(1, 0); }, {}, "1 MHz 0 dB RF"},
     }},
    {"ARefusedOffsetIsGivenUp",
     [](auto& m) { m.test.LevelInc = 10, Redefine(m.sigGen, [](auto& d) { d.MaximumLevel = 0; }); },
     {
         {[](auto& m) { m.Level(70); }, {"POW -1.0 DBM"}, "2 MHz 7 dB RF"},
         {[](auto& m) { m.Level(90), m.Tick(3); }, {"OUTP OFF"}, "2 MHz 7 dB"},
         {[](auto& m) { EXPECT_TRUE(m.ToldOnce("Level requested outside of range")), m.Threshold(2, 7); },
          {},
          "2 MHz 7 dB"},
         {[](auto& m) { m.mode.manRfOn(true); }, {"OUTP ON"}, "2 MHz 7 dB RF"},
     }},
    {"ReturningRaisesNothingAnyMore",
     [](auto&) {},
     {{[](auto& m) { m.panel.MoveStep(1), m.panel.MoveOffset(50), m.panel.Leave(); },
       {"POW -10.0 DBM", "FREQ 1.0 MHZ"},
       "1 MHz 0 dB RF"}}},
    {"TheBarsStayInTheirRanges",
     [](auto&) {},
     {
         {[](auto& m) {
            EXPECT_FALSE(m.panel.MoveStep(3) || m.panel.MoveStep(0) || m.panel.Key(ArrowKey::Right));
            m.Tick(), m.mode.manStepNumChange(3);
          },
          {},
          "2 MHz 0 dB RF"},
         {[](auto& m) { m.panel.MoveOffset(kHighestOffsetTenths), m.panel.Key(ArrowKey::Up); }, {}, "2 MHz 10 dB RF"},
         {[](auto& m) { m.panel.MoveOffset(kLowestOffsetTenths), m.panel.Key(ArrowKey::Down); }, {}, "2 MHz -60 dB RF"},
         {[](auto& m) { m.panel.Key(ArrowKey::Up), m.panel.Key(ArrowKey::Up), m.panel.Key(ArrowKey::Down); },
          {},
          "2 MHz -59.9 dB RF"},
         {[](auto& m) { m.panel.Key(ArrowKey::Left), m.panel.Key(ArrowKey::Right); }, {}, "2 MHz -59.9 dB RF"},
     }},
    {"RfAndModulationFollowTheOperator",
     [](auto& m) { m.UseAm(true, true); },
     {
         {[](auto& m) { m.mode.manModOn(false); }, {"MOD OFF"}, "2 MHz 0 dB RF"},
         {[](auto& m) { m.mode.manRfOn(false); }, {"OUTP OFF"}, "2 MHz 0 dB"},
         {[](auto& m) { m.Level(-30); }, {}, "2 MHz -3 dB"},
         {[](auto& m) { m.mode.manRfOn(true); }, {"POW -16.1 DBM", "OUTP ON"}, "2 MHz -3 dB RF"},
         {[](auto& m) { m.mode.manModOn(true); }, {"AM ON"}, "2 MHz -3 dB RF Mod"},
     }},
    {"ModulationThatTheGeneratorRefusesIsNotShownAsSwitched",
     [](auto& m) { m.UseAm(true, false); },
     {
         {[](auto& m) { m.bus.FailLine("> 18 MOD OFF", gpib::kEnol), m.mode.manModOn(false); },
          {"MOD OFF !2", "OUTP OFF", "\\n", "OUTP OFF", "OUTP OFF"},
          "2 MHz 0 dB Mod"},
         {[](auto& m) { m.mode.manModOn(false); }, {"MOD OFF"}, "2 MHz 0 dB"},
         {[](auto& m) { m.mode.manRfOn(true), m.bus.FailLine("> 18 AM ON", gpib::kEnol), m.mode.manModOn(true); },
          {"FREQ 2.0 MHZ", "POW -8.0 DBM", "OUTP ON", "AM ON !2", "OUTP OFF", "\\n", "OUTP OFF", "OUTP OFF"},
          "2 MHz 0 dB"},
     }},
};

INSTANTIATE_TEST_SUITE_P(Session, ManualTest, testing::ValuesIn(kSessions),
                         [](const auto& session) { return session.param.name; });

TEST(ManualMode, NoThresholdWhileTheAmplifiersChangeOver) {
  ManualRun m;
  m.UseIfi(1.5);
  int asked = 0;
  bool changingOver = false;
  m.onYield = [&] {
    if (!changingOver) return;
    ++asked;
    EXPECT_FALSE(m.panel.Threshold());
    m.mode.manThresholdClick(2, 0);
  };
  m.Play([&] {
    changingOver = true;
    m.Step(1);
    changingOver = false;
  });
  EXPECT_GT(asked, 0);
  EXPECT_TRUE(m.t.dialogs.inputs.empty());
  EXPECT_EQ(m.Rows().size(), 4U) << "three steps, the second of them twice";
}

TEST(ManualMode, AFailureAfterOneThatTheOperatorWentOnFromIsToldToo) {
  ManualRun m;
  const char* const lines[] = {"> 18 POW -9.0", "> 18 POW -7.0", "> 18 FREQ 4.0"};  // twice by hand, then the next step
  for (const char* line : lines) m.bus.FailLine(line, gpib::kEnol);
  const auto offset = [&](float db) { m.mode.manRfOn(true), m.mode.manLevOffsetChange(db); };
  m.Play({[&] { offset(-1); }, [&] { offset(1); }});
  EXPECT_THAT(m.t.dialogs.Texts(),
              testing::Contains(testing::StartsWith("Error in writing command to Signal")).Times(3));
}

TEST(ManualMode, ModulationThatIsOffByHandOrMayBeIsBackForTheNextStep) {
  for (const bool fails : {false, true}) {
    ManualRun m;
    m.UseAm(false, false);
    m.Play([&] {
      if (fails) m.bus.FailLine("> 18 MOD OFF", gpib::kEnol);
      m.mode.manModOn(false);
    });
    EXPECT_THAT(m.Sent(18), testing::Contains("AM ON").Times(2));
  }
}

TEST(ManualMode, AThresholdIsRecordedBetweenTheStepsWithItsCommentIfAny) {
  ManualRun m;
  m.t.dialogs.AnswerInput("display flickers");
  m.t.dialogs.AnswerInput(std::nullopt);
  m.Play([&] { m.mode.manThresholdClick(2, -1.5F), m.mode.manThresholdClick(2, 0); });
  ASSERT_EQ(m.Rows().size(), 5U);
  EXPECT_EQ(m.Rows()[2], "2.0, Threshold -1.5dB, display flickers");
  EXPECT_EQ(m.Rows()[3], "2.0, Threshold 0.0dB, ");
  EXPECT_EQ(m.t.dialogs.inputs[0].title, "Threshold Comment");
  EXPECT_EQ(m.t.dialogs.inputs[0].prompt, "Enter comments");
}

TEST(ManualMode, WhatEndsTheRunTakesItsFormAwayWithRfOff) {
  constexpr const char* kOverflow = "Error # 6\rOverflow\rfrmRunTest.RunCDI\r";
  const struct {
    const char* name;
    void (*act)(ManualRun&);
    const char* text;
  } rows[] = {
      {"a halt", [](auto& m) { m.t.shell.delay.RequestHalt(), m.mode.manLevOffsetChange(3); }, ""},
      {"an amplifier that fails", [](auto& m) { m.bus.FailLine("> 10 8", gpib::kEabo), m.mode.manStepNumChange(1); },
       ""},
      {"an event that throws, and its RF off, too",
       [](auto& m) {
         m.throwAtLines = {"> 18 POW", "> 18 OUTP OFF"}, m.mode.manLevOffsetChange(-3);
       },
       kOverflow},
      {"an event that throws, and its RF off fails",
       [](auto& m) {
         m.throwAtLines = {"> 18 POW"}, m.bus.FailLine("> 18 OUTP OFF", gpib::kEnol), m.mode.manLevOffsetChange(-3);
       },
       kOverflow},
      {"an exception that leaves the form open", [](auto&) { throw RuntimeError(ErrorNumber::Overflow); }, kOverflow},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    ManualRun m;
    m.UseIfi(1.5);
    const auto shown = m.t.dialogs.onShow;
    m.t.dialogs.onShow = [&](const Message& message) {
      m.mode.manRfOn(true);  // the form is still there
      shown(message);
    };
    m.Play([&] { row.act(m); });
    EXPECT_TRUE(*row.text == 0 || m.Shown(row.text) == 1) << testing::PrintToString(m.t.dialogs.Texts());
    EXPECT_FALSE(m.rfOn || m.rfOnAtMessage);
    EXPECT_EQ(m.highestDbm, -8);
    EXPECT_EQ(m.Rows().size(), 2U);
    EXPECT_THAT(m.manual.calls, ElementsAre("manual opened", "manual closed"));
    EXPECT_EQ(m.engine.Outcome(), RunOutcome::EndedEarly);
  }
}

TEST(ManualMode, RfThatItLeftOnIsOffWhileTheSensorIsMoved) {
  ManualRun m;
  m.UsePower(LevelingMethod::ForwardPower);
  m.UseIfi();
  m.manualAfter = 3;
  m.Play({[&] { m.mode.manStepNumChange(1); },
          [&] {
            m.mode.manRfOn(true);
            EXPECT_TRUE(m.rfOn);
          }});
  EXPECT_EQ(m.Shown("Move sensor(s) to low freq coupler"), 1);
  EXPECT_FALSE(m.rfOnAtMessage);
  EXPECT_EQ(m.Rows().size(), 5U);
  EXPECT_EQ(m.Rows()[3], m.Rows()[1]);
}

TEST(ManualMode, ItsButtonCutsALongDwellToOneIntermediateDwellAndTheRunLogTellsHowLongItWasHeld) {
  RunRig rig;
  const WorkingDirectory here(rig.t.directory.Path());
  rig.LogToFile();
  rig.test.InitLevOffset = -6;
  rig.test.SweepDwell = 60;
  rig.AtStatus(
      "Intermediate dwell...",
      [&] {
        const std::int64_t levelReached = rig.t.clock.TickMs();
        rig.t.events.At(levelReached + 1500, [&] { rig.engine.RequestManual(); });
        rig.t.events.At(levelReached + 100'000, [&] { rig.engine.Manual().manExitClick(); });
      },
      4);
  rig.Run();
  const std::string log = rig.t.directory.Read("runlog.hyl");
  EXPECT_THAT(log, testing::HasSubstr("Dwell cut short by Manual at 2.0 MHz: held 2.0 s of 60.0 s\r\n"));
  EXPECT_EQ(log.find("cut short"), log.rfind("cut short")) << "the others were held to their end";
}

TEST(ManualMode, ElapsedAndRemainingTimeLeaveItOut) {
  std::vector<double> elapsed, remaining;
  for (const std::int64_t minutes : {0, 10}) {
    ManualRun m;
    m.test.StopFreq = 3, m.test.StepType = StepType::Linear, m.test.LinearStep = 0.25;
    m.manualAfter = 4;
    m.Play([&] { m.t.clock.Advance(minutes * 60000); });
    elapsed.push_back(m.display.Now(Readout::Elapsed));
    remaining.push_back(*(m.display.All(Readout::Remaining).end() - 2));
  }
  EXPECT_NEAR(elapsed[0], elapsed[1], 0.01);
  EXPECT_NEAR(remaining[0], remaining[1], 0.01);
}

TEST(ManualMode, StepsThatAreRunAgainCountInTheTimePerStep) {
  ManualRun m;
  m.test.InitLevOffset = 0;
  m.Play([&] { m.Step(1); });
  // Steps 2, 2 and 3 are timed, 2.5 s each but for the cut dwell; after the last, one step is still counted as left.
  const double minutes = m.display.Now(Readout::Elapsed);
  EXPECT_NEAR(*(m.display.All(Readout::Remaining).end() - 2), minutes / 3, 1e-9);
}

}  // namespace
}  // namespace hylden
