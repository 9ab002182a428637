#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "shell/Failure.h"

namespace hylden {

/// A data cell. Rows and columns of data are counted from 1: row 0 holds the headings, column 0 the row numbers.
struct GridPlace {
  int Row = 1, Col = 1;
  bool operator==(const GridPlace&) const = default;
};

/// A rectangle of cells, both corners within it.
struct GridBlock {
  GridPlace First, Last;
};

using GridRow = std::vector<std::string>;

/// Lines (rows, or columns) from `First` on: some are removed, or some inserted, or as many are replaced.
struct GridChange {
  enum class Of { Rows, Columns } Lines = Of::Rows;
  int First = 1, Removed = 0, Inserted = 0;
};

/// The texts of a small spreadsheet, and every way to change them, back and forth. There is always a row of data and a
/// column. The headings of the columns stay where they are when columns are inserted or removed, as row numbers do.
class GridCells {
 public:
  /// The most rows that are pasted at once.
  static constexpr int kMostPasted = 200'000;

  explicit GridCells(std::vector<std::string> headings = {std::string()});

  /// Called around every change, for whoever shows the cells.
  std::function<void(const GridChange&)> onChanging, onChanged;
  /// An empty row stays below the last that holds something.
  bool KeepsSpareRow = false;

  int Rows() const { return static_cast<int>(rows_.size()); }
  int Columns() const { return static_cast<int>(headings_.size()); }
  const std::string& Heading(int col) const { return headings_[Index(col)]; }
  const GridRow& Row(int row) const { return rows_[Index(row)]; }
  const std::string& Text(GridPlace at) const { return Row(at.Row)[Index(at.Col)]; }
  bool RowHasData(int row) const;
  bool ColHasData(int col) const;

  /// What there is instead of all rows, from now on; it can't be undone. No rows: one that is empty.
  void SetRows(std::vector<GridRow> rows);
  /// The text of a cell while it is being typed: all of it is one step to undo, up to EndTyping or any other change. A
  /// spare row that came with it goes again when it is taken back: end it before rows are counted.
  void Type(GridPlace at, const std::string& text);
  void EndTyping();

  void AddRow();
  void InsRow(int row);
  /// The only row is emptied instead.
  void RemoveRow(int row) { RemoveRows(row, row); }
  void RemoveRows(int first, int last);
  void AddCol();
  void InsCol(int col);
  /// The only column stays.
  void RemoveCol(int col);

  /// The block as other programs take it: tabs between cells, a line for each row.
  std::string BlockText(const GridBlock& block) const;
  void ClearBlock(const GridBlock& block);
  /// Puts rows over the cells from a place on; rows that are missing are added, cells beyond the last column left out.
  /// @return the block that was written
  GridBlock Paste(GridPlace at, const std::vector<GridRow>& rows);

  bool CanUndo() const { return !done_.empty(); }
  bool CanRedo() const { return !undone_.empty(); }
  /// @return where something has changed; nothing when there is nothing to undo
  std::optional<GridPlace> Undo();
  std::optional<GridPlace> Redo();

  /// Where the arrow keys lead. Left and Right go on in the row above or below; none leaves the cells.
  GridPlace LeftOf(GridPlace at) const;
  GridPlace RightOf(GridPlace at) const;
  GridPlace Above(GridPlace at) const { return {std::max(at.Row - 1, 1), at.Col}; }
  GridPlace Below(GridPlace at) const { return {std::min(at.Row + 1, Rows()), at.Col}; }

 private:
  /// A change and all that is needed to take it back: the lines from `First` on, before and after. Columns begin with
  /// the heading that comes or goes at the end.
  struct Step {
    GridChange::Of Lines = GridChange::Of::Rows;
    int First = 1;
    std::vector<GridRow> Before, After;
    GridPlace At;
  };

  static std::size_t Index(int number) { return static_cast<std::size_t>(number - 1); }
  GridRow EmptyRow() const { return GridRow(headings_.size()); }
  std::vector<GridRow> Copy(int first, int last) const;
  void AddSpare(Step& step) const;
  void Do(Step step);
  void Exchange(const Step& step, const std::vector<GridRow>& before, const std::vector<GridRow>& after);
  void Announce(const GridChange& change, const std::function<void()>& make);
  void ExchangeRows(int first, std::size_t removed, const std::vector<GridRow>& after);
  void InsertColumn(int col, const GridRow& column);
  void TakeColumn(int col);
  void ForgetOldSteps();

  std::vector<std::string> headings_;
  std::vector<GridRow> rows_;
  std::deque<Step> done_, undone_;
  std::optional<GridPlace> typing_;
};

/// The rows of a text from another program: cells are separated by tabs; where there is none, by ", " or, between
/// numbers, by blanks. The clipboard may hold anything: more rows than can be pasted, or no table at all, is refused.
Result<std::vector<GridRow>> ParseBlock(std::string_view text);

}  // namespace hylden
