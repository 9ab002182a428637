#pragma once

#include <QStyledItemDelegate>
#include <vector>

class QTableView;

namespace hylden {

/// How the numbers of a column are written.
struct NumberColumn {
  int Decimals = 0;     ///< the most that a number has
  bool Marked = false;  ///< some carry a mark of two characters, behind a blank
};

/// A number, filled up with blanks as wide as what it has less than the widest of its column. Anything else is returned
/// unchanged.
QString Aligned(QString text, NumberColumn column);

/// Shows the right-aligned numbers of a table with their decimal points below each other. The data stay as they are.
class AlignedNumbers : public QStyledItemDelegate {
 public:
  AlignedNumbers(QTableView& table, std::vector<NumberColumn> columns);

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

 private:
  std::vector<NumberColumn> columns_;
};

}  // namespace hylden
