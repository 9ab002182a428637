#include "run/JournalFile.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "run/JournalText.h"
#include "run/JournalValues.h"
#include "support/ReadLines.h"

namespace hylden {
namespace {

const std::string kHead = HeadLines({.Kind = JournalKind::LevelCalibration,
                                     .Program = "Hylden 1.1",
                                     .Name = "a *b.csu",
                                     .Started = "2026-11-23 18:35:07",
                                     .File = "/lab/a *b.csu",
                                     .Equipment = "/lab/hall.eqp",
                                     .Planned = 3,
                                     .Info = {"clamp", "", " 0 "},
                                     .Parts = {{"calibration setup a *b.csu", 0x0012ABCD}, {"meter definition", 0}}});

/// The rows that are read, as "1=a 2=b"; or why there are none.
std::string RowsIn(const std::string& bytes) {
  const auto journal = ReadJournal(bytes);
  if (!journal) return journal.error().Boxes().front().text;
  std::string rows;
  for (const auto& [number, values] : journal->Rows)
    rows += (journal->Seams.contains(number) ? "seam " : "") + std::to_string(number) + "=" + values + " ";
  if (journal->Damaged > 0) rows += "damaged " + std::to_string(journal->Damaged);
  return rows;
}

/// The text with its n-th character from the end changed.
std::string Flipped(std::string text, std::size_t fromEnd) {
  text[text.size() - fromEnd] ^= 1;
  return text;
}

TEST(JournalFile, TakesEveryLineThatIsWholeWhateverStandsAroundIt) {
  const std::string one = RowLine(1, "a"), two = RowLine(2, "b"), again = RowLine(1, "c * d"), rows = kHead + one + two;
  const std::string noJournal = "It is no journal", other = "It is of another version of Hylden";
  const struct {
    const char* name;
    std::string bytes, read;
  } cases[] = {
      {"whole", rows, "1=a 2=b "},
      {"a later line about a row counts", rows + again, "1=c * d 2=b "},
      {"torn in the last line", rows + again.substr(0, 12), "1=a 2=b "},
      {"without the last line's end", rows.substr(0, rows.size() - 2), "1=a 2=b "},
      {"zeros at the end", rows + std::string(100, '\0'), "1=a 2=b "},
      {"of the first form", SealedLine("Hylden journal 1") + kHead.substr(kHead.find('\n') + 1) + one, "1=a "},
      {"of the second form", SealedLine("Hylden journal 2") + kHead.substr(kHead.find('\n') + 1) + one, "1=a "},
      {"continued", kHead + one + SeamLine(2) + two, "1=a seam 2=b "},
      {"a changed figure", kHead + Flipped(one, 13) + two + again, "1=c * d 2=b damaged 1"},
      {"a line of somebody else", kHead + one + "hello\r\n" + two, "1=a 2=b damaged 1"},
      {"an unknown word", kHead + one + SealedLine("remark x") + two, "1=a 2=b damaged 1"},
      {"a row without a number", kHead + one + SealedLine("row x y") + two, "1=a 2=b damaged 1"},
      {"head only", kHead, ""},
      {"damage in the head", Flipped(kHead, 50) + one, "Its head is damaged"},
      {"another form", SealedLine("Hylden journal 4") + one, other},
      {"other text", "a,b,c\r\n" + one, noJournal},
      {"other text of one line", "a,b,c", noJournal},
      {"noise", std::string("\x00\xff\x80\r\n\x01", 6), noJournal},
  };
  for (const auto& c : cases) EXPECT_EQ(RowsIn(c.bytes), c.read) << c.name;
}

TEST(JournalFile, LosesNoWholeRowWhereverItIsTorn) {
  const std::string one = RowLine(1, "a"), bytes = kHead + one + RowLine(2, "b");
  for (std::size_t length = 0; length <= bytes.size(); ++length) {
    const std::size_t rowEnd = kHead.size() + one.size() - 2, end = bytes.size() - 2;
    EXPECT_EQ(RowsIn(bytes.substr(0, length)), length < rowEnd ? "" : length < end ? "1=a " : "1=a 2=b ") << length;
  }
}

TEST(JournalFile, GivesItsHeadBack) {
  const auto journal = ReadJournal(kHead);
  ASSERT_TRUE(journal);
  EXPECT_EQ(journal->Head.Name, "a *b.csu");
  EXPECT_EQ(journal->Head.File, "/lab/a *b.csu");
  EXPECT_EQ(journal->Head.Equipment, "/lab/hall.eqp");
  EXPECT_EQ(journal->Head.Planned, 3U);
  EXPECT_EQ(journal->Head.Info, (std::vector<std::string>{"clamp", "", " 0 "}));
  EXPECT_EQ(HeadLines(journal->Head), kHead);
  ASSERT_EQ(journal->Head.Parts.size(), 2U);
  EXPECT_EQ(journal->Head.Parts.front().Name, "calibration setup a *b.csu");
  EXPECT_EQ(journal->Head.Parts.front().Checksum, 0x0012ABCDU);
}

TEST(JournalFile, IsSealedByTheUsualCrc32) {
  EXPECT_EQ(Crc32("123456789"), 0xCBF43926U);
}

TEST(JournalFile, ReadsTheExampleOfItsPage) {
  std::string example;
  bool inside = false;
  for (const std::string& line : ReadLines(HYLDEN_SOURCE_DIR "/docs/formats/journal.md")) {
    if (inside && line == "```") break;
    if (inside) example += line + "\r\n";
    inside = inside || line == "```text";
  }
  EXPECT_EQ(RowsIn(example).substr(0, 27), "1=step 0.15 -12.3 129.5 na ");
  EXPECT_EQ(ReadJournal(example)->Damaged, 0U);
}

}  // namespace
}  // namespace hylden
