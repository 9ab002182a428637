#include "calibration/qt/CalibrationTable.h"

#include <utility>

#include "platform/qt/QtText.h"

namespace hylden {

CalibrationTable::CalibrationTable(std::vector<std::string> headings, CellText cell, QObject* parent)
    : QAbstractTableModel(parent), headings_(std::move(headings)), cell_(std::move(cell)) {}

void CalibrationTable::RowChanged(int row) {
  if (row == 0) {
    beginResetModel();
    rows_ = 0;
    endResetModel();
  } else if (row > rows_) {
    beginInsertRows({}, rows_, row - 1);
    rows_ = row;
    endInsertRows();
  } else {
    emit dataChanged(index(row - 1, 0), index(row - 1, columnCount() - 1));
  }
}

int CalibrationTable::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows_;
}

int CalibrationTable::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(headings_.size());
}

QVariant CalibrationTable::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rows_) return {};
  if (role == Qt::TextAlignmentRole) return QVariant::fromValue<Qt::Alignment>(Qt::AlignRight | Qt::AlignVCenter);
  if (role != Qt::DisplayRole) return {};
  return ToQt(cell_(static_cast<std::size_t>(index.row()), static_cast<std::size_t>(index.column())));
}

QVariant CalibrationTable::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section >= columnCount()) return {};
  return ToQt(headings_[static_cast<std::size_t>(section)]);
}

}  // namespace hylden
