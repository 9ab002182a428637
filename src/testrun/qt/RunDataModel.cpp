#include "testrun/qt/RunDataModel.h"

#include "platform/qt/QtText.h"
#include "testrun/RunData.h"

namespace hylden {

namespace {

constexpr int kColumns = static_cast<int>(std::tuple_size_v<RunRow>);

}  // namespace

void RunDataModel::RowChanged(int row) {
  const int held = static_cast<int>(data_.Entries().size());
  if (row == 0 || held < rows_) {
    beginResetModel();
    rows_ = held;
    endResetModel();
    return;
  }
  if (held > rows_) {
    beginInsertRows({}, rows_, held - 1);
    rows_ = held;
    endInsertRows();
  } else if (row <= rows_) {
    emit dataChanged(index(row - 1, 0), index(row - 1, kColumns - 1));
  }
}

bool RunDataModel::IsThreshold(int row) const {
  return hylden::IsThreshold(data_.Entries()[static_cast<std::size_t>(row)]);
}

int RunDataModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows_;
}

int RunDataModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

QVariant RunDataModel::data(const QModelIndex& index, int role) const {
  const auto row = static_cast<std::size_t>(index.row());
  if (!index.isValid() || row >= data_.Entries().size()) return {};
  if (role == Qt::TextAlignmentRole) return Alignment(index);
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  const std::string cell = CellsOf(data_.Entries()[row])[static_cast<std::size_t>(index.column())];
  if (role == Qt::DisplayRole) return ToQt(cell);
  return cell.empty() ? QVariant() : ToQt(cell).toHtmlEscaped();
}

QVariant RunDataModel::Alignment(const QModelIndex& index) const {
  const bool words = index.column() > 0 && IsThreshold(index.row());
  return QVariant::fromValue<Qt::Alignment>(Qt::AlignVCenter | (words ? Qt::AlignLeft : Qt::AlignRight));
}

QVariant RunDataModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section >= kColumns) return {};
  return QString::fromLatin1(kRunHeadings[static_cast<std::size_t>(section)]);
}

}  // namespace hylden
