#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "editors/GridCells.h"

class QEvent;
class QKeyEvent;
class QLabel;
class QLineEdit;
class QTableView;

namespace hylden {

class Dialogs;
class GridModel;

/// Turns a table into a small spreadsheet: the operator types into the current cell through a text box laid over it,
/// moves with the arrow keys, inserts and removes rows, and exchanges blocks with other programs. Any number of rows
/// scrolls and is edited alike. Rows and columns of data are counted from 1.
class EditGrid : public QObject {
  Q_OBJECT

 public:
  /// What is the matter with a cell; empty when nothing is. It is marked, and says so in its tool tip.
  using CellFault = std::function<std::string(GridPlace)>;

  explicit EditGrid(Dialogs& dialogs, QObject* parent = nullptr);
  ~EditGrid() override;

  /// Takes the controls, which have to outlive it: one column for each heading and one empty row, whose first cell is
  /// current.
  /// @param rowHeading  stands above the row numbers
  void SetupFlexGrid(QTableView& grid, QLineEdit& editBox, QLabel& header,
                     const std::vector<std::string>& columnHeadings, const std::string& rowHeading);

  /// Appends a column, headed "Col " and its number.
  void AddCol();
  /// Appends a row and makes it current.
  void AddRow();
  /// Remove the last one, after a question when it holds data; one always remains.
  void DelCol();
  void DelRow();
  /// Insert an empty one at the current one.
  void InsRow();
  void InsCol();
  /// Removes the current row, or all rows that are selected as a whole, after a question when there is data.
  void ExtractRow();
  void ExtractCol();

  /// Blocks, to and from the clipboard. What is pasted goes over the cells from the first selected one on.
  void Copy();
  void Cut();
  void Paste();
  /// Empties the selected cells.
  void Clear();
  void Undo();
  void Redo();

  /// The cells; what is being typed is in them.
  const GridCells& Cells() const { return cells_; }
  /// What there is instead of all rows; it can't be undone.
  void SetRows(std::vector<GridRow> rows);
  /// An empty row for new entries always stands at the end.
  void KeepSpareRow();
  void SetFaults(CellFault faults);

  GridPlace Current() const { return place_; }
  void MakeCurrent(GridPlace place);
  /// Ends what is being typed: it stays in the cell.
  void EndEdit();

 signals:
  void Edited();
  void CurrentMoved(int row, int col);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool GridKey(const QKeyEvent& key);
  bool BoxKey(const QKeyEvent& key);
  bool MoveKey(const QKeyEvent& key);
  bool TabKey(const QKeyEvent& key);
  bool IsInBox() const;
  GridPlace Within(GridPlace place) const;
  void TakeBox();
  void BeginEdit();
  void PlaceBox();
  void ArriveAt(GridPlace place);
  void SetRowHeaderWidth();
  void ShowRowHeading(const std::string& heading);
  GridBlock Selected() const;
  void Select(const GridBlock& block);
  bool MayRemove(const std::string& title, const std::string& which, bool hasData);
  void RemoveRows(int first, int last);
  void RemoveCol(int col);

  Dialogs& dialogs_;
  GridCells cells_;
  std::unique_ptr<GridModel> model_;
  QTableView* grid_ = nullptr;
  QLineEdit* box_ = nullptr;
  QLabel* header_ = nullptr;
  std::string rowHeading_;
  GridPlace place_;
  QString copy_;           ///< the text that the cell had when it became current
  bool changing_ = false;  ///< lines come or go: the view's own current cell counts only afterwards
};

}  // namespace hylden
