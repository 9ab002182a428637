#pragma once

#include <QObject>
#include <QTimer>

class QTableView;

namespace hylden {

/// Keeps the last row of a growing table in view, unless the operator has scrolled away from it, and makes it the
/// current one, unless the operator has selected several. The table is moved at a pace of its own, however fast the
/// rows come; its rows are of one height.
class TableFollower : public QObject {
  Q_OBJECT

 public:
  explicit TableFollower(QTableView& table);

  /// A row was added or changed.
  void RowChanged();
  /// Goes to the last row at once.
  void Follow();
  /// Goes to this row, counted from 0, and stays there until it is released, whatever is added.
  void Hold(int row);
  /// The last row is the one to be seen again.
  void Release();
  /// The table is new: the last row is wanted again.
  void StartAfresh() {
    held_ = false;
    following_ = true;
  }

 private:
  QTableView& table_;
  QTimer timer_{this};
  bool following_ = true;
  bool held_ = false;
};

}  // namespace hylden
