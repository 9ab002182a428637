#include "calibration/CableCalibration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "calibration/CalibrationRuns.h"
#include "calibration/InsertionLossText.h"
#include "measure/InterpClass.h"
#include "support/FormTable.h"
#include "support/ReadLines.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

using testing::ElementsAre;
using Kind = EntryFailure::Kind;

CableSetup OneToTen() {
  CableSetup setup;
  setup.StartFreq = 1;
  setup.StopFreq = 10;
  setup.StepType = StepType::Linear;
  setup.LinearStep = 1;
  return setup;
}

void Log(CableSetup& setup) {
  setup.StepType = StepType::Log;
}

std::optional<EntryFailure> Validate(const FormEntries& entries) {
  CableSetup setup;
  const auto failure = ValidateCableSetup(entries, setup);
  EXPECT_EQ(setup.StopFreq, 0);
  return failure;
}

TEST(CableSetupTest, RefusesABadEntryAtItsBox) {
  constexpr Refusal<CableSetup> refusals[] = {
      {[](auto& s) { s = {}; }, "txtStartFreq", "", Kind::NotANumber},
      {{}, "txtStartFreq", "0"},
      {{}, "txtStopFreq", "1"},
      {Log, "txtLogStep", "0"},
      {{}, "txtLinearStep", "0"},
      {{}, "txtDwell", "-1"},
      {{}, "txtLev", "-1e39"},
  };
  ExpectRefused(refusals, OneToTen(), Validate);
  FormEntries entries = EntriesOf(OneToTen());
  entries["txtDwell"] = "x", entries["txtStartFreq"] = "0";
  EXPECT_EQ(Validate(entries)->Control, "txtDwell") << "what is no number is told before any range";
  for (const bool log : {false, true}) {
    CableSetup setup = OneToTen();
    if (log) Log(setup);
    EXPECT_EQ(ExpectNumbersWanted(setup, Validate), 5U);
  }
}

TEST(CableSetupTest, TakesAndShowsAGoodSetup) {
  FormEntries entries = EntriesOf(OneToTen());
  entries["txtLogStep"] = "x";
  entries["txtDwell"] = "0";
  CableSetup setup;
  EXPECT_FALSE(ValidateCableSetup(entries, setup));
  EXPECT_EQ(setup.LogStep, 1);
  entries["txtLogStep"] = "1";
  EXPECT_EQ(EntriesOf(setup), entries);
  EXPECT_EQ(EntriesOf(setup)["txtDwell"], "0.0");
  EXPECT_EQ(UsedWith(entries, CableSetup()),
            (UsedControls{{"txtLinearStep", true}, {"txtLogStep", false}, {"lblListFile", false}}));
  EXPECT_EQ(EntriesOf(CableSetup())["txtStartFreq"], "");
}

TEST(CableSetupTest, ChecksTheStation) {
  EquipRecord equipment;
  equipment.SigGenFile = "x";
  ASSERT_TRUE(CheckCableStation(equipment));
  EXPECT_EQ(CheckCableStation(equipment)->Text, "The signal generator and meter must both be selected");
  equipment.MeterFile = "y";
  EXPECT_FALSE(CheckCableStation(equipment));

  TestShell t;
  Instruments instruments(t.shell);
  Equip equip(t.shell, instruments);
  equip.Record = equipment;
  EXPECT_FALSE(CheckCableStation(equip));
  instruments.meter.Forget();
  EXPECT_EQ(CheckCableStation(equip)->Text, "The meter definition could not be loaded:\r\n" + equipment.MeterFile);
}

class CableTest : public testing::Test {
 protected:
  CableTest() {
    cable.Setup = OneToTen();
    cable.Setup.Level = -20;
    EXPECT_TRUE(cable.BuildPlan());
  }

  /// Both passes, through a cable of 2.75 dB.
  void MeasureBoth() {
    rig.portDb = 30;
    cable.DirectPass(rig.display);
    rig.portDb = 27.25;
    cable.InsertPass(rig.display);
  }
  /// How many points have been read so far.
  std::ptrdiff_t Read(bool (CablePoint::*how)() const) const {
    const auto& points = cable.Points();
    return std::count_if(points.begin(), points.end(), [&](const CablePoint& p) { return (p.*how)(); });
  }
  std::vector<double> Frequencies() const {
    std::vector<double> frequencies;
    for (const CablePoint& point : cable.Points()) frequencies.push_back(point.Freq);
    return frequencies;
  }

  CalibrationRuns rig;
  RunCablCal& cable = rig.cable;
};

TEST_F(CableTest, PlansTheSetupsFrequencies) {
  EXPECT_THAT(Frequencies(), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10));
  cable.Setup.StepType = StepType::Log;
  cable.Setup.LogStep = 50;
  cable.Setup.StopFreq = 2;
  EXPECT_TRUE(cable.BuildPlan());
  EXPECT_THAT(Frequencies(), ElementsAre(1, 1.5, 2));
  cable.Setup.StepType = StepType::List;
  cable.Setup.StopFreq = 6;
  cable.Setup.ListFile = rig.t.directory.Write("a.lst", "0.5\r\n1\r\n6\r\n3\r\n7\r\n4\r\n");
  EXPECT_TRUE(cable.BuildPlan());
  EXPECT_THAT(Frequencies(), ElementsAre(1, 6, 3));
  cable.Setup.ListFile = rig.t.directory.File("none.lst");
  EXPECT_FALSE(cable.BuildPlan());
  EXPECT_EQ(cable.Points().size(), 3U);
}

TEST_F(CableTest, TakesTheLossAsTheDifferenceOfTheReadings) {
  MeasureBoth();
  EXPECT_EQ(cable.Outcome(), RunOutcome::Finished);
  ASSERT_EQ(cable.Points().size(), 10U);
  for (const CablePoint& point : cable.Points()) {
    EXPECT_EQ(point.SigGenLevel, -20);
    EXPECT_EQ(point.Direct, 10);
    EXPECT_EQ(point.Insert, 7.25);
    EXPECT_EQ(point.Loss, 2.75);
  }
  EXPECT_NEAR(rig.display.plan.EstimatedMinutes, (1 + 0.1) * 10 / 60, 1e-6);
  EXPECT_EQ(rig.t.speaker.tones.size(), 80U);
  EXPECT_TRUE(rig.t.dialogs.messages.empty());
  EXPECT_EQ(rig.display.phases,
            (std::vector<RunPhase>{RunPhase::BringingUp, RunPhase::Running, RunPhase::TakingDown, RunPhase::Ready,
                                   RunPhase::BringingUp, RunPhase::Running, RunPhase::TakingDown, RunPhase::Ready}));
  EXPECT_FALSE(rig.rfOn);
  EXPECT_EQ(rig.bus.Lines().back(), "LOCAL 13");
  EXPECT_THAT(rig.bus.Lines(), testing::Contains("LOCAL 18"));
}

TEST_F(CableTest, SavesATableThatTheProgramReads) {
  MeasureBoth();
  const std::string path = rig.t.directory.File("cable.los");
  rig.t.dialogs.AnswerSave(path);
  ASSERT_TRUE(cable.SaveFile());
  EXPECT_EQ(rig.t.directory.Read("cable.los"), InsertionLossText(cable.Points(), path));
  const FileRequest& request = rig.t.dialogs.saveRequests.front();
  EXPECT_EQ(request.title, "Select Filname");
  EXPECT_EQ(request.filter, "InsLoss (*.los)|*.los|Text File (*.txt)|*.txt|All Files (*.*)|*.*");
  EXPECT_EQ(request.fileName, "insertion loss 2026-01-05 09-00.los");
  InterpClass table(rig.t.shell);
  ASSERT_TRUE(table.InitInterp(path));
  EXPECT_EQ(table.InterpVal(1.2, FreqScale::Linear), 2.75F);
}

TEST(InsertionLossTextTest, WritesTheDocumentedExample) {
  const std::string text =
      InsertionLossText({{0.15, -10, 96.98, 96.93, 0.05}, {1, -10, 96.99, 96.89, 0.1}, {230, -10, 96.97, 95.57, 1.4}},
                        "/lab/cables/w17.los");
  std::string page = ReadTextFile(HYLDEN_SOURCE_DIR "/docs/formats/insertion-loss.md");
  for (std::size_t at = 0; (at = page.find('\n', at)) != std::string::npos; at += 2) page.insert(at, 1, '\r');
  EXPECT_NE(page.find("```text\r\n" + text + "```"), std::string::npos) << text;
}

TEST(InsertionLossTextTest, KeepsWideNumbersApart) {
  const std::string text = InsertionLossText({{12345.000001, -60, -120.25, -90.5, -29.75}}, "x.los");
  EXPECT_TRUE(text.ends_with("\r\n12345.000001, -29.75,   -120.25,  -90.5\r\n")) << text;
}

TEST_F(CableTest, AHaltedDirectPassKeepsThePlanAndHasToBeTakenAgain) {
  MeasureBoth();
  rig.t.dialogs.Answer(MessageAnswer::No);  // not to be saved
  rig.HaltAt(5);
  cable.DirectPass(rig.display);
  EXPECT_EQ(Frequencies().size(), 10U);
  EXPECT_EQ(Read(&CablePoint::HasDirect), 4);
  EXPECT_EQ(Read(&CablePoint::HasBoth), 0) << "readings of two passes are mixed";
  EXPECT_FALSE(rig.rfOn);
  EXPECT_FALSE(cable.SaveFile());
  EXPECT_EQ(rig.t.dialogs.LastText(), "Need to run Direct and Insert before file can be saved");
  cable.InsertPass(rig.display);
  EXPECT_EQ(rig.t.dialogs.LastText(), "You must take direct readings first");
  rig.onMeterRead = nullptr;
  cable.DirectPass(rig.display);
  EXPECT_EQ(Read(&CablePoint::HasDirect), 10);
}

TEST_F(CableTest, AHaltedInsertPassCostsNoDirectReadingAndSavesWhatIsComplete) {
  MeasureBoth();
  rig.t.dialogs.Answer(MessageAnswer::No);  // not to be saved
  rig.HaltAt(4);
  cable.InsertPass(rig.display);
  EXPECT_EQ(Read(&CablePoint::HasDirect), 10);
  EXPECT_EQ(Read(&CablePoint::HasBoth), 3) << "readings of two passes are mixed";
  rig.t.dialogs.AnswerSave(rig.t.directory.File("a.los"));
  EXPECT_TRUE(cable.SaveFile());
  EXPECT_EQ(rig.t.dialogs.LastText(), "The insert pass ended early: the file holds 1 - 3 MHz only.");
  EXPECT_EQ(ReadLines(rig.t.directory.File("a.los")).size(), 12U + 3U);

  rig.onMeterRead = nullptr;
  EXPECT_TRUE(cable.BuildPlan());
  cable.InsertPass(rig.display);
  EXPECT_EQ(Read(&CablePoint::HasBoth), 10);
  EXPECT_EQ(cable.Points().back().Loss, 2.75);
}

TEST_F(CableTest, ReadingsAreNotDroppedUnasked) {
  const std::function<void()> direct = [this] { cable.DirectPass(rig.display); };
  const std::function<void()> insert = [this] { cable.InsertPass(rig.display); };
  const std::function<void()> otherPlan = [this] {
    cable.Setup.StopFreq = 9;
    EXPECT_FALSE(cable.BuildPlan());
  };
  direct();
  EXPECT_TRUE(rig.t.dialogs.messages.empty());
  rig.bus.transcript.Clear();
  for (const auto& drop : {direct, otherPlan}) {
    rig.t.dialogs.Answer(MessageAnswer::No);
    drop();
    EXPECT_EQ(rig.t.dialogs.LastText(), "The direct readings wait for their insert pass.\r\nDrop them?");
  }
  EXPECT_EQ(Read(&CablePoint::HasDirect), 10);
  EXPECT_TRUE(rig.bus.Lines().empty());

  insert();
  EXPECT_EQ(rig.t.dialogs.messages.size(), 2U) << "an insert pass drops no direct reading";
  rig.bus.transcript.Clear();
  for (const auto& drop : {direct, insert, otherPlan}) {
    rig.t.dialogs.Answer(MessageAnswer::Cancel);
    drop();
    EXPECT_EQ(rig.t.dialogs.LastText(), "The insertion loss that was measured has not been saved.\r\nSave it?");
  }
  EXPECT_EQ(Read(&CablePoint::HasBoth), 10);
  EXPECT_TRUE(rig.bus.Lines().empty());

  rig.t.dialogs.Answer(MessageAnswer::Yes);
  rig.t.dialogs.AnswerSave(rig.t.directory.File("a.los"));
  direct();
  EXPECT_TRUE(rig.t.directory.Exists("a.los"));
  EXPECT_EQ(Read(&CablePoint::HasBoth), 0);
}

TEST_F(CableTest, KeepsPlanAndPassesApartWhenAPassEndsAtItsFirstPoint) {
  MeasureBoth();
  rig.t.dialogs.Answer(MessageAnswer::No);  // not to be saved
  cable.Setup.Level = -30;
  rig.bus.FailLine("> 18 OUTP ON", gpib::kEnol);
  cable.DirectPass(rig.display);
  EXPECT_EQ(cable.Outcome(), RunOutcome::EndedEarly);
  ASSERT_EQ(cable.Points().size(), 10U);
  EXPECT_EQ(cable.Points().front().SigGenLevel, -20);
  EXPECT_EQ(cable.Points().front().Loss, 2.75);

  // A reading during which the halt came may be none of the settled level.
  rig.HaltAt(1);
  cable.DirectPass(rig.display);
  EXPECT_EQ(cable.Points().front().SigGenLevel, -20);
  rig.t.dialogs.AnswerSave(rig.t.directory.File("a.los"));
  EXPECT_TRUE(cable.SaveFile());
}

TEST_F(CableTest, TellsABadReadingWithRfOff) {
  rig.portDb = 30;
  rig.onMeterRead = [this](double) {
    if (rig.generatorMHz == 3) rig.portDb = 200;
  };
  cable.DirectPass(rig.display);
  EXPECT_EQ(rig.t.dialogs.Texts(),
            (std::vector<std::string>{"The level is above the meter's maximum level, check setup",
                                      "Run halted due to errors"}));
  EXPECT_FALSE(rig.rfOnAtMessage);
  EXPECT_EQ(Read(&CablePoint::HasDirect), 3);
  EXPECT_THAT(rig.bus.Lines(), testing::Contains("LOCAL 13"));
}

TEST_F(CableTest, KeepsTheLossWhenASaveFails) {
  MeasureBoth();
  rig.t.dialogs.AnswerSave(rig.t.directory.File("no/such/a.los"));
  EXPECT_FALSE(cable.SaveFile());
  EXPECT_TRUE(rig.t.dialogs.WasShownContaining("RunCblCal.SaveFile"));
  EXPECT_EQ(Read(&CablePoint::HasBoth), 10);
}

TEST_F(CableTest, EndsAtEscapeFromADwellOfZero) {
  cable.Setup.Dwell = 0;
  for (const auto answer : {MessageAnswer::Ok, MessageAnswer::Ok, MessageAnswer::Cancel}) rig.t.dialogs.Answer(answer);
  cable.DirectPass(rig.display);
  EXPECT_EQ(Read(&CablePoint::HasDirect), 2);
}

TEST_F(CableTest, AReadingThatIsNoneIsToldWithRfOffThoughThreeRfOffsDoNotGetThrough) {
  rig.levels = {9.91e37};
  rig.onMeterRead = [&](double) {
    for (int attempt = 0; attempt < 3; ++attempt) rig.bus.FailLine("> 18 OUTP OFF", gpib::kEnol);
  };
  cable.DirectPass(rig.display);
  EXPECT_TRUE(rig.t.dialogs.WasShownContaining("The meter's answer is no level"));
  EXPECT_FALSE(rig.rfOnAtMessage);
}

TEST_F(CableTest, RunsBesideNoOtherRun) {
  bool within = false;
  rig.onMeterRead = [&](double) {
    if (within) return;
    within = true;
    cable.DirectPass(rig.display);
  };
  rig.Run();
  EXPECT_EQ(rig.Shown("Another run is using the instruments"), 1);
  EXPECT_EQ(rig.level.Outcome(), RunOutcome::Finished);
  EXPECT_EQ(cable.Outcome(), RunOutcome::NotRun);
  cable.DirectPass(rig.display);
  EXPECT_EQ(cable.Outcome(), RunOutcome::Finished);
}

}  // namespace
}  // namespace hylden
