#pragma once

#include <QAbstractTableModel>

namespace hylden {

class RunData;

/// The run data as a table, a row for each step and threshold. A row that is added
/// or changed costs the same however many there are.
class RunDataModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// The data must outlive the model.
  explicit RunDataModel(const RunData& data, QObject* parent = nullptr) : QAbstractTableModel(parent), data_(data) {}

  /// This row of the data, counted from 1, was added or changed. 0: they were set up afresh.
  void RowChanged(int row);
  /// Whether the row of the table, counted from 0, is a threshold.
  bool IsThreshold(int row) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  QVariant Alignment(const QModelIndex& index) const;

  const RunData& data_;
  int rows_ = 0;  ///< as the views have been told
};

}  // namespace hylden
