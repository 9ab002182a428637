#include <gtest/gtest.h>

#include <string>

#include "calibration/CalibrationRuns.h"
#include "platform/native/JournalFolder.h"
#include "run/JournalFile.h"
#include "run/JournalValues.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

/// Outlives the calibrations that write there.
struct JournalsBefore {
  TempDir folder;
  JournalFolder journals{folder.File("journals"), JournalFolder::Time::Virtual};
};

/// The scripted station with calibrations that keep a journal.
struct JournalledCalibration : testing::Test, JournalsBefore, CalibrationRuns {
  JournalledCalibration() { t.shell.journals = &journals; }

  /// The one journal, as it is.
  Journal Kept() {
    const auto kept = journals.Kept();
    EXPECT_EQ(kept.size(), 1U);
    const auto journal = kept.empty() ? Journal() : ReadJournal(folder.Read("journals/" + kept.front() + ".journal"));
    EXPECT_TRUE(journal);
    return journal.value_or(Journal());
  }
  /// Its rows as a file has them.
  Strings KeptRows() {
    Strings rows;
    for (const auto& [number, line] : Kept().Rows) {
      std::string& text = rows.emplace_back();
      for (const std::string& cell : CellsOf(RowOfLine<CalRow>(line).value())) text += cell + ",";
    }
    return rows;
  }
  /// What the journal has of the cable's points.
  std::string KeptPoints() {
    std::string text;
    for (const auto& [number, line] : Kept().Rows) {
      const auto point = RowOfLine<CablePoint>(line).value();
      EXPECT_EQ(point.Freq, cable.Points().at(static_cast<std::size_t>(number - 1)).Freq);
      text += point.HasBoth() ? "both " : point.HasDirect() ? "direct " : "none ";
    }
    return text;
  }
};

TEST_F(JournalledCalibration, HasEveryCompleteRowAndTheDescription) {
  setup.RecordFwdPwr = setup.RecordRevPwr = 1;
  t.dialogs.Answer(MessageAnswer::Yes);
  CalibrationRuns::Run();
  EXPECT_EQ(Rows().size(), 3U);
  EXPECT_EQ(KeptRows(), Rows());
  EXPECT_EQ(Kept().Head.Planned, 3U);
  EXPECT_EQ(JoinLines(Kept().Head.Info), RecordText(CalInfoOf(level.Setup()), true));
  t.dialogs.AnswerSave(t.directory.File("x.cal"));
  EXPECT_TRUE(level.Save());
  EXPECT_TRUE(journals.Kept().empty());
}

TEST_F(JournalledCalibration, ContinuesWhereItEndedAndGivesTheSameRecord) {
  t.shell.journals = nullptr;
  t.shell.keepsJournals = true;
  CalRows got;
  // As a program of its own; endMHz: where the meter is read when it is halted; 0: nowhere
  const auto program = [this, &got](bool continues, double endMHz, const std::string& refusal = {}) {
    JournalFolder own(t.directory.File("journals"), JournalFolder::Time::Virtual);
    t.shell.journals = &own;
    LevelCalibration run(t.shell, instruments, documents, display);
    ASSERT_TRUE(run.Prepare());
    if (continues) {
      auto left = own.Abandoned();
      ASSERT_EQ(left.size(), 1U);
      const auto journal = ReadJournal(left.front().Bytes);
      CalRows rows;
      for (const auto& [number, line] : journal->Rows) rows.push_back(RowOfLine<CalRow>(line).value());
      const Done done = run.Continue({journal->Head, rows, own.GoOn(std::move(left.front()))});
      ASSERT_EQ(done ? "" : done.error().Boxes().front().text, refusal);
    }
    if (refusal.empty()) {
      HaltAt(endMHz);
      t.dialogs.Answer(MessageAnswer::Yes);
      t.dialogs.AnswerSave(t.directory.File("x.cal"));
      run.Run();
      got = run.Rows();
    }
    t.shell.journals = nullptr;
  };
  program(false, 0);
  const CalRows whole = got;
  const std::string info = t.directory.Read("x.hyinfo");
  for (const double first : {2.0, 4.0}) {
    program(false, first);
    program(true, 4);
    setup.Dwell += 1;
    program(true, 0, "The calibration setup is not the one of then.");
    setup.Dwell -= 1;
    (void)Took();
    program(true, 0);
    const Strings sent = Sent(sigGen.Address());
    const auto begin = std::find_if(sent.begin(), sent.end(), [](const auto& c) { return c.starts_with("POW "); });
    ASSERT_NE(begin, sent.end());
    EXPECT_EQ(LeadingNumber(begin->substr(4)), -10) << "the initial level";
    EXPECT_EQ(t.directory.Read("x.cal"), CalDataText(got));
    ASSERT_EQ(got.size(), whole.size());
    for (std::size_t i = 0; i < got.size(); ++i) {
      EXPECT_EQ(got[i].Freq, whole[i].Freq);
      // It comes from another level, and ends anywhere within the tolerance.
      EXPECT_NEAR(got[i].SigGenLevel, whole[i].SigGenLevel, kToleranceDb);
    }
    EXPECT_EQ(t.directory.Read("x.hyinfo"), info);
    JournalFolder after(t.directory.File("journals"));
    EXPECT_TRUE(after.Abandoned().empty());
  }
}

TEST_F(JournalledCalibration, LeavesOutARowWhoseReversePowerIsMissing) {
  setup.RecordFwdPwr = setup.RecordRevPwr = 1;
  equipment.AmpConfiguration = AmpConfig::Single;
  CalibrationRuns::Run();
  ASSERT_EQ(level.Rows().size(), 1U);
  EXPECT_TRUE(journals.Kept().empty());
}

TEST_F(JournalledCalibration, KeepsTheRowsOfARunUntilTheNextOneRecords) {
  t.dialogs.Answer(MessageAnswer::Yes);
  CalibrationRuns::Run();
  EXPECT_EQ(KeptRows().size(), 3U);
  t.dialogs.Answer(MessageAnswer::Cancel);
  level.Run();
  EXPECT_EQ(KeptRows().size(), 3U) << "they are to stay";
  t.dialogs.Answer(MessageAnswer::No);
  t.dialogs.Answer(MessageAnswer::Yes);
  HaltAt(2);
  level.Run();
  EXPECT_EQ(KeptRows(), Rows()) << "of the new run";
  EXPECT_LT(Rows().size(), 3U);
}

TEST_F(JournalledCalibration, HasBothPassesOfACable) {
  cable.DirectPass(display);
  EXPECT_EQ(KeptPoints(), "direct direct direct ");
  EXPECT_EQ(journals.Kept().front().substr(0, 15), "insertion-loss_");
  HaltAt(4);
  cable.InsertPass(display);
  EXPECT_EQ(KeptPoints(), "both both direct ");
  onMeterRead = nullptr;
  t.dialogs.AnswerSave(t.directory.File("x.los"));
  EXPECT_TRUE(cable.SaveFile());
  EXPECT_TRUE(journals.Kept().empty());
  cable.InsertPass(display);
  EXPECT_EQ(KeptPoints(), "both both both ") << "with the direct readings that were kept";
  t.dialogs.Answer(MessageAnswer::No);
  cable.DirectPass(display);
  EXPECT_EQ(KeptPoints(), "direct direct direct ");
  t.dialogs.Answer(MessageAnswer::Yes);
  cable.Setup.StopFreq = 8;
  EXPECT_TRUE(cable.BuildPlan());
  EXPECT_TRUE(journals.Kept().empty()) << "of another plan";
}

}  // namespace
}  // namespace hylden
