#include "widgets/AlignedNumbers.h"

#include <QTableView>
#include <algorithm>
#include <utility>

namespace hylden {

namespace {

constexpr QChar kFigureSpace(0x2007);                // as wide as a digit
constexpr QStringView kMarkSpace(u" \u2002\u2002");  // about as wide as " **"

}  // namespace

QString Aligned(QString text, NumberColumn column) {
  const qsizetype blank = text.indexOf(QLatin1Char(' '));
  const qsizetype end = blank < 0 ? text.size() : blank;
  const qsizetype point = text.indexOf(QLatin1Char('.'));
  if (point < 0 || point > end) return text;
  const qsizetype missing = column.Decimals - (end - point - 1);
  text.insert(end, QString(std::max(missing, qsizetype{0}), kFigureSpace));
  if (column.Marked && blank < 0) text += kMarkSpace;
  return text;
}

AlignedNumbers::AlignedNumbers(QTableView& table, std::vector<NumberColumn> columns)
    : QStyledItemDelegate(&table), columns_(std::move(columns)) {
  table.setItemDelegate(this);
}

void AlignedNumbers::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
  QStyledItemDelegate::initStyleOption(option, index);
  const auto column = static_cast<std::size_t>(index.column());
  if (column < columns_.size() && option->displayAlignment.testFlag(Qt::AlignRight))
    option->text = Aligned(option->text, columns_[column]);
}

}  // namespace hylden
