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
  EXPECT_EQ(at("LOCAL 18"), static_cast<std::ptrdiff_t>(lines.size()) - 1);
  ExpectEndedWithRfOff(rig);
}

TEST_F(RunEndTest, WhicheverBusCallFailsTheRunEndsWithRfOffAndNoFalseRow) {
  for (const bool everything : {false, true}) {
    std::vector<std::string> rows;
    int calls = 1;
    for (int n = 0; n <= calls && !HasFailure(); ++n) {  // call 0 is never made: the run that counts the calls
      SCOPED_TRACE(n);
      RunRig failing;
      if (everything) UseEverything(failing);
      failing.bus.FailCall(n, gpib::kEabo);
      failing.Run();
      if (n == 0) calls = failing.bus.Calls(), rows = failing.Rows();
      ExpectEndedWithRfOff(failing);
      EXPECT_LE(failing.highestDbm, -6);
      for (const std::string& row : failing.Rows())
        EXPECT_TRUE(row.ends_with(", , , , , ") || std::count(rows.begin(), rows.end(), row) == 1) << row;
    }
  }
}

TEST_F(RunEndTest, WithTheCablePulledEveryInstrumentIsStillTriedAndTheRowsStay) {
  UseEverything(rig);
  rig.AtStatus(
      "Finishing Final Dwell...", [&] { rig.bus.FailAlways(gpib::kEabo); }, 2);
  rig.Run();
  ExpectEnded(rig);
  EXPECT_EQ(rig.Rows().size(), 3U);
  for (const char* attempt : {"> 18 OUTP OFF", "> 13 BYE", "> 7 BYE", "> 18 POW"})
    EXPECT_THAT(rig.bus.Lines(), testing::Contains(testing::StartsWith(attempt))) << attempt;
}

TEST_F(RunEndTest, AnInstrumentThatCantBeTakenDownDoesNotKeepTheOthersUp) {
  UseEverything(rig);
  rig.AtStatus("Finishing Final Dwell...", [&] {
    rig.bus.FailLine("> 18 OUTP OFF", gpib::kEabo);
    rig.bus.FailLine("> 13 BYE", gpib::kEabo);
    rig.t.shell.delay.RequestHalt();
  });
  rig.Run();
  EXPECT_THAT(rig.bus.Lines(), testing::Contains("LOCAL 7"));
  EXPECT_THAT(rig.bus.Lines(), testing::Contains("LOCAL 18"));
  ExpectEndedWithRfOff(rig);
}

TEST_F(RunEndTest, AmplifiersAreResetBeforeADeadMeterIsWaitedForWhenRfMayBeOn) {
  UseEverything(rig);
  rig.AtStatus("Finishing Final Dwell...", [&] {
    rig.bus.transcript.Clear();
    rig.bus.Kill(18);
    rig.t.shell.delay.RequestHalt();
  });
  rig.Run();
  const auto& lines = rig.bus.Lines();
  const auto reset = std::find(lines.begin(), lines.end(), "> 9 ZA\\r\\n");
  EXPECT_THAT((Strings{reset, lines.end()}), testing::Contains("> 13 BYE"));
}

struct HaltCase {
  const char* name;
  const char* status;
};
class HaltTest : public RunEndTest, public testing::WithParamInterface<HaltCase> {};

TEST_P(HaltTest, NothingRaisesTheLevelAnyMore) {
  UseEverything(rig);
  double atHalt = 0;
  rig.AtStatus(GetParam().status, [&] {
    rig.t.shell.delay.RequestHalt();
    atHalt = rig.generatorDbm;
    rig.highestDbm = -200;
  });
  const std::int64_t start = rig.t.clock.TickMs();
  rig.Run();
  EXPECT_LE(rig.highestDbm, atHalt);
  EXPECT_LE(rig.Rows().size(), 1U);
  EXPECT_GT(rig.t.clock.TickMs(), start);
  ExpectEndedWithRfOff(rig);
}

INSTANTIATE_TEST_SUITE_P(
    RunEnd, HaltTest,
    testing::Values(HaltCase{"initializing", "Initializing instruments..."},
                    HaltCase{"band_switch", "Setting Sig-Gen..."}, HaltCase{"first_dwell", "Intermediate dwell..."},
                    HaltCase{"ramp_dwell", "Intermediate Dwell..."}, HaltCase{"probe", "Getting feedback..."},
                    HaltCase{"forward", "Reading forward power..."}, HaltCase{"reverse", "Reading reverse power..."},
                    HaltCase{"dwell", "Finishing Final Dwell..."}),
    [](const auto& row) { return row.param.name; });

TEST_F(RunEndTest, AHaltInAnIntermediateDwellEndsTheRunWithinOneTurn) {
  std::int64_t haltedAt = 0, rfOffAt = 0;
  rig.AtStatus("Intermediate dwell...", [&] {
    rig.t.shell.delay.RequestHalt();
    haltedAt = rig.t.clock.TickMs();
  });
  rig.bus.transcript.onLine = [&, follow = rig.bus.transcript.onLine](const std::string& line) {
    follow(line);
    if (haltedAt > 0 && rfOffAt == 0 && line.starts_with("> 18 OUTP OFF")) rfOffAt = rig.t.clock.TickMs();
  };
  rig.Run();
  EXPECT_EQ(rfOffAt, haltedAt);
  ExpectEndedWithRfOff(rig);
}

class ThrowTest : public RunEndTest, public testing::WithParamInterface<HaltCase> {};

TEST_P(ThrowTest, AFailingDisplayEndsTheRunInOrder) {
  rig.display.throwAtStatus = GetParam().status;
  rig.Run();
  EXPECT_EQ(rig.Shown("Error # 6\rOverflow\rfrmRunTest.RunCDI\r"), 1);
  EXPECT_FALSE(rig.rfOnAtMessage);
  ExpectEndedWithRfOff(rig);
}

INSTANTIATE_TEST_SUITE_P(RunEnd, ThrowTest,
                         testing::Values(HaltCase{"initializing", "Initializing instruments..."},
                                         HaltCase{"ramp", "Raising sig-gen level..."},
                                         HaltCase{"dwell", "Finishing Final Dwell..."},
                                         HaltCase{"shutdown", "Shutting down instruments..."}),
                         [](const auto& row) { return row.param.name; });

TEST_F(RunEndTest, TheLevelOfAGeneratorWithoutRfOffGoesToItsMinimum) {
  Redefine(rig.sigGen, [](auto& d) { d.RfOff = ""; });
  rig.AtStatus("Finishing Final Dwell...", [&] { rig.t.shell.delay.RequestHalt(); });
  rig.Run();
  EXPECT_EQ(rig.generatorDbm, -120);
}

TEST_F(RunEndTest, SavingAtTheEndWritesTheRows) {
  ASSERT_EQ(rig.Prepare(), RunReadiness::Ready);
  rig.t.dialogs.Answer(MessageAnswer::Yes);
  rig.t.dialogs.AnswerSave(rig.t.directory.File("end.run"));
  rig.engine.RunCdiTest();
  EXPECT_EQ(rig.t.directory.Read("end.run"), RunFileText(rig.engine.Data(), false));
  EXPECT_EQ(rig.t.dialogs.messages[0].title, "Save Run Data");
}

TEST_F(RunEndTest, ASecondRunStartsAfresh) {
  rig.Run();
  rig.engine.RunCdiTest();
  EXPECT_EQ(rig.Rows().size(), 3U);
  EXPECT_EQ(rig.Shown(kSaveQuestion), 2);
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

TEST_F(RunEndTest, TheRunLogTellsTheStory) {
  const WorkingDirectory here(rig.t.directory.Path());
  rig.t.shell.settings.Store().SaveSettingStr("System", "LogToFile", "1");
  rig.t.events.onYield = [&, once = false]() mutable {
    if (!rig.rfOn) return;
    if (!std::exchange(once, true)) rig.t.shell.log.LogFile("said while RF is on");
    EXPECT_EQ(rig.t.directory.Read("runlog.hyl").find("RF is on"), std::string::npos) << "the log may stall";
  };
  rig.Run();
  const std::string log = rig.t.directory.Read("runlog.hyl");
  const auto said = log.find("said while RF is on");
  const auto started = log.find("Test run started\r\n                 Test Run Parameters");
  const auto finished = log.find("Frequency sweep finished");
  const auto offline = log.find("Instruments taken offline");
  EXPECT_NE(started, std::string::npos);
  EXPECT_LT(started, said);
  EXPECT_LT(said, finished);
  EXPECT_LT(finished, offline);
  EXPECT_NE(offline, std::string::npos);
}

TEST_F(RunEndTest, TheRunLogTellsWhenTheRunEndedHoweverLongABoxStands) {
  const WorkingDirectory here(rig.t.directory.Path());
  rig.t.shell.settings.Store().SaveSettingStr("System", "LogToFile", "1");
  UseEverything(rig);
  rig.bus.FailLine("> 13 BYE", gpib::kEnol);
  rig.t.dialogs.onShow = [&](const Message& message) {
    if (message.text.starts_with("Error")) rig.t.clock.Advance(3'600'000);
  };
  rig.Run();
  const std::string log = rig.t.directory.Read("runlog.hyl");
  const auto hourOf = [&](const char* entry) {
    const auto at = log.find(entry);
    return at == std::string::npos ? std::string("no entry") : log.substr(log.rfind('\n', at) + 1, 11);
  };
  EXPECT_GE(rig.t.dialogs.messages.size(), 2U);
  EXPECT_EQ(hourOf("Frequency sweep finished"), "01/05/26 09");
  EXPECT_EQ(hourOf("Instruments taken offline"), "01/05/26 09");
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
      {[](auto& r) {
         r.test.FreqSweep = false, r.test.FreqList = true, r.test.ListFile = r.t.directory.Write("one.lst", "2\r\n");
       },
       RunReadiness::NoSteps, "Error, no frequencies to test? Check setup.",
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
    EXPECT_EQ(refused.t.dialogs.LastText(), c.text);
    EXPECT_EQ(refused.display.statuses.back(), c.status);
    refused.engine.RunCdiTest();
    EXPECT_EQ(refused.bus.Calls(), 0);
  }
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
    const auto& told = failing.t.dialogs.messages.front();  // in one box with what the driver has to tell
    EXPECT_TRUE(told.text.ends_with(c.text)) << told.text;
    EXPECT_EQ(told.icon, MessageIcon::Critical);
  }
}

}  // namespace
}  // namespace hylden
