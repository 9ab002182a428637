#pragma once

#include <vector>

#include "run/qt/RowTable.h"
#include "testrun/RunFilter.h"

namespace hylden {

/// The rows of a saved run that a filter lets through, each named by its number among all; steps that were not held
/// stand out.
class SavedRunTable : public RowTable {
 public:
  explicit SavedRunTable(QObject* parent = nullptr);

  /// @param rows  have to outlive the table, or its next Show
  void Show(const std::vector<RunEntry>& rows, RowFilter filter);
  /// The row of the run data, counted from 1, that the table has there, counted from 0; 0: none.
  int RowAt(int shown) const;
  /// Where a row of the run data is shown; -1: the filter has left it out.
  int PlaceOf(int row) const;
  bool IsThreshold(int shown) const;

  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

 private:
  /// @pre it is shown
  const RunEntry& EntryAt(std::size_t shown) const { return (*rows_)[static_cast<std::size_t>(shown_[shown] - 1)]; }
  std::string Cell(std::size_t shown, std::size_t column) const;

  const std::vector<RunEntry>* rows_ = nullptr;
  std::vector<int> shown_;
};

}  // namespace hylden
