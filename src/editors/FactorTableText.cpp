#include "editors/FactorTableText.h"

#include <algorithm>
#include <array>

#include "measure/InterpClass.h"
#include "text/Case.h"
#include "text/Numbers.h"
#include "text/Pattern.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

constexpr std::array<FactorKindText, 6> kKinds = {{{"*.fac", "Factor", "dB", FreqScale::Linear},
                                                   {"*.los", "Loss", "dB", FreqScale::Linear},
                                                   {"*.prb", "Probe factor", "dB", FreqScale::Linear},
                                                   {"*.pwr", "Power", "", FreqScale::Linear},
                                                   {"*.lev", "Test level", "V", FreqScale::Log},
                                                   {"*.*", "Factor", "", FreqScale::Linear}}};

template <class Real>
std::string WithoutExponent(Real value) {
  const std::string text = ShortestText(value);
  return text.find('E') == std::string::npos ? text : Format(value, "0.0####################");
}

bool IsPlain(std::string_view text) {
  return text.find_first_not_of("+-.0123456789 \t") == std::string_view::npos;
}

/// Why a cell is no number that a table can hold; empty when it is one.
std::string ProblemOf(const std::string& text) {
  if (Trim(text).empty()) return "is empty";
  if (IsNumeric(text) && !IsPlain(text)) return "has an exponent, or is no decimal number: no table is read with it";
  if (IsNumeric(text)) return Trim(text).find_first_of(" \t") == std::string::npos ? "" : "has a blank in it";
  const bool isComma = text.find(',') != std::string::npos && IsNumeric(text, Commas::Grouping);
  return isComma ? "has a comma: the decimal sign is the point" : "is no number";
}

std::string LineOf(const std::string& frequency, const std::string& value) {
  return frequency + ", " + value;
}

std::string Count(std::size_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

bool Below(const FactorTable::Point& a, const FactorTable::Point& b) {
  return a.Freq < b.Freq;
}

void FindRepeated(FactorTable& table) {
  const std::vector<FactorTable::Point>& points = table.Points;
  for (std::size_t i = 1; i < points.size(); ++i) {
    if (points[i].Freq != points[i - 1].Freq) continue;
    const bool again = i > 1 && points[i - 2].Freq == points[i].Freq;
    (again ? table.Repeated : table.Bands).insert(points[i].Freq);
  }
  for (const double frequency : table.Repeated) table.Bands.erase(frequency);
}

}  // namespace

const FactorKindText& FactorKindOf(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  const std::string pattern =
      "*" + (dot == std::string_view::npos ? std::string() : LowerCase(std::string(path.substr(dot))));
  const auto found =
      std::find_if(kKinds.begin(), kKinds.end(), [&](const FactorKindText& kind) { return kind.Pattern == pattern; });
  return found == kKinds.end() ? kKinds.back() : *found;
}

std::string PlainText(double value) {
  return WithoutExponent(value);
}

std::string PlainText(float value) {
  return WithoutExponent(value);
}

FactorRowState LookAtRow(const std::string& frequency, const std::string& value) {
  if (Trim(frequency).empty() && Trim(value).empty()) return {};
  const bool isWritten = IsNumeric(frequency) && IsNumeric(value);
  FactorRowState state{isWritten ? FactorRow::Refused : FactorRow::Skipped, 1, ProblemOf(frequency), 0, 0};
  // Of two bad cells the one that keeps the row from being written is told.
  if (state.Problem.empty() || (!isWritten && IsNumeric(frequency))) state.Col = 2, state.Problem = ProblemOf(value);
  if (!isWritten) return state;
  const ParsedFactorLine line = ParseFactorLine(LineOf(frequency, value));
  if (line.Ok) return {FactorRow::Point, 0, {}, line.Freq, line.Value};
  if (state.Problem.empty()) state.Problem = "is too large for a table";
  return state;
}

FactorTable LookAtTable(const GridCells& cells) {
  FactorTable table;
  for (int row = 1; row <= cells.Rows(); ++row) {
    const FactorRowState state = LookAtRow(cells.Text({row, 1}), cells.Text({row, 2}));
    if (state.Is == FactorRow::Empty) continue;
    if (state.Is == FactorRow::Point) {
      table.Points.push_back({state.Freq, state.Value, row});
      continue;
    }
    ++(state.Is == FactorRow::Skipped ? table.Skipped : table.Refused);
    // A row that spoils the file comes before one that is left out.
    const bool first = table.FirstProblemRow == 0 || (state.Is == FactorRow::Refused && table.Refused == 1);
    if (!first) continue;
    table.FirstProblemRow = row;
    table.FirstProblem = cells.Heading(state.Col) + " " + state.Problem;
  }
  if (!std::is_sorted(table.Points.begin(), table.Points.end(), Below))
    std::stable_sort(table.Points.begin(), table.Points.end(), Below);
  FindRepeated(table);
  return table;
}

std::string FactorTable::Summary() const {
  std::string text = Points.empty() ? "No points yet" : Count(Points.size(), "point");
  if (!Points.empty()) text += ", " + PlainText(Points.front().Freq) + " to " + PlainText(Points.back().Freq) + " MHz";
  if (Points.size() == 1) text += "; a table has two at least";
  if (Refused > 0) text += "; " + Count(static_cast<std::size_t>(Refused), "row") + " that can't be read back";
  if (Skipped > 0) text += "; " + Count(static_cast<std::size_t>(Skipped), "row") + " not saved";
  if (FirstProblemRow > 0) text += " (row " + std::to_string(FirstProblemRow) + ": " + FirstProblem + ")";
  if (!Points.empty() && Points.front().Freq <= 0) text += "; 0 MHz and less has no place on a logarithmic scale";
  if (!Repeated.empty())
    text += "; " + PlainText(*Repeated.begin()) + " MHz more than twice";
  else if (!Bands.empty())
    text += "; " + PlainText(*Bands.begin()) + " MHz twice: the larger value counts there";
  return text;
}

std::vector<GridRow> WrittenRows(const GridCells& cells) {
  std::vector<GridRow> rows;
  for (int row = 1; row <= cells.Rows(); ++row)
    if (IsNumeric(cells.Text({row, 1})) && IsNumeric(cells.Text({row, 2}))) rows.push_back(cells.Row(row));
  return rows;
}

std::string FactorFileText(const GridCells& cells) {
  std::vector<std::string> lines;
  for (const GridRow& row : WrittenRows(cells)) lines.push_back(LineOf(row[0], row[1]));
  return JoinLines(lines);
}

std::string NotKeptOf(std::string_view fileText) {
  std::size_t headings = 0;
  bool moreColumns = false;
  for (LineReader reader{std::string(fileText)}; !reader.AtEnd();) {
    const std::string_view line = reader.NextLine();
    double number = 0;
    if (!ParseFactorLine(line).Ok) ++headings;
    moreColumns = moreColumns || ReadNumbers(line, {&number, &number, &number});
  }
  std::string text = headings > 0 ? Count(headings, "heading line") : "";
  if (moreColumns) text += text.empty() ? "further columns" : " and further columns";
  return text;
}

}  // namespace hylden
