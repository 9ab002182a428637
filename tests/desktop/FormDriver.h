#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <functional>
#include <string>
#include <vector>

namespace hylden {

/// A control by its name; a missing one fails the test.
template <class Control>
Control& Find(QWidget& form, const char* name) {
  auto* const control = form.findChild<Control*>(QString::fromLatin1(name));
  if (!control) throw std::runtime_error(std::string("no control ") + name);
  return *control;
}

/// Sets the text of a box as an operator does: the old text goes, the keys come one by one.
inline void Type(QWidget& form, const char* name, const char* text) {
  auto& box = Find<QLineEdit>(form, name);
  box.selectAll();
  QTest::keyClick(&box, Qt::Key_Delete);
  QTest::keyClicks(&box, QString::fromUtf8(text));
}

inline void Press(QWidget& form, const char* name) {
  auto& button = Find<QAbstractButton>(form, name);
  ASSERT_TRUE(button.isEnabled()) << name;
  button.click();
}

inline void Choose(QWidget& form, const char* name) {
  auto& entry = Find<QAction>(form, name);
  ASSERT_TRUE(entry.isEnabled()) << name;
  entry.trigger();
}

inline std::string TextOf(QWidget& form, const char* name) {
  if (auto* const box = form.findChild<QLineEdit*>(QString::fromLatin1(name))) return box->text().toStdString();
  return Find<QLabel>(form, name).text().toStdString();
}

/// The windows of this kind that are on the screen.
template <class Form>
std::vector<Form*> OpenWindows() {
  std::vector<Form*> forms;
  for (QWidget* const window : QApplication::topLevelWidgets())
    if (auto* const form = qobject_cast<Form*>(window); form && form->isVisible()) forms.push_back(form);
  return forms;
}

/// One of them; null when there is none.
template <class Form>
Form* OpenWindow() {
  const std::vector<Form*> forms = OpenWindows<Form>();
  return forms.empty() ? nullptr : forms.front();
}

/// Clicks where the control is on the screen: what the window system withholds from a locked window does not arrive.
inline void ClickOnScreen(QWidget& form, const char* name) {
  auto& control = Find<QWidget>(form, name);
  QTest::mouseClick(form.windowHandle(), Qt::LeftButton, {}, control.mapTo(&form, control.rect().center()));
}

/// What can be reached by Alt in the window as it is shown: no key is there twice.
inline void ExpectMnemonicsShownApart(const QMainWindow& form) {
  QStringList texts;
  for (const QAction* menu : form.menuBar()->actions()) texts << menu->text();
  for (const QTabBar* tabs : form.findChildren<QTabBar*>())
    for (int tab = 0; tab < tabs->count(); ++tab) texts << tabs->tabText(tab);
  for (const QAbstractButton* button : form.findChildren<QAbstractButton*>())
    if (button->isVisible()) texts << button->text();
  for (const QLabel* label : form.findChildren<QLabel*>())
    if (label->isVisible() && label->buddy()) texts << label->text();
  QStringList keys;
  for (const QString& text : texts)
    if (const QKeySequence key = QKeySequence::mnemonic(text); !key.isEmpty()) {
      keys << key.toString();
      EXPECT_TRUE(keys.last() != QLatin1String("Alt+H") || text == QLatin1String("&Halt")) << "Alt+H halts";
    }
  EXPECT_GT(keys.size(), 5);
  keys.sort();
  EXPECT_EQ(keys.removeDuplicates(), 0) << form.objectName().toStdString() << ": " << keys.join(' ').toStdString();
}

/// The same for every page of the window's tabs.
inline void ExpectMnemonicsApart(const QMainWindow& form) {
  auto* const tabs = form.findChild<QTabWidget*>();
  for (int page = 0; page < (tabs ? tabs->count() : 1); ++page) {
    SCOPED_TRACE(page);
    if (tabs) tabs->setCurrentIndex(page);
    ExpectMnemonicsShownApart(form);
  }
}

/// Does something with the modal window that opens next, when it is up.
inline void OnModalWindow(std::function<void(QWidget&)> action) {
  QTimer::singleShot(0, qApp, [action = std::move(action)] {
    QWidget* const window = QApplication::activeModalWidget();
    ASSERT_NE(window, nullptr) << "no modal window opened";
    action(*window);
  });
}

}  // namespace hylden
