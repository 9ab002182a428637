#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "editors/GridCells.h"
#include "measure/Interpolation.h"

namespace hylden {

/// What the values of a factor file are, told by its extension, and the scale on which the program looks them up.
struct FactorKindText {
  const char* Pattern;  ///< "*.los"
  const char* Name;
  const char* Unit;  ///< empty where the file has its own
  FreqScale Scale;
};

/// @param path  of a file, or a pattern; one that is unknown counts as a table of factors
const FactorKindText& FactorKindOf(std::string_view path);

/// A number as a table file may hold it: without an exponent.
std::string PlainText(double value);
std::string PlainText(float value);

/// What a row of two cells is to a table file.
enum class FactorRow {
  Empty,
  Point,    ///< written, and read back
  Refused,  ///< written, since both cells are numbers; but nothing reads them back, so that the file is unusable
  Skipped   ///< not written
};

struct FactorRowState {
  FactorRow Is = FactorRow::Empty;
  int Col = 0;          ///< the cell that is to blame, 1 or 2; 0 for none
  std::string Problem;  ///< why it is skipped or refused
  double Freq = 0;      ///< of a point, MHz
  float Value = 0;
};

FactorRowState LookAtRow(const std::string& frequency, const std::string& value);

/// What a save would make of the cells.
struct FactorTable {
  struct Point {
    double Freq;  ///< MHz
    float Value;
    int Row;  ///< in the grid, from 1
  };

  std::vector<Point> Points;  ///< by rising frequency; equal ones as they stand in the grid
  std::set<double> Bands;     ///< the frequencies that stand twice: a change of band
  std::set<double> Repeated;  ///< those that stand more often, which nothing explains
  int Skipped = 0, Refused = 0;
  int FirstProblemRow = 0;
  std::string FirstProblem;

  /// The program's reader takes the file.
  bool IsUsable() const { return Points.size() >= 2 && Refused == 0; }
  /// What the operator should know, in a line: how many points, their range, what is skipped or refused.
  std::string Summary() const;
};

FactorTable LookAtTable(const GridCells& cells);

/// The file of all rows with a number in both cells: frequency, ", ", value, as they were typed.
std::string FactorFileText(const GridCells& cells);

/// Its rows.
std::vector<GridRow> WrittenRows(const GridCells& cells);

/// What a file holds beside its points, which is all that a save keeps: headings, further columns. Empty when there is
/// nothing.
std::string NotKeptOf(std::string_view fileText);

}  // namespace hylden
