#pragma once

#include <QAbstractTableModel>
#include <functional>
#include <string>
#include <vector>

namespace hylden {

/// The points of a calibration as a table. A row that is added or changed costs the same however many there are.
class CalibrationTable : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// The text of a cell; row and column counted from 0.
  using CellText = std::function<std::string(std::size_t row, std::size_t column)>;
  CalibrationTable(std::vector<std::string> headings, CellText cell, QObject* parent = nullptr);

  /// This row (counted from 1) is there or has changed; it may be one beyond the last. 0: there are none any more.
  void RowChanged(int row);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

 private:
  std::vector<std::string> headings_;
  CellText cell_;
  int rows_ = 0;
};

}  // namespace hylden
