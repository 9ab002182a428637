#pragma once

#include <QAbstractTableModel>
#include <QColor>
#include <QStyledItemDelegate>
#include <functional>
#include <string>

#include "editors/GridCells.h"

class QTableView;

namespace hylden {

/// The current cell, in every theme, with text that can be read on it.
inline constexpr QColor kCurrentCell(255, 255, 192), kOnCurrentCell(0, 0, 0);

/// The cells of a grid for its view.
class GridModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit GridModel(GridCells& cells) : cells_(cells) {}

  /// What is the matter with a cell.
  std::function<std::string(GridPlace)> Fault;

  /// Around every change of the cells.
  void Changing(const GridChange& change);
  void Changed(const GridChange& change);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

  QModelIndex IndexOf(GridPlace place) const { return index(place.Row - 1, place.Col - 1); }
  static GridPlace PlaceOf(const QModelIndex& index) { return {index.row() + 1, index.column() + 1}; }

 private:
  std::string FaultAt(const QModelIndex& index) const;

  GridCells& cells_;
};

/// Paints the current cell light yellow, and cells that something is the matter with red.
class GridPainter : public QStyledItemDelegate {
  Q_OBJECT

 public:
  explicit GridPainter(QTableView& grid);

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

 private:
  QTableView& grid_;
};

}  // namespace hylden
