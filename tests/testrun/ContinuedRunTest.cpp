#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>

#include "platform/native/JournalFolder.h"
#include "testrun/RunDataJournal.h"
#include "testrun/RunReport.h"
#include "testrun/RunRig.h"

namespace hylden {
namespace {

/// The scripted station with test runs that are ended early and continued, each by a program of its own.
struct ContinuedRun : RunRig {
  ContinuedRun() {
    t.shell.keepsJournals = true;
    documents.testSetup.TestFileName = "/lab/radio.tst";
    documents.equip.EquipFileName = "/lab/hall.eqp";
    test.MonitorProbe = true;
    test.FreqList = true, test.DiscreteDwell = 1;
    test.ListFile = t.directory.Write("extra.lst", "2.5\r\n3\r\n");
  }

  /// The one journal that was left behind, and the run that it is of.
  FormerRun<RunData> Former(JournalFolder& journals) const {
    auto left = journals.Abandoned();
    EXPECT_EQ(left.size(), 1U);
    const auto journal = ReadJournal(left.at(0).Bytes);
    FormerRun<RunData> former{journal->Head, {}, journals.GoOn(std::move(left.at(0)))};
    for (const auto& [number, line] : journal->Rows) former.Recorded.Add(RunEntryOf(line).value());
    for (const int seam : journal->Seams) former.Recorded.AddSeam(seam);
    return former;
  }
  /// Runs to the end, or until it is halted while a step is levelled; with what was left behind before it.
  void RunProgram(bool continues, int haltedStep = 0, const std::function<void(RunEngine&)>& look = {}) {
    JournalFolder journals(t.directory.File("journals"), JournalFolder::Time::Virtual);
    t.shell.journals = &journals;
    RecordingDisplay shown;
    RunEngine run{t.shell, instruments, documents, shown, manual};
    ASSERT_EQ(run.Prepare(), RunReadiness::Ready) << t.dialogs.LastText();
    ASSERT_EQ(continues ? Told(run.Continue(Former(journals))) : "", "");
    shown.onRow = [&](int) {
      if (haltedStep > 0 && run.CompletedSteps() == haltedStep - 1) t.shell.delay.RequestHalt();
    };
    t.dialogs.Answer(MessageAnswer::Yes);
    t.dialogs.AnswerSave(t.directory.File("out.run"));
    run.RunCdiTest();
    EXPECT_EQ(run.CompletedSteps(), haltedStep > 0 ? haltedStep - 1 : 5);
    EXPECT_EQ(run.Outcome() == RunOutcome::Finished, haltedStep == 0);
    EXPECT_FALSE(rfOn);
    if (look) look(run);
    t.shell.journals = nullptr;
  }
  static std::string Told(const Done& done) { return done ? "" : done.error().Boxes().front().text; }
  std::size_t JournalsLeft() const { return JournalFolder(t.directory.File("journals")).Abandoned().size(); }
};

TEST(ContinuedRun, GivesTheFileOfAnUndisturbedRunWhereverItEnded) {
  ContinuedRun rig;
  rig.RunProgram(false);
  const std::string whole = rig.t.directory.Read("out.run");
  EXPECT_EQ(rig.JournalsLeft(), 0U) << "nothing is left to be continued";
  for (int first = 2; first <= 5; ++first) {
    for (int second = first; second <= 5; ++second) {
      SCOPED_TRACE(std::to_string(first) + " " + std::to_string(second));
      rig.RunProgram(false, first);
      EXPECT_NE(rig.t.directory.Read("out.run"), whole) << "saved as far as it went";
      rig.RunProgram(true, second);
      EXPECT_EQ(rig.JournalsLeft(), 1U);
      rig.RunProgram(true);
      EXPECT_EQ(rig.t.directory.Read("out.run"), whole);
      EXPECT_EQ(rig.JournalsLeft(), 0U);
    }
  }
}

TEST(ContinuedRun, IsOfferedInItsWindowWhateverBecameOfItsRows) {
  ContinuedRun rig;
  FakeDialogs& dialogs = rig.t.dialogs;
  rig.RunProgram(false);
  const std::string whole = rig.t.directory.Read("out.run");
  rig.t.shell.keepsJournals = false;
  const struct {
    const char* name;
    MessageAnswer save;
    std::optional<std::string> file;
  } cases[] = {{"not wanted", MessageAnswer::No, {}},
               {"saved", MessageAnswer::Yes, rig.t.directory.File("part.run")},
               {"not written", MessageAnswer::Yes, {}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    JournalFolder journals(rig.t.directory.File("journals"), JournalFolder::Time::Virtual);
    rig.t.shell.journals = &journals;
    RecordingDisplay shown;
    RunEngine run{rig.t.shell, rig.instruments, rig.documents, shown, rig.manual};
    ASSERT_EQ(run.Prepare(), RunReadiness::Ready);
    shown.onRow = [&](int row) {
      if (row == 3) rig.t.shell.delay.RequestHalt();
    };
    dialogs.Answer(c.save);
    if (c.save == MessageAnswer::Yes) dialogs.AnswerSave(c.file);
    run.RunCdiTest();
    shown.onRow = nullptr;
    EXPECT_EQ(run.Unfinished(), 3U);

    dialogs.Clear();
    dialogs.Answer(MessageAnswer::Cancel);
    run.ConfirmAndRun();
    EXPECT_EQ(dialogs.messages.size(), 1U);
    EXPECT_EQ(dialogs.LastText().substr(0, 62), "The last run ended early. Continue it at step 3 (2.5 MHz)?\r\nYe");
    EXPECT_EQ(run.CompletedSteps(), 2);
    const std::string ended = run.Info().Ended;
    rig.t.clock.Advance(60000);
    rig.t.events.onYield = [&] { rig.t.shell.delay.RequestHalt(); };
    for (const MessageAnswer answer : {MessageAnswer::Yes, MessageAnswer::Ok}) dialogs.Answer(answer);
    run.ConfirmAndRun();
    rig.t.events.onYield = nullptr;
    EXPECT_EQ(run.Data().Seams().size(), 0U) << "it did not come to its rows";
    EXPECT_EQ(run.Info().Ended, ended);

    shown.onStep = [&](int step) {
      const auto kept = journals.Kept();
      const std::string name = kept.empty() ? "" : kept.front();
      const auto journal = ReadJournal(rig.t.directory.Read("journals/" + name + ".journal"));
      EXPECT_EQ(journal->Rows.size(), static_cast<std::size_t>(step)) << "with those before the seam";
      EXPECT_TRUE(journal->Seams.contains(3));
    };
    for (const MessageAnswer answer : {MessageAnswer::Yes, MessageAnswer::Ok, MessageAnswer::Yes})
      dialogs.Answer(answer);
    dialogs.AnswerSave(rig.t.directory.File("out.run"));
    run.ConfirmAndRun();
    EXPECT_EQ(rig.t.directory.Read("out.run"), whole);
    EXPECT_TRUE(journals.Kept().empty());
    EXPECT_FALSE(run.Unfinished());
    rig.t.shell.journals = nullptr;
  }
}

TEST(ContinuedRun, BeginsAfreshWhenToldToAndIsNotOfferedAsAnotherRun) {
  ContinuedRun rig;
  FakeDialogs& dialogs = rig.t.dialogs;
  rig.display.onRow = [&](int row) {
    if (row == 3) rig.t.shell.delay.RequestHalt();
  };
  dialogs.Answer(MessageAnswer::No);
  rig.Run();
  rig.display.onRow = nullptr;
  rig.test.SweepDwell += 1;
  EXPECT_FALSE(rig.engine.Unfinished()) << "it would be another run";
  rig.test.SweepDwell -= 1;
  dialogs.Clear();
  for (const auto answer : {MessageAnswer::No, MessageAnswer::No, MessageAnswer::Cancel}) dialogs.Answer(answer);
  rig.engine.ConfirmAndRun();
  EXPECT_EQ(dialogs.Texts().at(1), "The run data has not been saved.\r\nSave it?");
  EXPECT_EQ(dialogs.messages.at(2).title, "MAKE SURE!!!");
  dialogs.Answer(MessageAnswer::No);
  rig.engine.ConfirmAndRun();
  EXPECT_EQ(dialogs.messages.at(3).title, "Continue Run") << "asked anew behind a run that did not start";
  EXPECT_EQ(rig.Rows().size(), 5U);
  EXPECT_TRUE(rig.engine.Data().Seams().empty());
}

TEST(ContinuedRun, LevelsItsFirstStepAsAFirstStep) {
  ContinuedRun rig;
  rig.UsePower(LevelingMethod::ForwardPower);
  rig.RunProgram(false, 2);
  (void)rig.Took();
  rig.RunProgram(true);
  const Strings sent = rig.Sent(rig.sigGen.Address());
  const auto level = std::find_if(sent.begin(), sent.end(), [](const auto& c) { return c.starts_with("POW "); });
  ASSERT_NE(level, sent.end());
  EXPECT_EQ(LeadingNumber(level->substr(4)), -68) << "60 dB below the calibrated level";
}

TEST(ContinuedRun, TellsItsSeamAndKeepsThresholdsInTheirOrder) {
  ContinuedRun rig;
  rig.LogToFile();
  const WorkingDirectory here(rig.t.directory.Path());
  rig.RunProgram(false, 3);
  {
    JournalFolder journals(rig.t.directory.File("journals"), JournalFolder::Time::Virtual);
    rig.Former(journals).Journal->Append(RowLine(3, "threshold 2 -3 flickers"));
  }
  rig.RunProgram(true, 0, [](RunEngine& run) {
    const Strings rows = RunRowLines(run.Data(), false);
    EXPECT_EQ(rows.at(2), "2.0, Threshold -3.0dB, flickers");
    EXPECT_EQ(rows.at(3).substr(0, 4), "2.5,");
    const PrintJob report = RunReport(run.Data(), false);
    EXPECT_EQ(std::count_if(report.lines.begin(), report.lines.end(),
                            [](const PrintedLine& line) {
                              return line.text == "Note: The run ended early and was continued at 2.5 MHz (row 4).";
                            }),
              1);
  });
  EXPECT_NE(rig.t.directory.Read("runlog.hyl").find("Run continued at step 3 (2.5 MHz)"), std::string::npos);
}

TEST(ContinuedRun, IsRefusedWithTheDifferenceThatItWouldHave) {
  const auto rewrite = [](const char* file, const char* content) {
    return [file, content](ContinuedRun& rig) { rig.t.directory.Write(file, content); };
  };
  const std::string notThen = " is not the one of then";
  const struct {
    std::function<void(ContinuedRun&)> change;
    std::string told;
  } cases[] = {
      {[](ContinuedRun&) {}, ""},
      {[](ContinuedRun& rig) { rig.documents.testSetup.TestFileName = "/elsewhere/other.tst"; }, ""},
      {[](ContinuedRun& rig) { rig.test.SweepDwell = 3; }, "The test definition radio.tst" + notThen + "."},
      {rewrite("bench.cal", "1,-10,120,40,30,\r\n2,-8,120,42,32,\r\n4,-5,120,44,34,\r\n"),
       "The calibration record bench.cal" + notThen + "."},
      {[](ContinuedRun& rig) { rig.documents.calInfo.Record.AmpUsed = "another"; },
       "The calibration record bench.cal" + notThen + "."},
      {[](ContinuedRun& rig) { rig.equipment.PmBandSwitch = 5; }, "The equipment file hall.eqp" + notThen + "."},
      {[](ContinuedRun& rig) { Redefine(rig.sigGen, [](auto& d) { d.MaximumLevel += 1; }); },
       "The signal generator definition" + notThen + "."},
      {[](ContinuedRun& rig) { Redefine(rig.meter, [](auto& d) { d.SettlingTime = 1; }); },
       "The meter definition" + notThen + "."},
      {[](ContinuedRun& rig) { Redefine(rig.pm, [](auto& d) { d.SettlingTime = 1; }); },
       "The power meter definition" + notThen + "."},
      {rewrite("cable.los", "0.1 1\r\n1000 1.5\r\n"), "The cable loss file cable.los" + notThen + "."},
      {rewrite("probe.prb", "0.1 0\r\n1000 0.5\r\n"), "The probe factor file probe.prb" + notThen + "."},
      {rewrite("port.fac", "0.1 0\r\n1000 0.5\r\n"), "The forward port file port.fac" + notThen + "."},
      {[](ContinuedRun& rig) { rig.equipment.RevPortFile = rig.t.directory.Write("r.fac", "0.1 0\r\n1000 1\r\n"); },
       "The reverse port file r.fac" + notThen + ": reverse port file port.fac."},
      {rewrite("extra.lst", "2.5\r\n3.5\r\n"), "The frequency list extra.lst" + notThen + "."},
      {[](ContinuedRun& rig) { rig.t.shell.runNotice = "SIMULATED"; },
       "The instruments are not those of then: none of them was simulated."},
  };
  for (const auto& c : cases) {
    ContinuedRun rig;
    rig.RunProgram(false, 3);
    c.change(rig);
    JournalFolder journals(rig.t.directory.File("journals"), JournalFolder::Time::Virtual);
    ASSERT_EQ(rig.Prepare(), RunReadiness::Ready);
    EXPECT_EQ(ContinuedRun::Told(rig.engine.Continue(rig.Former(journals))), c.told);
  }
}

TEST(ContinuedRun, IsRefusedForRowsThatItWouldNotHaveRecorded) {
  const struct {
    std::function<void(FormerRun<RunData>&)> change;
    std::string told;
  } cases[] = {
      {[](auto& former) { former.Head.Parts.clear(); },
       "The journal does not hold what its run was made of: it can be saved only."},
      {[](auto& former) { former.Head.Kind = JournalKind::LevelCalibration; },
       "The journal is that of another kind of run: level calibration."},
      {[](auto& former) { former.Recorded.AddStep(2.5); }, kOtherRows},
      {[](auto& former) { former.Recorded.FillStep(former.Recorded.AddStep(3), {}); }, kOtherRows},
      {[](auto& former) { former.Recorded.FillStep(former.Recorded.AddStep(1), {}); }, ""},
      {[](auto& former) {
         for (const double frequency : {2.5, 3.0, 4.0})
           former.Recorded.FillStep(former.Recorded.AddStep(frequency), {});
       },
       kNothingToContinue},
  };
  for (const auto& c : cases) {
    ContinuedRun rig;
    rig.RunProgram(false, 3);
    JournalFolder journals(rig.t.directory.File("journals"), JournalFolder::Time::Virtual);
    auto former = rig.Former(journals);
    c.change(former);
    ASSERT_EQ(rig.Prepare(), RunReadiness::Ready);
    EXPECT_EQ(ContinuedRun::Told(rig.engine.Continue(std::move(former))), c.told);
  }
}

}  // namespace
}  // namespace hylden
