#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "support/FakeDialogs.h"
#include "support/FormTable.h"
#include "widgets/PathLabel.h"

namespace hylden {

// Forms are driven by the names of their controls, as an operator drives them by their captions: find a control, type,
// press a button or tick, choose a menu entry, answer the boxes on the screen.

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
inline std::string PathOf(QWidget& form, const char* name) {
  return Find<PathLabel>(form, name).Path();
}
inline bool IsEnabled(QWidget& form, const char* name) {
  return Find<QWidget>(form, name).isEnabled();
}
inline bool IsTicked(QWidget& form, const char* name) {
  return Find<QAbstractButton>(form, name).isChecked();
}

/// Presses a button or chooses a menu entry, and returns what was told meanwhile.
inline std::vector<std::string> Told(FakeDialogs& dialogs, QWidget& form, const char* name) {
  dialogs.Clear();
  std::string_view(name).starts_with("mnu") ? Choose(form, name) : Press(form, name);
  return dialogs.Texts();
}

/// Lets the windows do what they have put off, and forms that have closed go.
inline void Turn() {
  for (int i = 0; i < 20; ++i) {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
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

/// Every number box that can be used on the form of a record holds up the command while it holds no number, and is in
/// sight then. @return how many there are
template <class Record>
std::size_t ExpectPointedOut(FakeDialogs& dialogs, QWidget& form, Record record, const char* command) {
  NumberBoxes boxes;
  FormFields(boxes, record);
  std::size_t used = 0;
  for (const std::string& name : boxes.names) {
    SCOPED_TRACE(name);
    auto& box = Find<QLineEdit>(form, name.c_str());
    if (!box.isEnabled()) continue;
    ++used;
    const QString before = box.text();
    if (auto* const tabs = form.findChild<QTabWidget*>()) tabs->setCurrentIndex(tabs->count() - 1);
    Type(form, name.c_str(), "1,5");
    EXPECT_THAT(Told(dialogs, form, command),
                testing::ElementsAre(testing::ContainsRegex("^Value not a number, re-enter\r\n[A-Z].*: [a-z0-9]")));
    EXPECT_EQ(form.focusWidget(), &box);
    EXPECT_TRUE(box.isVisible() && box.selectedText() == QLatin1String("1,5"));
    box.setText(before);
  }
  return used;
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
  EXPECT_FALSE(keys.isEmpty());
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

/// Drops files. @return whether the target would take them
inline bool Drop(QWidget& target, const QList<QUrl>& urls) {
  QMimeData data;
  data.setUrls(urls);
  QDragEnterEvent enter({2, 2}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&target, &enter);
  QDropEvent drop({2, 2}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&target, &drop);
  return enter.isAccepted();
}

/// Does something with the modal window that opens next, when it is up.
inline void OnModalWindow(std::function<void(QWidget&)> action) {
  QTimer::singleShot(0, qApp, [action = std::move(action)] {
    QWidget* const window = QApplication::activeModalWidget();
    ASSERT_NE(window, nullptr) << "no modal window opened";
    action(*window);
  });
}

/// Someone at the boxes on the screen, who does something with each, once.
class Someone {
 public:
  explicit Someone(std::function<void(QWidget& box)> answer) : answer_(std::move(answer)) {
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Look(); });
    timer_.start(0);
  }
  std::vector<std::string> seen;  ///< the titles of the boxes

 private:
  void Look() {
    QWidget* const box = QApplication::activeModalWidget();
    if (!box || box == last_) return;
    last_ = box;
    seen.push_back(box->windowTitle().toStdString());
    answer_(*box);
  }

  std::function<void(QWidget&)> answer_;
  QTimer timer_;
  QPointer<QWidget> last_;
};

}  // namespace hylden
