#pragma once

#include <QAbstractTableModel>
#include <functional>
#include <string>
#include <vector>

namespace hylden {

/// What a run recorded, as a table: numbers, to the right of their columns. A row that is added or changed costs the
/// same however many there are.
class RowTable : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// The text of a cell; row and column counted from 0, so the next.
  using CellText = std::function<std::string(std::size_t row, std::size_t column)>;
  using CellTest = std::function<bool(std::size_t row, std::size_t column)>;
  /// @param isWords  the cells that hold words stand to the left; where there are any, a cell that is too narrow for
  ///                 its text has it as tool tip, and so has every other
  RowTable(std::vector<std::string> headings, CellText cell, CellTest isWords = {}, QObject* parent = nullptr);

  /// This row (counted from 1) is there or has changed; it may be one beyond the last. 0: there are none any more.
  void RowChanged(int row);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

 private:
  std::vector<std::string> headings_;
  CellText cell_;
  CellTest isWords_;
  int rows_ = 0;
};

}  // namespace hylden
