#include "app/Recovery.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "app/OfferJournals.h"
#include "platform/native/JournalFolder.h"
#include "run/JournalText.h"
#include "support/TestShell.h"

namespace hylden {
namespace {

constexpr auto kYes = MessageAnswer::Yes, kNo = MessageAnswer::No, kCancel = MessageAnswer::Cancel;

std::string HeadOf(JournalKind kind, std::vector<std::string> info = {}, std::string file = {}) {
  return HeadLines({.Kind = kind,
                    .Program = "Hylden 1.1",
                    .Name = kind == JournalKind::InsertionLoss ? "" : "radio",
                    .Started = "2026-11-23 18:35:07",
                    .File = std::move(file),
                    .Planned = 67,
                    .Info = std::move(info)});
}

const std::string kTest = HeadOf(JournalKind::Test) + RowLine(1, "step 0.15 -12.3 129.5 na 33.2 na 0 0 1 0") +
                          RowLine(2, "threshold 0.15 -3 flickers"),
                  kLevel = HeadOf(JournalKind::LevelCalibration, {"10 V", "amp", "cdn", "10v", "0.15 - 80", " 0 "}) +
                           RowLine(1, "2 -12.25 130 na na") + RowLine(2, "1 -12.5 130 33.125 na"),
                  kCable = HeadOf(JournalKind::InsertionLoss) + RowLine(1, "1 -20 97 96.5 0.5") +
                           RowLine(2, "2 -20 97.25 -999 0");

/// Of one that can be continued.
std::string TestThatNames(const std::string& file) {
  return HeadOf(JournalKind::Test, {}, file) + kTest.substr(kTest.find("row 1"));
}

class OfferTest : public testing::Test {
 protected:
  void Leave(const std::string& name, const std::string& bytes) const {
    t.directory.Write("journals/" + name + ".journal", bytes);
  }
  bool Waits(const std::string& name) const { return t.directory.Exists("journals/" + name + ".journal"); }
  bool Offer() {
    JournalFolder folder(JournalsIn(t.directory.Path()));
    return OfferJournals(t.shell, folder).has_value();
  }

  TestShell t;
};

TEST_F(OfferTest, SavesWhatTheRunWouldHaveSaved) {
  const struct {
    const char* name;
    std::string journal, description, file, content;
  } cases[] = {
      {"test", kTest, "Test radio, begun 2026-11-23 18:35:07: 2 rows of 67 steps, the last at 0.15 MHz", "x.run",
       "                   Test Run Data\r\n"
       "Note: Data with asterisks indicates item first meeting leveling criteria.\r\n"
       "Freq(MHz), SigGen(dBm), TestLev(dBuv), Probe(dBuA), FwdPwr(dBm), RevPwr(dBm)\r\n"
       "0.15, -12.3, 129.5, , 33.2 **, \r\n0.15, Threshold -3.0dB, flickers\r\n"},
      {"level", kLevel, "Level calibration radio, begun 2026-11-23 18:35:07: 2 rows of 67 steps, the last at 1 MHz",
       "x.cal", "1.0,-12.500,130.00,33.13,na,\r\n2.0,-12.250,130.00,na,na,\r\n"},
      {"cable", kCable,
       "Insertion loss, begun 2026-11-23 18:35:07: 1 row of 67 steps, "
       "1 direct reading without the insert reading, the last at 1 MHz",
       "x.los", "1.000,        0.5,      97.0,     96.5\r\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Leave(c.name, c.journal);
    t.dialogs.Answer(kYes);
    t.dialogs.AnswerSave(t.directory.File(c.file));
    Offer();
    EXPECT_TRUE(t.dialogs.WasShownContaining(":\r\n\r\n" + std::string(c.description) + "\r\n\r\nSave it?"));
    EXPECT_TRUE(t.directory.Read(c.file).ends_with(c.content)) << t.directory.Read(c.file);
    EXPECT_FALSE(Waits(c.name));
  }
  EXPECT_EQ(t.directory.Read("x.hyinfo"), "10 V\r\namp\r\ncdn\r\n10v\r\n1 - 2\r\n 0 \r\n");
}

TEST_F(OfferTest, DropsNothingUnlessItIsSavedOrTwiceDeclined) {
  const std::string torn = kLevel.substr(0, kLevel.size() - 5), noRow = HeadOf(JournalKind::Test);
  const std::string nowhere = t.directory.File("no/x.run");
  const struct {
    const char* name;
    std::string journal;
    std::vector<MessageAnswer> answers;
    std::optional<std::string> saveAs;
    bool waits;
    std::size_t boxes;
  } cases[] = {
      {"kept", kTest, {kCancel}, {}, true, 1},
      {"declined once", kTest, {kNo, kNo}, {}, true, 2},
      {"declined", kTest, {kNo, kYes}, {}, false, 2},
      {"no file chosen", kTest, {kYes}, {}, true, 1},
      {"not written", kTest, {kYes, MessageAnswer::Ok}, nowhere, true, 2},
      {"too little", torn, {kNo}, {}, true, 1},
      {"too little, declined", torn, {kYes}, {}, false, 1},
      {"nothing recorded", noRow, {}, {}, false, 0},
      {"kept, not continued", TestThatNames("/lab/radio.tst"), {kCancel}, {}, true, 1},
      {"neither continued nor saved", TestThatNames("/lab/radio.tst"), {kNo, kNo, kYes}, {}, false, 3},
      {"with a gap",
       TestThatNames("/lab/radio.tst") + RowLine(4, "step 0.17 1 2 na na na 0 0 0 0"),
       {kCancel},
       {},
       true,
       1},
      {"of an insertion loss",
       HeadOf(JournalKind::InsertionLoss, {}, "x") + RowLine(1, "1 -20 97 96.5 0.5"),
       {kCancel},
       {},
       true,
       1},
      {"of another version", SealedLine("Hylden journal 4"), {MessageAnswer::Ok}, {}, true, 1},
      {"garbage", "x", {MessageAnswer::Ok}, {}, true, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    t.dialogs.Clear();
    Leave("j", c.journal);
    for (const MessageAnswer answer : c.answers) t.dialogs.Answer(answer);
    if (c.saveAs) t.dialogs.AnswerSave(c.saveAs);
    Offer();
    EXPECT_EQ(Waits("j"), c.waits);
    EXPECT_EQ(t.dialogs.messages.size(), c.boxes);
    EXPECT_EQ(t.dialogs.UnusedAnswers(), 0U);
    std::filesystem::remove(t.directory.File("journals/j.journal"));
  }
}

TEST_F(OfferTest, ContinuesOneRunAtAStartWhoseJournalStaysAsItWas) {
  for (const char* name : {"a", "b"}) Leave(name, TestThatNames("/lab/radio.tst"));
  t.dialogs.Answer(kYes);
  t.dialogs.Answer(kCancel);
  EXPECT_TRUE(Offer());
  EXPECT_TRUE(t.dialogs.Texts().at(0).starts_with("A run was not ended in order, and can be continued."));
  EXPECT_TRUE(t.dialogs.Texts().at(1).starts_with("A run was not ended in order. Its journal holds:"));
  for (const char* name : {"a", "b"})
    EXPECT_EQ(t.directory.Read(std::string("journals/") + name + ".journal"), TestThatNames("/lab/radio.tst"));
}

TEST_F(OfferTest, TellsThatNobodyKnowsWhatWaits) {
  t.directory.Write("journals", "a file in the folder's place");
  EXPECT_FALSE(Offer());
  EXPECT_TRUE(
      t.dialogs.WasShownContaining("can't be read:\r\n" + t.directory.File("journals") + "\r\nNot a directory"));
}

TEST(Recovery, TellsAJournalThatEndsBeforeItsFirstRowAsSuch) {
  for (const std::string& bytes : {std::string(), kTest.substr(0, 40)})
    EXPECT_EQ(DescriptionOf(RecoveryOf(bytes).value()), "It ends before its first row");
}

TEST_F(OfferTest, AsksBeforeTheDescriptionOfAnotherRecordIsReplaced) {
  Leave("level", kLevel);
  t.directory.Write("x.hyinfo", "of another record");
  t.dialogs.Answer(kYes);
  t.dialogs.AnswerSave(t.directory.File("x.cal"));
  t.dialogs.Answer(kNo);
  Offer();
  EXPECT_EQ(t.directory.Read("x.hyinfo"), "of another record");
  EXPECT_TRUE(Waits("level"));
}

}  // namespace
}  // namespace hylden
