#include "run/UnsavedRows.h"

#include <gtest/gtest.h>

#include "support/FakeDialogs.h"

namespace hylden {
namespace {

constexpr auto kYes = MessageAnswer::Yes, kNo = MessageAnswer::No, kCancel = MessageAnswer::Cancel;

class UnsavedRowsTest : public testing::Test {
 protected:
  /// Whether an action that the operator may stop goes on; the box shown, empty for none.
  std::string Asked(bool goesOn, bool (UnsavedRows::*action)(), std::vector<MessageAnswer> answers) {
    for (const MessageAnswer answer : answers) dialogs.Answer(answer);
    dialogs.Clear();
    EXPECT_EQ((rows.*action)(), goesOn);
    EXPECT_EQ(dialogs.UnusedAnswers(), 0U);
    return dialogs.LastText();
  }
  void EndOfARun(MessageAnswer answer) {
    rows.Reset();
    dialogs.Answer(answer);
    rows.AskAtTheEnd();
  }

  FakeDialogs dialogs;
  bool exist = true, written = false;
  UnsavedRows rows{dialogs, {"Save", "at the end?", "drop?"}, [this] { return exist; }, [this] { return written; }};
};

TEST_F(UnsavedRowsTest, RowsThatAreNotWantedGoWithTheirWindowAndAreAskedAboutBeforeAnotherRun) {
  EndOfARun(kNo);
  EXPECT_FALSE(rows.AreMissed());
  EXPECT_EQ(Asked(true, &UnsavedRows::MayLeave, {}), "");
  EXPECT_EQ(Asked(false, &UnsavedRows::MayDrop, {kCancel}), "drop?");
  EXPECT_EQ(Asked(true, &UnsavedRows::MayDrop, {kNo}), "drop?");
  EXPECT_EQ(Asked(true, &UnsavedRows::MayDrop, {}), "") << "once";
}

TEST_F(UnsavedRowsTest, RowsThatAreWantedAndNotWrittenHoldTheWindow) {
  EndOfARun(kYes);
  EXPECT_TRUE(rows.AreMissed());
  EXPECT_EQ(Asked(false, &UnsavedRows::MayLeave, {kCancel}), "drop?");
  EXPECT_EQ(Asked(false, &UnsavedRows::MayLeave, {kYes}), "drop?");
  EXPECT_EQ(Asked(true, &UnsavedRows::MayLeave, {kNo}), "drop?");
  EXPECT_FALSE(rows.AreMissed());
  EXPECT_FALSE(rows.Save()) << "wanted again";
  EXPECT_TRUE(rows.AreMissed());
  written = true;
  EXPECT_EQ(Asked(true, &UnsavedRows::MayLeave, {kYes}), "drop?");
}

TEST_F(UnsavedRowsTest, RowsThatAJournalKeepsHoldNoWindowAndAreAskedAboutBeforeAnotherRun) {
  rows.Keep();
  EXPECT_FALSE(rows.Save()) << "its dialog was cancelled";
  EXPECT_EQ(Asked(true, &UnsavedRows::MayLeave, {}), "");
  EXPECT_TRUE(rows.Any() && rows.AreKept());
  EXPECT_EQ(Asked(false, &UnsavedRows::MayDrop, {kCancel}), "drop?");
  EXPECT_TRUE(rows.AreKept());
}

TEST_F(UnsavedRowsTest, WhatIsInAFileOrWasNeverThereNeedsNoQuestion) {
  written = true;
  EndOfARun(kYes);
  written = false;
  EXPECT_FALSE(rows.Save());
  EXPECT_TRUE(rows.AreSaved()) << "in the first file";
  EXPECT_EQ(Asked(true, &UnsavedRows::MayDrop, {}), "");
  EndOfARun(kYes);
  exist = false;
  EXPECT_FALSE(rows.AreMissed());
  EXPECT_EQ(Asked(true, &UnsavedRows::MayDrop, {}), "");
}

}  // namespace
}  // namespace hylden
