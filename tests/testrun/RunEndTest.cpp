// However a run ends: RF off, the instruments offline, the rows still there, and one question whether to save them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

#include "testrun/RunRig.h"

namespace hylden {
namespace {

constexpr const char* kSaveQuestion = "Would you like to save the testrun data?";

/// Everything on: net power, probe, AM, an IFI amplifier.
void UseEverything(RunRig& rig) {
  rig.UsePower(LevelingMethod::NetPower);
  rig.test.MonitorProbe = rig.test.LimitCurrent = true;
  rig.test.LimitMargin = 20;
  rig.UseAm(true, true);
  rig.UseIfi();
}

void ExpectEnded(const RunRig& rig) {
  EXPECT_EQ(rig.Shown(kSaveQuestion), rig.Rows().empty() ? 0 : 1);
  EXPECT_EQ(rig.t.speaker.tones.back(), (FakeSpeaker::Tone{1000, 2000}));
  ASSERT_GE(rig.display.phases.size(), 3U);
  EXPECT_EQ(std::vector<RunPhase>(rig.display.phases.end() - 3, rig.display.phases.end()),
            (std::vector<RunPhase>{RunPhase::TakingDown, RunPhase::Asking, RunPhase::Ready}));
  EXPECT_TRUE(rig.t.shell.delay.HaltRequested());
  EXPECT_FALSE(rig.engine.IsRunning());
}

void ExpectEndedWithRfOff(const RunRig& rig) {
  EXPECT_FALSE(rig.rfOn);
  ExpectEnded(rig);
}

struct RunEndTest : testing::Test {
  RunRig rig;
};

TEST_F(RunEndTest, ANormalRunTakesTheInstrumentsDownInOrder) {
  UseEverything(rig);
  rig.Run();
  EXPECT_EQ(rig.Rows().size(), 3U);
  const auto& lines = rig.bus.Lines();
  const auto at = [&](const std::string& text) { return std::find(lines.begin(), lines.end(), text) - lines.begin(); };
  EXPECT_LT(at("LOCAL 13"), at("LOCAL 7"));
  EXPECT_LT(at("LOCAL 7"), at("LOCAL 18"));
  EXPECT_EQ(Strings(lines.end() - 3, lines.end()), (Strings{"LOCAL 18", "LOCAL 9", "LOCAL 10"}));
  ExpectEndedWithRfOff(rig);
}

struct TakenDownCase {
  const char* name;
  void (*inDwell)(RunRig&);
  Strings tried;  ///< after the dwell, in this order
};

TEST_F(RunEndTest, WhateverFailsEveryInstrumentIsStillTriedAndTheRowsStay) {
  const TakenDownCase cases[] = {
      {"the cable is pulled",
       [](auto& r) { r.bus.FailAlways(gpib::kEabo); },
       {"> 18 OUTP OFF", "> 13 BYE", "> 7 BYE", "> 18 POW"}},
      {"one can't be taken down",
       [](auto& r) { r.bus.FailLine("> 18 OUTP OFF", gpib::kEabo), r.bus.FailLine("> 13 BYE", gpib::kEabo); },
       {"> 13 BYE", "LOCAL 7", "LOCAL 18"}},
      {"RF may be on: amplifiers before a dead meter is waited for",
       [](auto& r) { r.bus.Kill(18); },
       {"> 9 ZA", "> 13 BYE"}},
  };
  for (const TakenDownCase& c : cases) {
    SCOPED_TRACE(c.name);
    RunRig failing;
    UseEverything(failing);
    failing.AtStatus(
        "Finishing Final Dwell...",
        [&] {
          failing.bus.transcript.Clear();
          c.inDwell(failing);
        },
        2);
    failing.Run();
    ExpectEnded(failing);
    EXPECT_EQ(failing.Rows().size(), 3U);
    auto at = failing.bus.Lines().begin();
    for (const std::string& line : c.tried) {
      at = std::find_if(at, failing.bus.Lines().end(), [&](const std::string& l) { return l.starts_with(line); });
      ASSERT_NE(at, failing.bus.Lines().end()) << line;
    }
  }
}

TEST_F(RunEndTest, AHaltAtAnyWaitEndsTheRunAtOnceAndRaisesNothing) {
  int waits = 1;
  for (int n = 0; n <= waits && !HasFailure(); ++n) {  // wait 0 never comes: the run that counts the waits
    SCOPED_TRACE(n);
    RunRig halted;
    UseEverything(halted);
    std::int64_t haltedAt = -1, rfOffAt = -1;
    halted.bus.transcript.onLine = [&, follow = halted.bus.transcript.onLine](const std::string& line) {
      const bool wasOn = halted.rfOn;
      follow(line);
      if (wasOn && !halted.rfOn) rfOffAt = halted.t.clock.TickMs();
    };
    double atHalt = -6;
    int wait = 0;
    const auto halt = [&] {
      halted.t.shell.delay.RequestHalt();
      if (halted.rfOn) haltedAt = halted.t.clock.TickMs();
      atHalt = halted.generatorDbm;
      halted.highestDbm = -200;
    };
    halted.t.events.onYield = [&] {
      if (++wait == n) halted.t.events.At(halted.t.clock.TickMs() + 1, halt);  // within the wait
    };
    halted.Run();
    if (n == 0) waits = wait;
    EXPECT_LE(halted.highestDbm, atHalt);
    EXPECT_TRUE(haltedAt < 0 || rfOffAt == haltedAt) << rfOffAt - haltedAt;
    ExpectEndedWithRfOff(halted);
  }
  EXPECT_GT(waits, 50);
}

TEST_F(RunEndTest, AFailingDisplayEndsTheRunInOrder) {
  for (const char* status : {"Initializing instruments...", "Raising sig-gen level...", "Finishing Final Dwell...",
                             "Shutting down instruments..."}) {
    SCOPED_TRACE(status);
    RunRig failing;
    failing.display.throwAtStatus = status;
    failing.Run();
    EXPECT_EQ(failing.Shown("Error # 6\rOverflow\rfrmRunTest.RunCDI\r"), 1);
    EXPECT_FALSE(failing.rfOnAtMessage);
    ExpectEndedWithRfOff(failing);
  }
}

/// The operator goes to manual mode after a step, does something there, and leaves it.
void InManual(RunRig& rig, void (*action)(RunRig&)) {
  rig.t.events.onYield = [&rig, action, asked = false]() mutable {
    if (rig.manual.isOpen) action(rig);
    if (rig.manual.isOpen) rig.engine.Manual().manExitClick();
    if (rig.display.steps.size() == 1 && !std::exchange(asked, true)) rig.engine.RequestManual();
  };
}

TEST_F(RunEndTest, ASecondRunIsLikeAFirst) {
  const auto arrange = [](RunRig& r) {
    UseEverything(r);
    r.UseAm(false, false);
    Redefine(r.sigGen, [](auto& d) { d.MinimumLevel = -40; });  // the first step's start is asked about
  };
  const auto run = [](RunRig& r) {
    r.t.dialogs.Clear();
    r.bus.transcript.Clear();
    r.display.statuses.clear();
    r.engine.RunCdiTest();
    return std::vector<Strings>{r.Sent(18), r.Sent(7), r.Sent(9), r.Rows(), r.t.dialogs.Texts(), r.display.statuses};
  };
  const struct {
    const char* after;
    void (*spoil)(RunRig&);
  } cases[] = {
      {"a whole run", [](auto&) {}},
      {"a preparation that failed",
       [](auto& r) {
         r.test.FreqList = true, r.test.ListFile = "none.lst";
         EXPECT_EQ(r.Prepare(), RunReadiness::NotReady);
         r.test.FreqList = false;
         EXPECT_EQ(r.Prepare(), RunReadiness::Ready);
       }},
      {"a halt",
       [](auto& r) {
         r.AtStatus(
             "Finishing Final Dwell...", [&r] { r.t.shell.delay.RequestHalt(); }, 2);
       }},
      {"an instrument that did not come up", [](auto& r) { r.bus.FailLine("FIND 13", gpib::kEnol); }},
      {"an exception", [](auto& r) { r.throwAtLines = {"> 18 FREQ 2.0"}; }},
      {"manual mode", [](auto& r) { InManual(r, [](auto& m) { m.engine.Manual().manLevOffsetChange(-3); }); }},
      {"manual mode that was halted with the modulation off",
       [](auto& r) {
         InManual(r, [](auto& m) { m.engine.Manual().manModOn(false), m.t.shell.delay.RequestHalt(); });
         r.t.dialogs.onShow = [&r](const Message& box) {
           if (box.text == kSaveQuestion) r.engine.RequestManual();
         };
       }},
  };
  RunRig fresh;
  arrange(fresh);
  ASSERT_EQ(fresh.Prepare(), RunReadiness::Ready);
  const auto first = run(fresh);
  ASSERT_EQ(fresh.Rows().size(), 3U) << fresh.t.dialogs.LastText();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.after);
    RunRig again;
    arrange(again);
    ASSERT_EQ(again.Prepare(), RunReadiness::Ready);
    c.spoil(again);
    again.engine.RunCdiTest();
    EXPECT_EQ(again.manual.calls.empty(), std::string(c.after).find("manual") == std::string::npos);
    again.t.events.onYield = [&] { again.engine.Manual().manExitClick(); };
    again.t.dialogs.onShow = nullptr;
    EXPECT_EQ(run(again), first);
  }
}

TEST_F(RunEndTest, AnotherRunAsksBeforeItDropsRowsThatAreInNoFile) {
  rig.Run();  // to be saved, and the file dialog is cancelled
  rig.t.dialogs.Answer(MessageAnswer::Cancel);
  rig.engine.ConfirmAndRun();
  EXPECT_EQ(rig.t.dialogs.LastText(), "The run data has not been saved.\r\nSave it?");
  rig.t.dialogs.Answer(MessageAnswer::Yes);
  rig.t.dialogs.AnswerSave(rig.t.directory.File("kept.run"));
  rig.t.dialogs.Answer(MessageAnswer::Cancel);
  rig.engine.ConfirmAndRun();
  EXPECT_EQ(rig.t.dialogs.LastText().substr(0, 9), "Make sure");
  EXPECT_EQ(rig.t.directory.Read("kept.run"), RunFileText(rig.engine.Data(), false));
}

TEST_F(RunEndTest, TheRunLogTellsTheStoryWithItsTimesAndIsNotWrittenWhileRfIsOn) {
  const WorkingDirectory here(rig.t.directory.Path());
  rig.LogToFile();
  UseEverything(rig);
  rig.t.events.onYield = [&, once = false]() mutable {
    if (!rig.rfOn) return;
    if (!std::exchange(once, true)) rig.t.shell.log.LogFile("said while RF is on");
    EXPECT_EQ(rig.t.directory.Read("runlog.hyl").find("RF is on"), std::string::npos) << "the log may stall";
  };
  rig.bus.FailLine("> 13 BYE", gpib::kEnol);
  rig.t.dialogs.onShow = [&](const Message& message) {
    if (message.text.starts_with("Error")) rig.t.clock.Advance(3'600'000);
  };
  rig.Run();
  EXPECT_TRUE(rig.t.dialogs.WasShownContaining("Error"));
  const std::string log = rig.t.directory.Read("runlog.hyl");
  std::size_t at = 0;
  for (const char* entry : {"Test run started\r\n                 Test Run Parameters", "said while RF is on",
                            "Frequency sweep finished", "Instruments taken offline"}) {
    at = log.find(entry, at);
    ASSERT_NE(at, std::string::npos) << entry;
    EXPECT_EQ(log.substr(log.rfind('\n', at) + 1, 11), "01/05/26 09") << "however long a box stands";
  }
}

TEST_F(RunEndTest, SettingsThatOpenAndCannotBeReadEndNoRun) {
  std::filesystem::create_symlink("/proc/self/mem", rig.t.directory.File("Hylden.ini"));
  rig.Run();
  EXPECT_EQ(rig.Rows().size(), 3U);
  EXPECT_EQ(rig.engine.Outcome(), RunOutcome::Finished);
  EXPECT_FALSE(rig.t.dialogs.WasShownContaining("Error # "));
}

TEST_F(RunEndTest, TheRunIsConfirmedFirst) {
  rig.documents.calInfo.Record.AmpUsed = "75 W broadband";
  rig.documents.calInfo.Record.DeviceDescription = "CDN M3";
  ASSERT_EQ(rig.Prepare(), RunReadiness::Ready);
  EXPECT_THAT(rig.display.phases, testing::ElementsAre(RunPhase::Ready));
  rig.t.dialogs.Answer(MessageAnswer::Cancel);
  rig.engine.ConfirmAndRun();
  EXPECT_EQ(rig.bus.Calls(), 0);
  EXPECT_EQ(rig.display.phases.size(), 1U);
  EXPECT_EQ(rig.t.dialogs.messages[0].title, "MAKE SURE!!!");
  EXPECT_EQ(rig.t.dialogs.messages[0].text,
            "Make sure proper amp is hooked up,\r\n75 W broadband\r\n"
            "and proper coupling device and cables are connected,\r\nCDN M3");
  rig.t.dialogs.Answer(MessageAnswer::Ok);
  rig.t.dialogs.Answer(MessageAnswer::No);
  rig.engine.ConfirmAndRun();
  EXPECT_EQ(rig.Rows().size(), 3U);
}

TEST_F(RunEndTest, ARunWithoutPlanOrTablesTouchesNoInstrument) {
  const struct {
    void (*change)(RunRig&);
    RunReadiness readiness;
    const char *text, *status;
  } cases[] = {
      {[](auto& r) { r.test.FreqSweep = false; }, RunReadiness::NoSteps, "Error, no frequencies to test? Check setup.",
       "Calculating frequencies and dwell times..."},
      {[](auto& r) { r.equipment.FwdPortFile = r.t.directory.File("none.fac"); }, RunReadiness::NotReady,
       "Error loading foward coupling port file", "State: Not ready"},
      {[](auto& r) { r.test.FreqList = true, r.test.ListFile = r.t.directory.Write("bad.lst", "Freq\r\n"); },
       RunReadiness::NotReady, "Bad data in frequency list file", "State: Not ready"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    RunRig refused;
    c.change(refused);
    EXPECT_EQ(refused.Prepare(), c.readiness);
    EXPECT_TRUE(refused.t.dialogs.LastText().starts_with(c.text)) << refused.t.dialogs.LastText();
    EXPECT_EQ(refused.display.statuses.back(), c.status);
    refused.engine.RunCdiTest();
    EXPECT_EQ(refused.bus.Calls(), 0);
  }
}

/// Whether a device that was put in remote was brought back.
bool EndsLocal(const Strings& lines, const std::string& device) {
  const auto last = [&](const std::string& beginning) {
    return std::find_if(lines.rbegin(), lines.rend(), [&](const auto& line) { return line.starts_with(beginning); });
  };
  const auto remote = last("REMOTE " + device);
  return remote == lines.rend() || last("LOCAL " + device) < remote;
}

TEST_F(RunEndTest, AnInstrumentThatDoesNotComeUpEndsTheRunBeforeRfIsOn) {
  const struct {
    void (*change)(RunRig&);
    const char* text;
  } cases[] = {
      {[](auto& r) { r.bus.FailLine("IFC", gpib::kEdvr); }, "Error initializing GPIB"},
      {[](auto& r) { r.bus.absent.insert(18); }, "Error initializing signal generator"},
      {[](auto& r) { Redefine(r.sigGen, [](auto& d) { d.FreqSetPrefix = d.FreqSetSuffix = ""; }); },
       "Error initializing signal generator"},
      {[](auto& r) { Redefine(r.sigGen, [](auto& d) { d.LevSetPrefix = d.LevSetSuffix = ""; }); },
       "Error initializing signal generator"},
      {[](auto& r) { r.test.ModType = Modulation::Pulse, Redefine(r.sigGen, [](auto& d) { d.PulseCapable = 0; }); },
       "Signal generator can't do Pulse Modulation"},
      {[](auto& r) { r.test.ModType = Modulation::Fm, Redefine(r.sigGen, [](auto& d) { d.FmCapable = 0; }); },
       "Signal generator can't do Frequency Modulation"},
      {[](auto& r) { r.test.LevelingMethod = LevelingMethod::ForwardPower, r.bus.FailLine("FIND 7", gpib::kEnol); },
       "Error initializing Power Meter"},
      {[](auto& r) { r.test.MonitorProbe = true, r.bus.FailLine("FIND 13", gpib::kEnol); }, "Error initializing meter"},
      {[](auto& r) { r.test.MonitorProbe = true, r.bus.FailLine("> 13 IP", gpib::kEabo); }, "Error initializing meter"},
      {[](auto& r) { r.bus.FailLine("REMOTE 18", gpib::kEnol); }, "Error initializing signal generator"},
      {[](auto& r) { r.equipment.AmplifierType = AmpType::Ifi, r.bus.FailLine("> 10 8", gpib::kEabo); },
       "Error initializing IFI amp"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    RunRig failing;
    c.change(failing);
    failing.rfOn = true;  // as the generator was found
    failing.t.dialogs.onShow = [&](const Message&) {
      const Strings sent = failing.Sent(18);
      EXPECT_TRUE(sent.empty() || sent.back().starts_with("OUTP OFF")) << "a box stands with RF on";
    };
    failing.Run();
    EXPECT_EQ(failing.Shown(kSaveQuestion), 0) << "there is nothing to save";
    EXPECT_EQ(failing.t.speaker.tones.size(), 1U);
    EXPECT_EQ(failing.highestDbm, -200);
    EXPECT_TRUE(failing.Rows().empty());
    for (const std::string device : {"18", "13", "7"})
      EXPECT_TRUE(EndsLocal(failing.bus.Lines(), device)) << device << " stays locked out";
    const auto& told = failing.t.dialogs.messages.front();  // in one box with what the driver has to tell
    EXPECT_TRUE(told.text.ends_with(c.text)) << told.text;
    EXPECT_EQ(told.icon, MessageIcon::Critical);
  }
}

}  // namespace
}  // namespace hylden
