#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <functional>
#include <string>

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

/// Does something with the modal window that opens next, when it is up.
inline void OnModalWindow(std::function<void(QWidget&)> action) {
  QTimer::singleShot(0, qApp, [action = std::move(action)] {
    QWidget* const window = QApplication::activeModalWidget();
    ASSERT_NE(window, nullptr) << "no modal window opened";
    action(*window);
  });
}

}  // namespace hylden
