#include <gtest/gtest.h>

#include <QMessageBox>
#include <QPushButton>

#include "desktop/FormDriver.h"
#include "platform/qt/QtDialogs.h"

namespace hylden {
namespace {

TEST(FileFilters, OffersEveryKindInBothCases) {
  EXPECT_EQ(QtFilters("Equipment Setup Files (*.eqp)|*.eqp|All Files|*.*"),
            (QStringList{"Equipment Setup Files (*.eqp *.EQP)", "All Files (*)"}));
  EXPECT_EQ(QtFilters("Tables|*.los;*.fac"), QStringList{"Tables (*.los *.LOS *.fac *.FAC)"});
  EXPECT_TRUE(QtFilters("").isEmpty());
  EXPECT_EQ(DefaultSuffix("Equipment Setup Files (*.eqp)|*.eqp|All Files|*.*"), "eqp");
  EXPECT_EQ(DefaultSuffix("All Files|*.*"), "");
  EXPECT_EQ(DefaultSuffix(""), "");
}

struct ClosedBox {
  MessageButtons buttons;
  MessageAnswer answer;
};

class ClosedBoxTest : public testing::TestWithParam<ClosedBox> {};

TEST_P(ClosedBoxTest, EscapeIsHaltAndTheCautiousAnswer) {
  QtDialogs dialogs;
  int halts = 0;
  dialogs.onEscape = [&] { ++halts; };
  OnModalWindow([](QWidget& box) { QTest::keyClick(&box, Qt::Key_Escape); });
  EXPECT_EQ(dialogs.Show({"Go on?", {}, MessageIcon::Question, GetParam().buttons}), GetParam().answer);
  EXPECT_EQ(halts, 1);
}

TEST_P(ClosedBoxTest, EndOfTheProgramAnswersTheSame) {
  QtDialogs dialogs;
  OnModalWindow([&](QWidget&) { dialogs.BeginEnding(); });
  EXPECT_EQ(dialogs.Show({"Go on?", {}, MessageIcon::Question, GetParam().buttons}), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(Buttons, ClosedBoxTest,
                         testing::Values(ClosedBox{MessageButtons::Ok, MessageAnswer::Ok},
                                         ClosedBox{MessageButtons::OkCancel, MessageAnswer::Cancel},
                                         ClosedBox{MessageButtons::YesNo, MessageAnswer::No},
                                         ClosedBox{MessageButtons::YesNoCancel, MessageAnswer::Cancel},
                                         ClosedBox{MessageButtons::RetryCancel, MessageAnswer::Cancel}));

TEST(QtDialogs, ShowsLinesAndTheProgramsOwnTitle) {
  QtDialogs dialogs;
  OnModalWindow([](QWidget& window) {
    auto& box = dynamic_cast<QMessageBox&>(window);
    EXPECT_EQ(box.windowTitle(), "Hylden");
    EXPECT_EQ(box.text(), "one\ntwo\nthree <b>");
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.accessibleDescription(), box.text());
    box.button(QMessageBox::Yes)->click();
  });
  EXPECT_EQ(dialogs.Show({"one\r\ntwo\rthree <b>", {}, MessageIcon::None, MessageButtons::YesNo}), MessageAnswer::Yes);
}

TEST(QtDialogs, EnterHeldDownFromBeforeAnswersNothing) {
  QtDialogs dialogs;
  OnModalWindow([](QWidget& window) {
    auto& box = dynamic_cast<QMessageBox&>(window);
    for (QObject* const target : {static_cast<QObject*>(box.button(QMessageBox::Ok)), static_cast<QObject*>(&box)}) {
      QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"), true);
      QCoreApplication::sendEvent(target, &held);
      EXPECT_TRUE(box.isVisible());
    }
    box.button(QMessageBox::Cancel)->click();
  });
  EXPECT_EQ(dialogs.Show({"Sure?", {}, MessageIcon::None, MessageButtons::OkCancel}), MessageAnswer::Cancel);
  OnModalWindow([](QWidget& box) { QTest::keyClick(&box, Qt::Key_Return); });
  EXPECT_EQ(dialogs.Show({"Sure?", {}, MessageIcon::None, MessageButtons::OkCancel}), MessageAnswer::Ok);
}

TEST(QtDialogs, InputBoxTellsCancelFromEmptyText) {
  QtDialogs dialogs;
  OnModalWindow([](QWidget& box) {
    auto* const edit = box.findChild<QLineEdit*>();
    ASSERT_NE(edit, nullptr);
    edit->clear();
    QTest::keyClick(edit, Qt::Key_Return);
  });
  EXPECT_EQ(dialogs.InputBox("Level", "", "10"), std::optional<std::string>(""));
  OnModalWindow([](QWidget& box) { QTest::keyClick(&box, Qt::Key_Escape); });
  EXPECT_EQ(dialogs.InputBox("Level", "", "10"), std::nullopt);
}

TEST(QtDialogs, BoxOutlivesTheWindowItStandsOn) {
  QtDialogs dialogs;
  auto* const window = new QWidget;
  window->show();
  QApplication::setActiveWindow(window);
  OnModalWindow([window](QWidget&) { delete window; });
  EXPECT_EQ(dialogs.Show({"Go on?", {}, MessageIcon::None, MessageButtons::YesNo}), MessageAnswer::No);
}

}  // namespace
}  // namespace hylden
