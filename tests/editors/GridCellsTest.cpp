#include "editors/GridCells.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace hylden {
namespace {

using Rows = std::vector<GridRow>;

Rows RowsOf(const GridCells& cells) {
  Rows rows;
  for (int row = 1; row <= cells.Rows(); ++row) rows.push_back(cells.Row(row));
  return rows;
}

GridCells Three() {
  GridCells cells({"Freq", "Factor"});
  cells.SetRows({{"1", "a"}, {"2", "b"}, {"3", "c"}});
  return cells;
}

/// A change, what it leaves of three rows, and how many steps it takes to go back.
struct ChangeCase {
  const char* name;
  void (*change)(GridCells&);
  Rows after;
};

class ChangeTest : public testing::TestWithParam<ChangeCase> {};

TEST_P(ChangeTest, LeavesTheseRowsAndIsUndoneAndDoneAgain) {
  GridCells cells = Three();
  const Rows before = RowsOf(cells);
  GetParam().change(cells);
  EXPECT_EQ(RowsOf(cells), GetParam().after);
  const std::string lastHeading = cells.Heading(cells.Columns());
  ASSERT_TRUE(cells.Undo());
  EXPECT_EQ(RowsOf(cells), before);
  EXPECT_EQ(cells.Columns(), 2);
  EXPECT_EQ(cells.Heading(2), "Factor");
  EXPECT_FALSE(cells.Undo()) << "it was one step";
  ASSERT_TRUE(cells.Redo());
  EXPECT_EQ(RowsOf(cells), GetParam().after);
  EXPECT_EQ(cells.Heading(cells.Columns()), lastHeading);
  EXPECT_FALSE(cells.CanRedo());
}

INSTANTIATE_TEST_SUITE_P(
    Changes, ChangeTest,
    testing::Values(
        ChangeCase{"insert_row_2", [](GridCells& c) { c.InsRow(2); }, {{"1", "a"}, {"", ""}, {"2", "b"}, {"3", "c"}}},
        ChangeCase{"add_row", [](GridCells& c) { c.AddRow(); }, {{"1", "a"}, {"2", "b"}, {"3", "c"}, {"", ""}}},
        ChangeCase{"remove_row_1", [](GridCells& c) { c.RemoveRow(1); }, {{"2", "b"}, {"3", "c"}}},
        ChangeCase{"one_row_remains", [](GridCells& c) { c.RemoveRows(1, 3); }, {{"", ""}}},
        ChangeCase{"add_col", [](GridCells& c) { c.AddCol(); }, {{"1", "a", ""}, {"2", "b", ""}, {"3", "c", ""}}},
        ChangeCase{"insert_col_1", [](GridCells& c) { c.InsCol(1); }, {{"", "1", "a"}, {"", "2", "b"}, {"", "3", "c"}}},
        ChangeCase{"remove_col_1", [](GridCells& c) { c.RemoveCol(1); }, {{"a"}, {"b"}, {"c"}}},
        ChangeCase{"typed_over_several_keys",
                   [](GridCells& c) {
                     for (const char* text : {"9", "99", "99."}) c.Type({2, 1}, text);
                     c.EndTyping();
                   },
                   {{"1", "a"}, {"99.", "b"}, {"3", "c"}}},
        ChangeCase{"clear",
                   [](GridCells& c) {
                     c.ClearBlock({{1, 2}, {2, 2}});
                   },
                   {{"1", ""}, {"2", ""}, {"3", "c"}}},
        ChangeCase{"paste_beyond_the_end_and_the_last_column",
                   [](GridCells& c) {
                     c.Paste({3, 2}, {{"x", "left out"}, {"y"}});
                   },
                   {{"1", "a"}, {"2", "b"}, {"3", "x"}, {"", "y"}}},
        ChangeCase{"spare_row_below_what_is_typed_last",
                   [](GridCells& c) {
                     c.KeepsSpareRow = true;
                     c.Type({3, 2}, "d");
                   },
                   {{"1", "a"}, {"2", "b"}, {"3", "d"}, {"", ""}}}),
    [](const auto& row) { return row.param.name; });

TEST(GridCellsTest, NewColumnIsHeadedByItsNumber) {
  GridCells cells = Three();
  cells.InsCol(1);
  EXPECT_EQ(cells.Heading(1), "Freq") << "headings stay where they are";
  EXPECT_EQ(cells.Heading(3), "Col 3");
}

TEST(GridCellsTest, TypedAndTakenBackIsNothingToUndo) {
  GridCells cells = Three();
  cells.KeepsSpareRow = true;
  cells.Type({3, 1}, "34");
  cells.Type({3, 1}, "3");
  cells.EndTyping();
  EXPECT_FALSE(cells.CanUndo());
  EXPECT_EQ(cells.Rows(), 3);
}

TEST(GridCellsTest, ArrowsGoOnInTheNextRowAndStopAtTheCorners) {
  const GridCells cells = Three();
  EXPECT_EQ(cells.LeftOf({2, 1}), (GridPlace{1, 2}));
  EXPECT_EQ(cells.LeftOf({1, 1}), (GridPlace{1, 1}));
  EXPECT_EQ(cells.RightOf({1, 2}), (GridPlace{2, 1}));
  EXPECT_EQ(cells.RightOf({3, 2}), (GridPlace{3, 2}));
  EXPECT_EQ(cells.Above({1, 2}), (GridPlace{1, 2}));
  EXPECT_EQ(cells.Below({3, 2}), (GridPlace{3, 2}));
}

TEST(GridCellsTest, TextsOfOtherProgramsBecomeRows) {
  const std::pair<const char*, Rows> texts[] = {
      {"1\t2\r\n3\t4\r\n", {{"1", "2"}, {"3", "4"}}},
      {"0.15, 0.05\n100, 0.7", {{"0.15", "0.05"}, {"100", "0.7"}}},
      {"  0.15   0.05\r1 2", {{"0.15", "0.05"}, {"1", "2"}}},
      {"two words", {{"two words"}}},
      {"10,5", {{"10,5"}}},
      {"a\t\t\n\n", {{"a", "", ""}, {""}}},
  };
  for (const auto& [text, rows] : texts) EXPECT_EQ(*ParseBlock(text), rows) << text;
  GridCells cells = Three();
  EXPECT_EQ(cells.BlockText({{1, 1}, {2, 2}}), "1\ta\n2\tb\n");
}

TEST(GridCellsTest, ClipboardThatIsNoTableIsRefused) {
  std::string rows;
  for (int i = 0; i < GridCells::kMostPasted; ++i) rows += "1\t2\n";
  EXPECT_TRUE(ParseBlock(rows));
  for (const std::string& text : {rows + "1\t2\n", std::string(1001, '1'), std::string()})
    EXPECT_FALSE(ParseBlock(text));
}

}  // namespace
}  // namespace hylden
