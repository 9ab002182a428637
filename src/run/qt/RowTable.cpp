#include "run/qt/RowTable.h"

#include <utility>

#include "platform/qt/QtText.h"

namespace hylden {

RowTable::RowTable(std::vector<std::string> headings, CellText cell, CellTest isWords, QObject* parent)
    : QAbstractTableModel(parent),
      headings_(std::move(headings)),
      cell_(std::move(cell)),
      isWords_(std::move(isWords)) {}

void RowTable::RowChanged(int row) {
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

int RowTable::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows_;
}

int RowTable::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(headings_.size());
}

QVariant RowTable::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rows_) return {};
  const auto row = static_cast<std::size_t>(index.row()), column = static_cast<std::size_t>(index.column());
  switch (role) {
    case Qt::TextAlignmentRole:
      return QVariant::fromValue<Qt::Alignment>(Qt::AlignVCenter |
                                                (isWords_ && isWords_(row, column) ? Qt::AlignLeft : Qt::AlignRight));
    case Qt::DisplayRole:
      return ToQt(cell_(row, column));
    case Qt::ToolTipRole:
      return isWords_ ? ToQt(cell_(row, column)).toHtmlEscaped() : QVariant();
    default:
      return {};
  }
}

QVariant RowTable::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section >= columnCount()) return {};
  return ToQt(headings_[static_cast<std::size_t>(section)]);
}

}  // namespace hylden
