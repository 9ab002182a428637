#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QTableView>

#include "run/qt/RowTable.h"
#include "widgets/AlignedNumbers.h"
#include "widgets/TableCopy.h"
#include "widgets/TableFollower.h"

namespace hylden {
namespace {

TEST(RunTable, ViewNeverLooksAtAllRowsOfALongRun) {
  constexpr int kRows = 100000;
  long asked = 0;
  RowTable rows({6, "Freq MHz"}, [&](std::size_t row, std::size_t) {
    ++asked;
    return std::to_string(row);
  });
  QTableView view;
  view.setModel(&rows);
  auto* const follower = new TableFollower(view);
  view.resize(600, 300);
  view.show();
  for (int row = 1; row <= kRows; ++row) {
    rows.RowChanged(row);
    rows.RowChanged(row);  // its figures
    if (row % 1000 != 0) continue;
    follower->Follow();
    QCoreApplication::processEvents();
  }
  EXPECT_EQ(rows.rowCount(), kRows);
  EXPECT_GT(asked, 0);
  EXPECT_LT(asked, 100 * 60 * 6 * 2) << "more than what can be seen, at each of a hundred looks";
}

TEST(RunTable, RowsThatAreSelectedStaySelectedWhileTheRunGoesOn) {
  RowTable rows({"Freq MHz"}, [](std::size_t row, std::size_t) { return std::to_string(row); });
  QTableView view;
  view.setSelectionBehavior(QTableView::SelectRows);
  view.setModel(&rows);
  auto* const follower = new TableFollower(view);
  rows.RowChanged(5);
  for (const int selected : {1, 3}) {
    view.clearSelection();
    view.selectionModel()->select({rows.index(1, 0), rows.index(selected, 0)}, QItemSelectionModel::Select);
    follower->Follow();
    EXPECT_EQ(view.selectionModel()->selectedRows().size(), selected);
    EXPECT_EQ(view.selectionModel()->isSelected(rows.index(4, 0)), selected == 1);
  }
}

TEST(RunTable, ModelKeepsItsPromisesToViews) {
  const auto cell = [](std::size_t, std::size_t) { return std::string("<b>fails</b>"); };
  RowTable rows({"Freq MHz", "SG,dBm"}, cell, [](std::size_t row, std::size_t) { return row == 1; });
  const QAbstractItemModelTester tester(&rows, QAbstractItemModelTester::FailureReportingMode::Fatal);
  for (const int row : {1, 2, 2}) rows.RowChanged(row);
  EXPECT_EQ(rows.rowCount(), 2);
  EXPECT_EQ(rows.index(1, 1).data().toString(), "<b>fails</b>");
  EXPECT_EQ(rows.index(1, 1).data(Qt::ToolTipRole).toString(), "&lt;b&gt;fails&lt;/b&gt;");
  const auto stands = [&](int row) { return rows.index(row, 1).data(Qt::TextAlignmentRole).value<Qt::Alignment>(); };
  EXPECT_TRUE(stands(0).testFlag(Qt::AlignRight) && stands(1).testFlag(Qt::AlignLeft));
  rows.RowChanged(0);
  EXPECT_EQ(rows.rowCount(), 0);
}

TEST(RunTable, CopiesWhatIsSelectedBelowItsHeadingsAsASpreadsheetTakesIt) {
  RowTable rows({"Freq MHz", "Comment", "SG,dBm"}, [](std::size_t row, std::size_t column) {
    return column == 1 ? std::string("a\tb") : std::to_string(row * 10 + column);
  });
  rows.RowChanged(3);
  QTableView view;
  view.setModel(&rows);
  new TableCopy(view);
  view.horizontalHeader()->moveSection(2, 0);
  const auto copied = [&](int row, int lastRow, int column, int lastColumn) {
    view.clearSelection();
    if (row <= lastRow)
      view.selectionModel()->select({rows.index(row, column), rows.index(lastRow, lastColumn)},
                                    QItemSelectionModel::Select);
    view.findChild<QAction*>("mnuTableCopy")->trigger();
    return QApplication::clipboard()->text();
  };
  EXPECT_EQ(copied(1, 2, 0, 1), "Freq MHz\tComment\n10\ta b\n20\ta b\n");
  EXPECT_EQ(copied(1, 0, 0, 0), "SG,dBm\tFreq MHz\tComment\n2\t0\ta b\n12\t10\ta b\n22\t20\ta b\n");
  view.hideColumn(1);
  EXPECT_EQ(copied(2, 2, 0, 2), "SG,dBm\tFreq MHz\n22\t20\n");
}

TEST(RunTable, NumbersOfAColumnHaveTheirPointsBelowEachOther) {
  const QString digit = QStringLiteral(u"\u2007"), mark = QStringLiteral(u" \u2002\u2002");
  const std::tuple<const char*, NumberColumn, QString> rows[] = {
      {"80.0", {3}, digit + digit}, {"0.165", {3}, {}},    {"-9.9 **", {1, true}, {}},
      {"-10.0", {1, true}, mark},   {"na", {2, true}, {}}, {"", {2, true}, {}}};
  for (const auto& [text, column, behind] : rows)
    EXPECT_EQ(Aligned(QString::fromLatin1(text), column), QString::fromLatin1(text) + behind);
  EXPECT_EQ(Aligned(QStringLiteral("34.2 +2"), {2, true}), QStringLiteral("34.2") + digit + QStringLiteral(" +2"));
}

}  // namespace
}  // namespace hylden
