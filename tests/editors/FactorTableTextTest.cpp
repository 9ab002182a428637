#include "editors/FactorTableText.h"

#include <gtest/gtest.h>

#include "measure/InterpClass.h"
#include "support/TestShell.h"

namespace hylden {
namespace {

struct RowCase {
  const char *frequency, *value;
  FactorRow is;
  int col;
};

TEST(FactorTableTextTest, RowsAreWrittenWhenBothCellsAreNumbersAndMarkedWhenNothingReadsThemBack) {
  const std::string many(40, '1');
  const RowCase rows[] = {
      {"0.15", "0.05", FactorRow::Point, 0},    {" 100 ", "-.7", FactorRow::Point, 0},
      {many.c_str(), "1", FactorRow::Point, 0}, {"", " ", FactorRow::Empty, 0},
      {"1", "", FactorRow::Skipped, 2},         {"", "1", FactorRow::Skipped, 1},
      {"1", "1.2.3", FactorRow::Skipped, 2},    {"10,5", "1", FactorRow::Skipped, 1},
      {"Freq", "Loss", FactorRow::Skipped, 1},  {"1E2", "", FactorRow::Skipped, 2},
      {"1E2", "1", FactorRow::Refused, 1},      {"1", "1e-2", FactorRow::Refused, 2},
      {"1", "&H1F", FactorRow::Refused, 2},     {"1", many.c_str(), FactorRow::Refused, 2},
      {"+ 5", "1", FactorRow::Refused, 1},
  };
  for (const RowCase& row : rows) {
    SCOPED_TRACE(std::string(row.frequency) + " | " + row.value);
    const FactorRowState state = LookAtRow(row.frequency, row.value);
    EXPECT_EQ(state.Is, row.is);
    EXPECT_EQ(state.Col, row.col);
    EXPECT_EQ(state.Problem.empty(), row.col == 0);
  }
}

GridCells Cells(std::vector<GridRow> rows) {
  GridCells cells({"Freq", "Factor"});
  cells.SetRows(std::move(rows));
  return cells;
}

TEST(FactorTableTextTest, SummarySaysWhatASaveMakesOfTheCells) {
  const std::pair<std::vector<GridRow>, const char*> tables[] = {
      {{{"", ""}}, "No points yet"},
      {{{"1", "2"}}, "1 point, 1 to 1 MHz; a table has two at least"},
      {{{"100", "2"}, {"0.15", "1"}, {"", ""}}, "2 points, 0.15 to 100 MHz"},
      {{{"1", "2"}, {"2", "3"}, {"3", ""}, {"4,5", "1"}},
       "2 points, 1 to 2 MHz; 2 rows not saved (row 3: Factor is empty)"},
      {{{"1", ""}, {"2", "3"}, {"3", "1E-2"}},
       "1 point, 2 to 2 MHz; a table has two at least; 1 row that can't be read back; 1 row not saved (row 3: Factor "
       "has "
       "an exponent, or is no decimal number: no table is read with it)"},
      {{{"1", "2"}, {"30", "3"}, {"30", "4"}}, "3 points, 1 to 30 MHz; 30 MHz twice: the larger value counts there"},
      {{{"0", "2"}, {"30", "3"}}, "2 points, 0 to 30 MHz; 0 MHz and less has no place on a logarithmic scale"},
      {{{"30", "2"}, {"30", "3"}, {"30", "4"}}, "3 points, 30 to 30 MHz; 30 MHz more than twice"},
  };
  for (const auto& [rows, summary] : tables) EXPECT_EQ(LookAtTable(Cells(rows)).Summary(), summary);
}

/// What the editor calls usable is what the program's reader takes, and the points are those that it reads.
TEST(FactorTableTextTest, LooksAtATableAsTheReaderDoes) {
  const std::vector<GridRow> tables[] = {
      {{"100", "2"}, {"0.15", "1"}},          {{"1", "2"}, {"2", "3"}, {"3", "1E-2"}},
      {{"1E0", "2"}, {"2", "3"}, {"3", "4"}}, {{"1", "2"}, {"", ""}, {"x", "1"}},
      {{"1", "2"}, {"", ""}, {"5", "1"}},
  };
  for (const std::vector<GridRow>& rows : tables) {
    const GridCells cells = Cells(rows);
    const FactorTable table = LookAtTable(cells);
    SCOPED_TRACE(table.Summary());
    TestShell t;
    InterpClass reader(t.shell);
    const bool reads = static_cast<bool>(reader.InitInterp(t.directory.Write("a.los", FactorFileText(cells))));
    if (!table.IsUsable()) continue;
    EXPECT_TRUE(reads);
    EXPECT_EQ(reader.MinFreq(), table.Points.front().Freq);
    EXPECT_EQ(reader.MaxFreq(), table.Points.back().Freq);
  }
}

TEST(FactorTableTextTest, WritesTheCellsAsTheyWereTyped) {
  EXPECT_EQ(FactorFileText(Cells({{"0.150", "1"}, {"2", ""}, {"3", "1E-2"}})), "0.150, 1\r\n3, 1E-2\r\n");
  EXPECT_EQ(PlainText(1e-7), "0.0000001");
  EXPECT_EQ(PlainText(0.1F), "0.1");
}

TEST(FactorTableTextTest, TellsWhatASaveDropsOfTheFile) {
  EXPECT_EQ(NotKeptOf("0.15, 1\r\n2, 3\r\n"), "");
  EXPECT_EQ(NotKeptOf("Cable\r\n1 2 0\r\n2 2\r\n"), "1 heading line and further columns");
}

}  // namespace
}  // namespace hylden
