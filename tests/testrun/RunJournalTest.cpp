#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/native/JournalFolder.h"
#include "run/JournalFile.h"
#include "testrun/RunDataJournal.h"
#include "testrun/RunRig.h"

namespace hylden {
namespace {

/// The scripted station with a test run that keeps a journal.
struct JournalledRun : testing::Test, RunRig {
  JournalledRun() {
    t.shell.journals = &journals;
    documents.testSetup.TestFileName = "/lab/tests/radio.tst";
  }

  /// The run data file that the one journal would give.
  std::string Recovered() {
    const auto kept = journals.Kept();
    if (kept.size() != 1) return std::to_string(kept.size()) + " journals";
    const auto journal = ReadJournal(t.directory.Read("journals/" + kept.front() + ".journal"));
    if (!journal) return "no journal";
    head = journal->Head;
    RunData data;
    for (const auto& [number, line] : journal->Rows) {
      const auto entry = RunEntryOf(line);
      if (!entry) return line;
      data.Add(*entry);
    }
    return RunFileText(data, false);
  }

  JournalFolder journals{t.directory.File("journals"), JournalFolder::Time::Virtual};
  JournalHead head;
};

TEST_F(JournalledRun, HasEveryCompleteRowAtAnyTime) {
  UsePower(LevelingMethod::NetPower);
  test.MonitorProbe = true;
  display.onStep = [&](int step) {
    EXPECT_EQ(Recovered(), RunFileText(engine.Data(), false)) << "behind step " << step;
    if (step == 2) t.shell.delay.RequestHalt();
  };
  t.dialogs.Answer(MessageAnswer::Yes);
  RunRig::Run();
  EXPECT_EQ(Rows().size(), 2U);
  EXPECT_EQ(Recovered(), RunFileText(engine.Data(), false)) << "wanted, and not in a file yet";
  EXPECT_EQ(head.Name, "radio.tst");
  EXPECT_EQ(head.Planned, 3U);
  EXPECT_EQ(journals.Kept().front().substr(0, 6), "radio_");
}

TEST_F(JournalledRun, HasThresholdsAndTheirComments) {
  std::string withoutComment;
  AtStatus("Manual Mode", [&] {
    t.dialogs.AnswerInput("flickers,  badly * ");
    engine.Manual().manThresholdClick(1, -3);
    EXPECT_EQ(Recovered(), RunFileText(engine.Data(), false));
    t.dialogs.AnswerInput(std::nullopt);
    engine.Manual().manThresholdClick(1, -2.5F);
    EXPECT_EQ(Recovered(), RunFileText(engine.Data(), false));
    engine.Manual().manExitClick();
  });
  display.onRow = [&](int row) {
    if (row == 1) engine.RequestManual();
  };
  t.dialogs.Answer(MessageAnswer::Yes);
  RunRig::Run();
  EXPECT_EQ(Rows().size(), 5U);
  EXPECT_EQ(Recovered(), RunFileText(engine.Data(), false));
}

TEST_F(JournalledRun, GoesWhenItsRowsAreInAFileOrNotWanted) {
  const struct {
    const char* name;
    MessageAnswer answer;
    std::optional<std::string> file;
    std::size_t kept;
  } cases[] = {{"saved", MessageAnswer::Yes, t.directory.File("out.run"), 0},
               {"not wanted", MessageAnswer::No, std::nullopt, 0},
               {"cancelled", MessageAnswer::Yes, std::nullopt, 1},
               {"not written", MessageAnswer::Yes, t.directory.File("no/out.run"), 1}};
  for (const auto& c : cases) {
    t.dialogs.Answer(c.answer);
    if (c.answer == MessageAnswer::Yes) t.dialogs.AnswerSave(c.file);
    RunRig::Run();
    EXPECT_EQ(journals.Kept().size(), c.kept) << c.name;
  }
  t.dialogs.Answer(MessageAnswer::No);
  EXPECT_TRUE(engine.Unsaved().MayDrop());
  EXPECT_EQ(journals.Kept().size(), 0U) << "let go";
}

TEST_F(JournalledRun, StaysBehindAProgramThatEndsWithUnsavedRows) {
  for (const bool saved : {false, true}) {
    auto other = std::make_unique<RunEngine>(t.shell, instruments, documents, display, manual);
    ASSERT_EQ(other->Prepare(), RunReadiness::Ready);
    t.dialogs.Answer(MessageAnswer::Yes);
    other->RunCdiTest();
    if (saved) {
      t.dialogs.AnswerSave(t.directory.File("out.run"));
      EXPECT_TRUE(other->Save());
    }
    other.reset();
    EXPECT_EQ(journals.Kept().size(), 1U);
  }
}

TEST_F(JournalledRun, GoesOnWithoutAJournalThatCanNotBeWrittenAndSaysSoOnce) {
  t.directory.Write("journals", "a file in the folder's place");
  LogToFile();
  const WorkingDirectory here(t.directory.Path());
  RunRig::Run();
  EXPECT_EQ(engine.Outcome(), RunOutcome::Finished);
  EXPECT_EQ(Rows().size(), 3U);
  const std::string told = "The journal of the run could not be written: ";
  ASSERT_EQ(display.notes.size(), 1U);
  EXPECT_TRUE(display.notes[0].starts_with(told));
  const std::string log = t.directory.Read("runlog.hyl");
  EXPECT_NE(log.find(told), std::string::npos);
  EXPECT_EQ(log.find(told), log.rfind(told));
}

TEST(RunDataJournal, RefusesWhatIsNoRow) {
  for (const char* line : {"", "step", "step 1 2", "step 1 2 3 na na na 0 0 0 0 5", "step 1 x 3 na na na 0 0 0 0",
                           "threshold 1", "remark"})
    EXPECT_FALSE(RunEntryOf(line)) << line;
  EXPECT_TRUE(RunEntryOf("step 1 2 3 na na na 0 0 0 0"));
}

}  // namespace
}  // namespace hylden
