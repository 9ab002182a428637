#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QScrollBar>
#include <QTableView>
#include <QTest>

#include "desktop/RunForms.h"
#include "testrun/RunData.h"
#include "testrun/qt/RunDataModel.h"
#include "widgets/AlignedNumbers.h"
#include "widgets/TableFollower.h"

namespace hylden {
namespace {

/// Counts what the view asks for.
class CountingModel : public RunDataModel {
 public:
  using RunDataModel::RunDataModel;
  QVariant data(const QModelIndex& index, int role) const override {
    ++asked;
    return RunDataModel::data(index, role);
  }
  mutable long asked = 0;
};

TEST(RunTable, ViewNeverLooksAtAllRowsOfALongRun) {
  constexpr int kRows = 100000;
  RunData data;
  CountingModel model(data);
  QTableView view;
  view.setModel(&model);
  auto* const follower = new TableFollower(view);
  view.resize(600, 300);
  view.show();
  for (int i = 0; i < kRows; ++i) {
    const int row = data.AddStep(0.15 + i);
    model.RowChanged(row);
    data.FillStep(row, {});
    model.RowChanged(row);
    if (i % 1000 != 0) continue;
    follower->Follow();
    QCoreApplication::processEvents();
  }
  EXPECT_EQ(model.rowCount(), kRows);
  EXPECT_GT(model.asked, 0);
  EXPECT_LT(model.asked, 100 * 60 * 6 * 12) << "more than what can be seen, at each of a hundred looks";
}

TEST(RunTable, ModelKeepsItsPromisesToViews) {
  RunData data;
  RunDataModel model(data);
  const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
  model.RowChanged(data.AddStep(1));
  model.RowChanged(data.AddThreshold(1, 1.5));
  data.SetComment(2, "<b>fails</b>");
  model.RowChanged(2);
  EXPECT_EQ(model.rowCount(), 2);
  EXPECT_EQ(model.index(1, 2).data().toString(), "<b>fails</b>");
  EXPECT_EQ(model.index(1, 2).data(Qt::ToolTipRole).toString(), "&lt;b&gt;fails&lt;/b&gt;");
  EXPECT_TRUE(model.IsThreshold(1));
  data.Clear();
  model.RowChanged(0);
  EXPECT_EQ(model.rowCount(), 0);
}

TEST(RunTable, NumbersOfAColumnHaveTheirPointsBelowEachOther) {
  const QString digit = QStringLiteral(u"\u2007"), mark = QStringLiteral(u" \u2002\u2002");
  const struct {
    const char* text;
    NumberColumn column;
    QString behind;
  } rows[] = {{"80.0", {3}, digit + digit}, {"0.165", {3}, {}},    {"-9.9 **", {1, true}, {}},
              {"-10.0", {1, true}, mark},   {"na", {2, true}, {}}, {"", {2, true}, {}}};
  for (const auto& row : rows)
    EXPECT_EQ(Aligned(QString::fromLatin1(row.text), row.column), QString::fromLatin1(row.text) + row.behind);
  EXPECT_EQ(Aligned(QStringLiteral("34.2 +2"), {2, true}), QStringLiteral("34.2") + digit + QStringLiteral(" +2"));
}

TEST_F(RunForms, TableFollowsTheRunUnlessTheOperatorLooksBack) {
  Open("substitution-am.tst");
  auto& table = Find<QTableView>(*form, "flxTestData");
  form->findChild<QTimer*>("tmrFollow")->setInterval(0);
  const auto settle = [] {
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
  };
  const auto lastIsVisible = [&] {
    return table.viewport()->rect().contains(table.visualRect(table.model()->index(table.model()->rowCount() - 1, 0)));
  };
  m.When(AtStep(20), [&] {
    settle();
    EXPECT_TRUE(lastIsVisible());
    EXPECT_GT(table.verticalScrollBar()->value(), 0);
    table.verticalScrollBar()->setValue(0);
  });
  m.When(AtStep(24), [&] {
    settle();
    EXPECT_EQ(table.verticalScrollBar()->value(), 0);
    table.scrollToBottom();
  });
  m.When(AtStep(28), [&] {
    settle();
    EXPECT_TRUE(lastIsVisible());
    Press(*form, "cmdHalt");
  });
  Press(*form, "cmdRun");
  EXPECT_EQ(m.ActionsLeft(), 0u);
}

}  // namespace
}  // namespace hylden
