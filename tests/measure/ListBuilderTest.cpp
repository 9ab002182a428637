#include "measure/ListBuilder.h"

#include <gmock/gmock.h>

#include "measure/ReadFreq.h"
#include "support/TempDir.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using enum ListPartKind;

TEST(ListParts, GoFromTheStartToTheEndWhateverTheStep) {
  const std::pair<ListPart, std::vector<double>> rows[] = {
      {{Linear, 10, 25, 10}, {10, 20, 25}},
      {{Linear, 0.1, 0.4, 0.1}, {0.1, 0.2, 0.3, 0.4}},  // no 0.30000000000000004, no end twice
      {{Linear, 30, 10, 5}, {10}},
      {{Log, 100, 150, 20}, {100, 120, 144, 150}},
      {{Harmonics, 30, 0, 3}, {30, 60, 90}},
      {{Harmonics, 30, 0, 2.5}, {30, 60}},
      {{Harmonics, 30, 0, 0.4}, {}},
      {{Linear, 0, 10, 1}, {}},
      {{Log, 1, 10, 0}, {}},
      {{Linear, 1, 1e6, 1e-6}, {}},  // a mistyped step must not fill the memory
      {{Harmonics, 1, 0, 1e39}, {}},
  };
  for (const auto& [part, expected] : rows)
    EXPECT_EQ(FrequenciesOf(part), expected) << part.Start << ' ' << part.End << ' ' << part.Step;
}

TEST(TidyList, SortsAndLeavesOutTheSecondOfTwo) {
  EXPECT_THAT(TidyList({30, 10, 20, 10}), ElementsAre(10, 20, 30));
  EXPECT_THAT(TidyList({5, 5, 5}), ElementsAre(5, 5)) << "of three, two stay";
  EXPECT_THAT(TidyList({5, 5, 5, 5, 6}), ElementsAre(5, 5, 6));
  EXPECT_THAT(TidyList({-1, 0, 7}), ElementsAre(-1)) << "0 ends a list";
}

TEST(ListBuilder, RangeAddedTwiceIsThereOnce) {
  ListBuilder builder;
  for (int i = 0; i < 2; ++i) builder.Add({Linear, 10, 30, 10});
  EXPECT_THAT(builder.List(), ElementsAre(10, 20, 30));
  EXPECT_THAT(ListLines(builder.List()), ElementsAre("10.0", "20.0", "30.0"));
  EXPECT_EQ(ListSummary(builder.List()), "3 frequencies, 10.0 to 30.0 MHz");
  for (int i = 0; i < 2; ++i) builder.Add({Linear, 1, 1e5, 1});
  EXPECT_THAT(builder.List(), SizeIs(100'000));
}

TEST(ListBuilder, KnowsWhichFileTheListIsIn) {
  const TempDir directory;
  const std::string file = directory.File("new.lst");
  ListBuilder builder;
  builder.Open({1, 2}, "old.lst");
  EXPECT_TRUE(builder.IsUnchanged());
  builder.AddFile({3}, "more.lst");
  EXPECT_TRUE(builder.IsUnsaved());
  EXPECT_FALSE(builder.IsUnchanged());
  EXPECT_EQ(builder.File(), "");
  EXPECT_FALSE(builder.Save(directory.File("missing/new.lst")));
  EXPECT_TRUE(builder.IsUnsaved());
  EXPECT_TRUE(builder.Save(file));
  EXPECT_EQ(ReadTextFile(file), "1.0\r\n2.0\r\n3.0\r\n");
  EXPECT_FALSE(builder.IsUnsaved());
  builder.Undo();
  EXPECT_THAT(builder.List(), ElementsAre(1, 2));
  EXPECT_TRUE(builder.IsUnsaved() && builder.File().empty()) << "its file may have been written over";
  builder.Clear();
  EXPECT_EQ(builder.File(), "");
  builder.AddFile({4}, "first.lst");
  EXPECT_EQ(builder.File(), "first.lst") << "the first frequencies are the file";
}

}  // namespace
}  // namespace hylden
