#pragma once

#include <QObject>
#include <QString>

class QTableView;

namespace hylden {

/// Copies from a table: Ctrl+C, and "Copy" of its context menu, put the selected rows and columns into the clipboard as
/// a spreadsheet takes them, below their headings; all of the table where none are selected, or only one row can be.
class TableCopy : public QObject {
 public:
  /// Belongs to the table from now on.
  explicit TableCopy(QTableView& table);

  /// What is copied: a line for the headings and for each row, the cells apart by tabs.
  QString Text() const;

 private:
  QTableView& table_;
};

}  // namespace hylden
