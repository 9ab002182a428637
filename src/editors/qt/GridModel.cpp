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
  if (change.Inserted == change.Removed) return;
  const int first = change.First - 1, last = first + std::max(change.Inserted, change.Removed) - 1;
  const bool rows = change.Lines == GridChange::Of::Rows, more = change.Inserted > 0;
  if (rows && more) beginInsertRows({}, first, last);
  if (rows && !more) beginRemoveRows({}, first, last);
  if (!rows && more) beginInsertColumns({}, first, last);
  if (!rows && !more) beginRemoveColumns({}, first, last);
}

void GridModel::Changed(const GridChange& change) {
  const int first = change.First - 1, last = first + change.Inserted - 1;
  const bool rows = change.Lines == GridChange::Of::Rows, more = change.Inserted > 0;
  if (change.Inserted == change.Removed) {
    emit dataChanged(index(first, 0), index(last, columnCount() - 1));
    return;
  }
  if (rows && more) endInsertRows();
  if (rows && !more) endRemoveRows();
  if (!rows && more) endInsertColumns();
  if (!rows && !more) endRemoveColumns();
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
