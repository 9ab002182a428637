#include "editors/qt/EditGrid.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>

#include "support/FakeDialogs.h"

namespace hylden {
namespace {

using Rows = std::vector<GridRow>;

class EditGridTest : public testing::Test {
 protected:
  EditGridTest() {
    view.setParent(&window);
    box.setParent(&window);
    window.resize(400, 300);
    view.resize(400, 300);
    grid.SetupFlexGrid(view, box, header, {"Freq", "Factor"}, "Item#");
    tester = std::make_unique<QAbstractItemModelTester>(view.model());
    window.show();
    QApplication::setActiveWindow(&window);
    view.setFocus();
  }
  /// Keys as they are pressed, wherever the focus is.
  static void Keys(const char* text) {
    for (const char* c = text; *c; ++c) QTest::keyClick(QApplication::focusWidget(), *c);
  }
  static void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
  }
  void Click(GridPlace place, Qt::MouseButton button = Qt::LeftButton) {
    QTest::mouseClick(view.viewport(), button, {},
                      view.visualRect(view.model()->index(place.Row - 1, place.Col - 1)).center());
  }
  Rows All() const {
    Rows rows;
    for (int row = 1; row <= grid.Cells().Rows(); ++row) rows.push_back(grid.Cells().Row(row));
    return rows;
  }
  QColor Painted(GridPlace place) {
    const QPixmap shown = view.grab();
    const QRect cell = view.visualRect(view.model()->index(place.Row - 1, place.Col - 1));
    const QPoint corner = view.viewport()->mapTo(&view, cell.bottomRight() - QPoint(4, 4));
    return shown.toImage().pixelColor(corner * shown.devicePixelRatio());
  }

  FakeDialogs dialogs;
  QWidget window;
  QTableView view;
  QLineEdit box;
  QLabel header;
  EditGrid grid{dialogs};
  std::unique_ptr<QAbstractItemModelTester> tester;
};

TEST_F(EditGridTest, BeginsWithAnEmptyRowWhoseFirstCellIsNamedAndYellow) {
  EXPECT_EQ(All(), (Rows{{"", ""}}));
  EXPECT_EQ(view.model()->headerData(1, Qt::Horizontal).toString(), "Factor");
  EXPECT_EQ(view.model()->headerData(0, Qt::Vertical).toInt(), 1);
  EXPECT_EQ(view.findChild<QLabel*>("lblRowHeading")->text(), "Item#");
  EXPECT_GE(view.verticalHeader()->width(), view.logicalDpiX() * 600 / 1440);
  EXPECT_EQ(header.text(), "Item# 1 : Freq");
  EXPECT_TRUE(box.isHidden());
  EXPECT_EQ(Painted({1, 1}), QColor(255, 255, 192));
  EXPECT_EQ(Painted({1, 2}), view.palette().color(QPalette::Base));
}

TEST_F(EditGridTest, TypedKeysAreAddedToTheCellAndEnterEndsThem) {
  grid.SetRows({{"1", ""}, {"2", ""}});
  QSignalSpy edited(&grid, &EditGrid::Edited);
  Keys("0.5");
  EXPECT_EQ(grid.Cells().Text({1, 1}), "10.5") << "also before Enter";
  EXPECT_EQ(edited.count(), 3);
  EXPECT_TRUE(box.isVisible());
  Key(Qt::Key_Backspace);
  Key(Qt::Key_Return);
  EXPECT_EQ(grid.Cells().Text({1, 1}), "10.");
  EXPECT_TRUE(box.isHidden());
  EXPECT_EQ(QApplication::focusWidget(), &view);
  Key(Qt::Key_Backspace);
  Key(Qt::Key_Enter);
  EXPECT_EQ(grid.Cells().Text({1, 1}), "10");
}

TEST_F(EditGridTest, EscapePutsTheTextBackThatTheCellHad) {
  grid.SetRows({{"12", ""}});
  Key(Qt::Key_F2);
  Key(Qt::Key_Home);
  Keys("9");
  Key(Qt::Key_Escape);
  EXPECT_EQ(box.text(), "12");
  EXPECT_EQ(box.cursorPosition(), 2);
  EXPECT_TRUE(box.isVisible());
  Key(Qt::Key_Return);
  EXPECT_EQ(grid.Cells().Text({1, 1}), "12");
  EXPECT_FALSE(grid.Cells().CanUndo());
}

TEST_F(EditGridTest, ArrowsLeaveTheTextAtItsEndsOnly) {
  grid.SetRows({{"12", "3"}, {"4", "5"}});
  Key(Qt::Key_F2);
  Key(Qt::Key_Left);
  EXPECT_EQ(box.cursorPosition(), 1) << "within the text";
  Key(Qt::Key_Right);
  Key(Qt::Key_Right);
  EXPECT_EQ(grid.Current(), (GridPlace{1, 2}));
  EXPECT_TRUE(box.isHidden());
  Key(Qt::Key_Right);
  EXPECT_EQ(grid.Current(), (GridPlace{2, 1}));
  Key(Qt::Key_F2);
  Key(Qt::Key_Home);
  Key(Qt::Key_Left);
  EXPECT_EQ(grid.Current(), (GridPlace{1, 2}));
  Keys("7");
  Key(Qt::Key_Down);
  EXPECT_EQ(grid.Current(), (GridPlace{2, 2}));
  EXPECT_EQ(grid.Cells().Text({1, 2}), "37");
  Key(Qt::Key_Down);
  Key(Qt::Key_Right);
  EXPECT_EQ(grid.Current(), (GridPlace{2, 2})) << "the last cell";
}

TEST_F(EditGridTest, MouseMakesACellCurrentAndEndsTheEdit) {
  grid.SetRows({{"1", "2"}, {"3", "4"}});
  Keys("0");
  Click({2, 1});
  EXPECT_EQ(grid.Current(), (GridPlace{2, 1}));
  EXPECT_EQ(grid.Cells().Text({1, 1}), "10");
  EXPECT_TRUE(box.isHidden());
  Click({1, 2}, Qt::RightButton);
  EXPECT_EQ(grid.Current(), (GridPlace{1, 2}));
  EXPECT_EQ(header.text(), "Item# 1 : Factor");
}

TEST_F(EditGridTest, RowsAndColumnsAreAddedInsertedAndRemoved) {
  grid.SetRows({{"1", ""}, {"2", ""}, {"3", ""}});
  grid.MakeCurrent({2, 1});
  grid.InsRow();
  EXPECT_EQ(All(), (Rows{{"1", ""}, {"", ""}, {"2", ""}, {"3", ""}}));
  EXPECT_EQ(grid.Current(), (GridPlace{2, 1}));
  grid.ExtractRow();
  EXPECT_EQ(grid.Current(), (GridPlace{1, 1})) << "the row above";
  EXPECT_TRUE(dialogs.messages.empty()) << "nothing was in it";
  grid.AddRow();
  EXPECT_EQ(grid.Current(), (GridPlace{4, 1}));
  grid.DelRow();
  EXPECT_EQ(All(), (Rows{{"1", ""}, {"2", ""}, {"3", ""}}));
  grid.AddCol();
  EXPECT_EQ(view.model()->headerData(2, Qt::Horizontal).toString(), "Col 3");
  grid.MakeCurrent({1, 1});
  grid.InsCol();
  EXPECT_EQ(All().front(), (GridRow{"", "1", "", ""}));
  grid.ExtractCol();
  grid.DelCol();
  EXPECT_EQ(All(), (Rows{{"1", ""}, {"2", ""}, {"3", ""}}));
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(EditGridTest, DataAreRemovedOnYesOnly) {
  grid.SetRows({{"1", ""}, {"10", ""}});
  const auto asked = [&](const std::string& title, const std::string& text) {
    EXPECT_EQ(dialogs.messages.back().title, title);
    EXPECT_EQ(dialogs.LastText(), text);
    EXPECT_EQ(dialogs.messages.back().buttons, MessageButtons::YesNo);
  };
  dialogs.Answer(MessageAnswer::No);
  grid.DelRow();
  asked("Delete Row!", "There is data in Row 2 ! Delete anyway?");
  EXPECT_EQ(grid.Cells().Rows(), 2);
  dialogs.Answer(MessageAnswer::No);
  grid.MakeCurrent({1, 1});
  grid.ExtractCol();
  asked("Delete Column!", "There is data in Col 1 ! Delete anyway?");
  EXPECT_EQ(grid.Cells().Columns(), 2);
  view.selectAll();
  grid.ExtractRow();
  asked("Delete Rows!", "There is data in Rows 1 to 2 ! Delete anyway?");
  EXPECT_EQ(All(), (Rows{{"", ""}}));
  dialogs.Clear();
  grid.DelRow();
  EXPECT_EQ(grid.Cells().Rows(), 1);
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(EditGridTest, BlocksGoToOtherProgramsAndBack) {
  grid.SetRows({{"1", "2"}, {"3", "4"}});
  view.selectAll();
  grid.Cut();
  EXPECT_EQ(QApplication::clipboard()->text(), "1\t2\n3\t4\n");
  EXPECT_EQ(All(), (Rows{{"", ""}, {"", ""}}));
  grid.MakeCurrent({2, 1});
  Keys("9");
  Key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(All(), (Rows{{"", ""}, {"1", "2"}, {"3", "4"}})) << "a table pasted into the text box";
  grid.Undo();
  EXPECT_EQ(All(), (Rows{{"", ""}, {"9", ""}}));
  grid.Undo();
  grid.Undo();
  EXPECT_EQ(All(), (Rows{{"1", "2"}, {"3", "4"}}));
  grid.Redo();
  EXPECT_EQ(All(), (Rows{{"", ""}, {"", ""}}));
  QApplication::clipboard()->setText("1\t2\t3\n");
  grid.Paste();
  EXPECT_EQ(dialogs.Texts(), std::vector<std::string>{"What lay beyond the last column was left out."});
}

TEST_F(EditGridTest, ClipboardWithoutATableCostsNothing) {
  grid.SetRows({{"1", "2"}});
  auto* const picture = new QMimeData;
  picture->setImageData(QImage(8, 8, QImage::Format_RGB32));
  QApplication::clipboard()->setMimeData(picture);
  grid.Paste();
  EXPECT_EQ(dialogs.LastText(), "There is no text to paste");
  QApplication::clipboard()->setText(QString("1\t2\n").repeated(500'000));
  grid.Paste();
  EXPECT_EQ(dialogs.LastText(), "Too much to paste: at most 200000 rows at once");
  EXPECT_EQ(All(), (Rows{{"1", "2"}}));
  EXPECT_FALSE(grid.Cells().CanUndo());
}

TEST_F(EditGridTest, RowTypedAndTakenBackBesideTheSpareRowLeavesTheCurrentCellWithin) {
  grid.KeepSpareRow();
  Keys("1");
  EXPECT_EQ(grid.Cells().Rows(), 2);
  Key(Qt::Key_Backspace);
  Key(Qt::Key_Down);
  EXPECT_EQ(grid.Cells().Rows(), 1);
  EXPECT_EQ(grid.Current(), (GridPlace{1, 1}));
  Keys("1");
  Key(Qt::Key_Backspace);
  grid.DelRow();
  EXPECT_EQ(All(), (Rows{{"", ""}}));
}

TEST_F(EditGridTest, FaultIsMarkedAndTold) {
  grid.SetRows({{"1", "x"}, {"2", "3"}});
  grid.SetFaults([](GridPlace place) { return place == GridPlace{1, 2} ? "is no number" : ""; });
  EXPECT_NE(Painted({1, 2}), Painted({2, 2}));
  EXPECT_EQ(view.model()->index(0, 1).data(Qt::ToolTipRole).toString(), "is no number");
}

TEST_F(EditGridTest, TabGoesFromCellToCellAndOutAtTheEnd) {
  QLineEdit next(&window);
  next.show();
  QWidget::setTabOrder(&view, &next);
  Keys("1");
  Key(Qt::Key_Tab);
  EXPECT_EQ(grid.Current(), (GridPlace{1, 2}));
  Keys("2");
  Key(Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), &next);
  EXPECT_EQ(All(), (Rows{{"1", "2"}}));
}

}  // namespace
}  // namespace hylden
