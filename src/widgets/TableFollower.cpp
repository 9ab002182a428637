#include "widgets/TableFollower.h"

#include <QFontMetrics>
#include <QHeaderView>
#include <QScrollBar>
#include <QTableView>

namespace hylden {

namespace {
constexpr int kFollowMs = 50;
}

TableFollower::TableFollower(QTableView& table) : QObject(&table), table_(table) {
  // Every row is of one height, and no column asks its rows how wide they are.
  table.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  table.verticalHeader()->setDefaultSectionSize(QFontMetrics(table.font()).height() + 6);
  table.horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  table.horizontalHeader()->setHighlightSections(false);
  timer_.setObjectName(QStringLiteral("tmrFollow"));
  timer_.setSingleShot(true);
  timer_.setInterval(kFollowMs);
  connect(&timer_, &QTimer::timeout, this, &TableFollower::Follow);
  const QScrollBar* const bar = table.verticalScrollBar();
  connect(bar, &QScrollBar::valueChanged, this, [this, bar](int value) { following_ = value == bar->maximum(); });
  connect(bar, &QScrollBar::rangeChanged, this, &TableFollower::RowChanged);
}

void TableFollower::RowChanged() {
  if (!timer_.isActive()) timer_.start();
}

void TableFollower::Follow() {
  const QAbstractItemModel* const rows = table_.model();
  if (held_ || !following_ || !rows || rows->rowCount() == 0) return;
  const QItemSelection& chosen = table_.selectionModel()->selection();
  const bool several = chosen.size() > 1 || (chosen.size() == 1 && chosen.first().height() > 1);
  if (!several) table_.setCurrentIndex(rows->index(rows->rowCount() - 1, 0));
  table_.scrollToBottom();
}

void TableFollower::Hold(int row) {
  held_ = true;
  if (table_.model()) table_.setCurrentIndex(table_.model()->index(row, 0));
}

void TableFollower::Release() {
  StartAfresh();
  Follow();
}

}  // namespace hylden
