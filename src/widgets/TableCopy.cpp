#include "widgets/TableCopy.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QTableView>
#include <algorithm>
#include <functional>
#include <vector>

namespace hylden {

namespace {

/// The cells of a line, in the order in which the operator sees the columns; a text that holds a tab or a line's end
/// would come apart.
QString Line(const std::vector<int>& columns, const std::function<QVariant(int column)>& cell) {
  QStringList texts;
  texts.reserve(static_cast<qsizetype>(columns.size()));
  for (const int column : columns) texts << cell(column).toString().simplified();
  return texts.join(QLatin1Char('\t')) + QLatin1Char('\n');
}

}  // namespace

TableCopy::TableCopy(QTableView& table) : QObject(&table), table_(table) {
  auto* const copy = new QAction(tr("&Copy"), &table);
  copy->setObjectName(QStringLiteral("mnuTableCopy"));
  copy->setShortcut(QKeySequence::Copy);
  copy->setShortcutContext(Qt::WidgetShortcut);
  connect(copy, &QAction::triggered, this, [this] { QGuiApplication::clipboard()->setText(Text()); });
  table.addAction(copy);
  table.setContextMenuPolicy(Qt::ActionsContextMenu);
}

QString TableCopy::Text() const {
  const QAbstractItemModel& model = *table_.model();
  const QItemSelection selection = table_.selectionModel()->selection();
  const bool all = selection.isEmpty() || table_.selectionMode() == QAbstractItemView::SingleSelection;
  // Ranges, not cells: a long run has a million of those.
  std::vector<bool> rows(static_cast<std::size_t>(model.rowCount()), all),
      columns(static_cast<std::size_t>(model.columnCount()), all);
  for (const QItemSelectionRange& range : selection) {
    std::fill(rows.begin() + range.top(), rows.begin() + range.bottom() + 1, true);
    std::fill(columns.begin() + range.left(), columns.begin() + range.right() + 1, true);
  }
  std::vector<int> shown;
  shown.reserve(columns.size());
  const QHeaderView& header = *table_.horizontalHeader();
  for (int place = 0; place < header.count(); ++place)
    if (const int column = header.logicalIndex(place);
        columns[static_cast<std::size_t>(column)] && !header.isSectionHidden(column))
      shown.push_back(column);
  QString text = Line(shown, [&](int column) { return model.headerData(column, Qt::Horizontal); });
  for (int row = 0; row < model.rowCount(); ++row)
    if (rows[static_cast<std::size_t>(row)])
      text += Line(shown, [&](int column) { return model.index(row, column).data(); });
  return text;
}

}  // namespace hylden
