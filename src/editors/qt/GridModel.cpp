#include "editors/qt/GridModel.h"

#include <QTableView>
#include <algorithm>

#include "platform/qt/QtText.h"
#include "widgets/ThemeColors.h"

namespace hylden {

namespace {

constexpr QColor kFaultOnCurrentCell(0xb0, 0, 0);
constexpr int kFaultRole = Qt::UserRole;

/// The ground with a tint of the colour.
QColor Tinted(const QColor& ground, const QColor& colour) {
  const auto mix = [](int a, int b) { return (3 * a + b) / 4; };
  return {mix(ground.red(), colour.red()), mix(ground.green(), colour.green()), mix(ground.blue(), colour.blue())};
}

}  // namespace

void GridModel::Changing(const GridChange& change) {
  const int first = change.First - 1;
  const bool rows = change.Lines == GridChange::Of::Rows, more = change.Inserted > change.Removed;
  const int from = first + std::min(change.Inserted, change.Removed);
  const int to = first + std::max(change.Inserted, change.Removed) - 1;
  if (to < from) return;
  if (rows && more) beginInsertRows({}, from, to);
  if (rows && !more) beginRemoveRows({}, from, to);
  if (!rows && more) beginInsertColumns({}, from, to);
  if (!rows && !more) beginRemoveColumns({}, from, to);
}

void GridModel::Changed(const GridChange& change) {
  const bool rows = change.Lines == GridChange::Of::Rows;
  if (rows && change.Inserted > change.Removed) endInsertRows();
  if (rows && change.Inserted < change.Removed) endRemoveRows();
  if (!rows && change.Inserted > change.Removed) endInsertColumns();
  if (!rows && change.Inserted < change.Removed) endRemoveColumns();
  const int first = change.First - 1, replaced = std::min(change.Inserted, change.Removed);
  if (rows && replaced > 0) emit dataChanged(index(first, 0), index(first + replaced - 1, columnCount() - 1));
  if (!rows) emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
}

int GridModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : cells_.Rows();
}

int GridModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : cells_.Columns();
}

std::string GridModel::FaultAt(const QModelIndex& index) const {
  return Fault ? Fault(PlaceOf(index)) : std::string();
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount() || index.column() >= columnCount()) return {};
  switch (role) {
    case Qt::DisplayRole:
      return ToQt(cells_.Text(PlaceOf(index)));
    case Qt::ToolTipRole:
    case Qt::AccessibleDescriptionRole:
      return ToQt(FaultAt(index));
    case kFaultRole:
      return !FaultAt(index).empty();
    default:
      return {};
  }
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) return section + 1;
  return section < columnCount() ? ToQt(cells_.Heading(section + 1)) : QVariant();
}

GridPainter::GridPainter(QTableView& grid) : QStyledItemDelegate(&grid), grid_(grid) {}

void GridPainter::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
  QStyledItemDelegate::initStyleOption(option, index);
  const bool isFault = index.data(kFaultRole).toBool();
  QColor text = isFault ? HighlightRed(option->palette) : QColor();
  if (index == grid_.currentIndex()) {
    // A colour of its own in every theme, with text that can be read on it; also where it is selected.
    option->state &= ~(QStyle::State_Selected | QStyle::State_HasFocus);
    option->backgroundBrush = kCurrentCell;
    text = isFault ? kFaultOnCurrentCell : kOnCurrentCell;
  } else if (isFault) {
    option->backgroundBrush = Tinted(option->palette.color(QPalette::Base), text);
  }
  if (text.isValid()) option->palette.setColor(QPalette::Text, text);
}

}  // namespace hylden
