#include "editors/GridCells.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "text/Numbers.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

constexpr std::size_t kMostSteps = 500, kMostRowsKept = 1'000'000;
constexpr std::size_t kLargestText = 32U << 20, kLongestCell = 1000;

bool HasText(const std::string& text) {
  return !text.empty();
}

GridRow SplitAt(std::string_view line, std::string_view separator) {
  GridRow cells;
  for (std::size_t end = line.find(separator); end != std::string_view::npos; end = line.find(separator)) {
    cells.emplace_back(line.substr(0, end));
    line.remove_prefix(end + separator.size());
  }
  cells.emplace_back(line);
  return cells;
}

/// The numbers of a line that holds nothing else; the line itself where it does.
GridRow SplitNumbers(std::string_view line) {
  GridRow numbers;
  constexpr const char* kBlanks = " \t";
  for (std::size_t start = line.find_first_not_of(kBlanks); start != std::string_view::npos;
       start = line.find_first_not_of(kBlanks)) {
    line.remove_prefix(start);
    const std::string_view token = line.substr(0, line.find_first_of(kBlanks));
    if (!IsNumeric(token)) return {};
    numbers.emplace_back(token);
    line.remove_prefix(token.size());
  }
  return numbers;
}

GridRow SplitLine(std::string_view line) {
  if (line.find('\t') != std::string_view::npos) return SplitAt(line, "\t");
  if (line.find(", ") != std::string_view::npos) return SplitAt(line, ", ");
  const GridRow numbers = SplitNumbers(line);
  return numbers.size() > 1 ? numbers : GridRow{std::string(line)};
}

}  // namespace

GridCells::GridCells(std::vector<std::string> headings) : headings_(std::move(headings)), rows_{EmptyRow()} {}

bool GridCells::RowHasData(int row) const {
  const GridRow& cells = Row(row);
  return std::any_of(cells.begin(), cells.end(), HasText);
}

bool GridCells::ColHasData(int col) const {
  return std::any_of(rows_.begin(), rows_.end(), [&](const GridRow& row) { return HasText(row[Index(col)]); });
}

void GridCells::SetRows(std::vector<GridRow> rows) {
  for (GridRow& row : rows) row.resize(headings_.size());
  if (rows.empty()) rows.push_back(EmptyRow());
  ExchangeRows(1, rows_.size(), rows);
  done_.clear();
  undone_.clear();
  typing_.reset();
}

void GridCells::Type(GridPlace at, const std::string& text) {
  if (Text(at) == text) return;
  if (typing_ != at) {
    EndTyping();
    Step step{GridChange::Of::Rows, at.Row, Copy(at.Row, at.Row), Copy(at.Row, at.Row), at};
    step.After.front()[Index(at.Col)] = text;
    AddSpare(step);
    Do(std::move(step));
    typing_ = at;
    return;
  }
  GridRow& typed = done_.back().After.front();
  typed[Index(at.Col)] = text;
  ExchangeRows(at.Row, 1, {typed});
}

void GridCells::EndTyping() {
  if (!typing_) return;
  typing_.reset();
  const Step& step = done_.back();
  if (step.After.front() != step.Before.front()) return;
  // Typed and taken back: there is nothing to undo.
  const Step nothing = std::move(done_.back());
  done_.pop_back();
  Exchange(nothing, nothing.After, nothing.Before);
}

void GridCells::AddRow() {
  EndTyping();
  InsRow(Rows() + 1);
}

void GridCells::InsRow(int row) {
  EndTyping();
  Do({GridChange::Of::Rows, row, {}, {EmptyRow()}, {row, 1}});
}

void GridCells::RemoveRows(int first, int last) {
  EndTyping();
  const bool all = first == 1 && last == Rows();
  Step step{GridChange::Of::Rows, first, Copy(first, last), {}, {std::max(first - 1, 1), 1}};
  if (all) step.After.push_back(EmptyRow());
  if (last == Rows()) AddSpare(step);
  Do(std::move(step));
}

void GridCells::AddCol() {
  InsCol(Columns() + 1);
}

void GridCells::InsCol(int col) {
  EndTyping();
  GridRow column(rows_.size() + 1);
  column.front() = "Col " + std::to_string(Columns() + 1);
  Do({GridChange::Of::Columns, col, {}, {std::move(column)}, {1, col}});
}

void GridCells::RemoveCol(int col) {
  EndTyping();
  if (Columns() == 1) return;
  GridRow column{headings_.back()};
  for (const GridRow& row : rows_) column.push_back(row[Index(col)]);
  Do({GridChange::Of::Columns, col, {std::move(column)}, {}, {1, std::max(col - 1, 1)}});
}

std::string GridCells::BlockText(const GridBlock& block) const {
  std::string text;
  for (int row = block.First.Row; row <= block.Last.Row; ++row)
    for (int col = block.First.Col; col <= block.Last.Col; ++col)
      text.append(Text({row, col})).append(col < block.Last.Col ? "\t" : "\n");
  return text;
}

void GridCells::ClearBlock(const GridBlock& block) {
  EndTyping();
  Step step{GridChange::Of::Rows, block.First.Row, Copy(block.First.Row, block.Last.Row), {}, block.First};
  step.After = step.Before;
  for (GridRow& row : step.After)
    for (int col = block.First.Col; col <= block.Last.Col; ++col) row[Index(col)].clear();
  Do(std::move(step));
}

GridBlock GridCells::Paste(GridPlace at, const std::vector<GridRow>& rows) {
  EndTyping();
  const int count = static_cast<int>(rows.size());
  GridBlock written{at, {at.Row + count - 1, at.Col}};
  Step step{GridChange::Of::Rows, at.Row, Copy(at.Row, std::min(written.Last.Row, Rows())), {}, at};
  step.After = step.Before;
  step.After.resize(rows.size(), EmptyRow());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const int columns = std::min(static_cast<int>(rows[i].size()), Columns() - at.Col + 1);
    std::copy_n(rows[i].begin(), columns, step.After[i].begin() + at.Col - 1);
    written.Last.Col = std::max(written.Last.Col, at.Col + columns - 1);
  }
  AddSpare(step);
  Do(std::move(step));
  return written;
}

std::optional<GridPlace> GridCells::Undo() {
  EndTyping();
  if (done_.empty()) return std::nullopt;
  Step step = std::move(done_.back());
  done_.pop_back();
  Exchange(step, step.After, step.Before);
  undone_.push_back(std::move(step));
  return undone_.back().At;
}

std::optional<GridPlace> GridCells::Redo() {
  EndTyping();
  if (undone_.empty()) return std::nullopt;
  Step step = std::move(undone_.back());
  undone_.pop_back();
  Exchange(step, step.Before, step.After);
  done_.push_back(std::move(step));
  return done_.back().At;
}

GridPlace GridCells::LeftOf(GridPlace at) const {
  if (at.Col > 1) return {at.Row, at.Col - 1};
  return at.Row > 1 ? GridPlace{at.Row - 1, Columns()} : at;
}

GridPlace GridCells::RightOf(GridPlace at) const {
  if (at.Col < Columns()) return {at.Row, at.Col + 1};
  return at.Row < Rows() ? GridPlace{at.Row + 1, 1} : at;
}

std::vector<GridRow> GridCells::Copy(int first, int last) const {
  return {rows_.begin() + first - 1, rows_.begin() + last};
}

/// A step that ends with the last row leaves an empty one below what it wrote.
void GridCells::AddSpare(Step& step) const {
  const std::size_t behind = Index(step.First) + step.Before.size();
  if (!KeepsSpareRow || behind < rows_.size()) return;
  const bool isEmpty = step.After.empty() ? step.First > 1 && !RowHasData(step.First - 1)
                                          : std::none_of(step.After.back().begin(), step.After.back().end(), HasText);
  if (!isEmpty) step.After.push_back(EmptyRow());
}

void GridCells::Do(Step step) {
  if (step.Before == step.After) return;
  Exchange(step, step.Before, step.After);
  done_.push_back(std::move(step));
  undone_.clear();
  ForgetOldSteps();
}

void GridCells::Exchange(const Step& step, const std::vector<GridRow>& before, const std::vector<GridRow>& after) {
  if (step.Lines == GridChange::Of::Rows) return ExchangeRows(step.First, before.size(), after);
  for (std::size_t i = 0; i < before.size(); ++i) TakeColumn(step.First);
  for (const GridRow& column : after) InsertColumn(step.First, column);
}

void GridCells::Announce(const GridChange& change, const std::function<void()>& make) {
  if (change.Removed == 0 && change.Inserted == 0) return;
  if (onChanging) onChanging(change);
  make();
  if (onChanged) onChanged(change);
}

/// First the rows that are there before and after, then those that come or go: so a view can follow it.
void GridCells::ExchangeRows(int first, std::size_t removed, const std::vector<GridRow>& after) {
  const auto common = static_cast<int>(std::min(removed, after.size()));
  Announce({GridChange::Of::Rows, first, common, common},
           [&] { std::copy_n(after.begin(), common, rows_.begin() + first - 1); });
  const GridChange rest{GridChange::Of::Rows, first + common, static_cast<int>(removed) - common,
                        static_cast<int>(after.size()) - common};
  Announce(rest, [&] {
    const auto at = rows_.begin() + rest.First - 1;
    rows_.insert(rows_.erase(at, at + rest.Removed), after.begin() + common, after.end());
  });
}

void GridCells::InsertColumn(int col, const GridRow& column) {
  Announce({GridChange::Of::Columns, col, 0, 1}, [&] {
    headings_.push_back(column.front());
    for (std::size_t i = 0; i < rows_.size(); ++i) rows_[i].insert(rows_[i].begin() + col - 1, column[i + 1]);
  });
}

void GridCells::TakeColumn(int col) {
  Announce({GridChange::Of::Columns, col, 1, 0}, [&] {
    headings_.pop_back();
    for (GridRow& row : rows_) row.erase(row.begin() + col - 1);
  });
}

/// What an afternoon of large pastes would keep.
void GridCells::ForgetOldSteps() {
  std::size_t rows = 0, steps = 0;
  for (auto step = done_.rbegin(); step != done_.rend(); ++step, ++steps) {
    const std::size_t lines = step->Before.size() + step->After.size();
    rows += step->Lines == GridChange::Of::Rows ? lines : lines * rows_.size();
    if (steps > 0 && (rows > kMostRowsKept || steps >= kMostSteps)) break;
  }
  while (done_.size() > steps) done_.pop_front();
}

Result<std::vector<GridRow>> ParseBlock(std::string_view text) {
  if (text.empty()) return Because("There is no text to paste");
  std::vector<GridRow> rows;
  // Counted before anything is made of it: a text that is too large costs no time.
  const auto lines = std::max(std::count(text.begin(), text.end(), '\n'), std::count(text.begin(), text.end(), '\r'));
  if (text.size() > kLargestText || lines > GridCells::kMostPasted)
    return Because("Too much to paste: at most " + std::to_string(GridCells::kMostPasted) + " rows at once");
  const auto isTooLong = [](const std::string& cell) { return cell.size() > kLongestCell; };
  for (LineReader reader{std::string(text)}; !reader.AtEnd();) {
    const GridRow& row = rows.emplace_back(SplitLine(reader.NextLine()));
    if (std::any_of(row.begin(), row.end(), isTooLong))
      return Because("What is to be pasted is no table: a cell would have more than 1000 characters");
  }
  return rows;
}

}  // namespace hylden
