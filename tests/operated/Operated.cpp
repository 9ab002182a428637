// hylden with an operator of its own, who runs the test that the command line names, or without one tries the signal
// generator in its editor, says when RF is on, and lets nothing be saved.

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>
#include <cstdio>
#include <string>
#include <vector>

#include "app/DesktopApplication.h"
#include "app/DesktopProgram.h"

namespace {

class Operator {
 public:
  Operator() {
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Act(); });
    timer_.start(1);
  }

 private:
  static QWidget* Window(const char* form) {
    for (QWidget* const window : QApplication::topLevelWidgets())
      if (window->isVisible() && window->objectName() == QLatin1String(form)) return window;
    return nullptr;
  }
  static void Say(const QString& text) {
    std::printf("%s\n", qPrintable(text));
    std::fflush(stdout);
  }
  /// From the event loop: a press that runs a test returns with its end.
  static void Press(QObject* control) {
    QMetaObject::invokeMethod(control, qobject_cast<QAction*>(control) ? "trigger" : "click", Qt::QueuedConnection);
  }
  static QString Lamp() {
    for (const char* const form : {"frmRunTest", "frmSigGen"})
      if (const QWidget* const window = Window(form))
        return window->findChild<QLabel*>(QStringLiteral("lblRf"))->text();
    return {};
  }
  /// What is to be pressed next, on the way to RF.
  static QObject* Next() {
    constexpr struct {
      const char *form, *control;
    } kWay[] = {{"frmRunTest", "cmdRun"},
                {"frmTestDef", "cmdStart"},
                {"frmSigGen", "mnuTestRfOn"},
                {"frmSigGen", "mnuTestInit"},
                {"frmEquipment", "mnuInstDefineSigGen"},
                {"TopMenu", "cmdConfigSys"}};
    for (const auto& step : kWay) {
      const QWidget* const window = Window(step.form);
      QObject* const control = window ? window->findChild<QObject*>(QLatin1String(step.control)) : nullptr;
      const auto* const entry = qobject_cast<const QAction*>(control);
      if (control && (!entry || entry->isEnabled())) return control;
    }
    return nullptr;
  }

  void Act() {
    QWidget* const modal = QApplication::activeModalWidget();
    if (auto* const prompt = qobject_cast<QInputDialog*>(modal)) return Type(*prompt);
    if (auto* const box = qobject_cast<QMessageBox*>(modal)) return Answer(*box);
    if (!on_ && Lamp() == QLatin1String("RF ON")) {
      on_ = true;
      ChangeName();
      Say(Lamp());
    }
    QObject* const next = on_ ? nullptr : Next();
    if (next && next != pressed_) Press(next);
    if (next) pressed_ = next;
  }
  /// What is not saved brings a question at the end, behind which RF can be looked at.
  static void ChangeName() {
    if (const QWidget* const editor = Window("frmSigGen"))
      editor->findChild<QLineEdit*>(QStringLiteral("txtName"))->setText(QStringLiteral("Changed"));
  }
  void Type(QInputDialog& prompt) {
    if (&prompt == answered_) return;
    answered_ = &prompt;
    prompt.setTextValue(prompt.labelText().contains(QLatin1String("Level")) ? QStringLiteral("-30")
                                                                            : QStringLiteral("10"));
    QMetaObject::invokeMethod(&prompt, "accept", Qt::QueuedConnection);
  }
  void Answer(QMessageBox& box) {
    if (&box == answered_) return;
    answered_ = &box;
    if (on_) Say(box.windowTitle() + QStringLiteral(": ") + Lamp());
    QAbstractButton* const no = box.button(QMessageBox::No);
    Press(no ? no : box.button(QMessageBox::Ok));
  }

  QTimer timer_;
  QPointer<QObject> pressed_;
  QPointer<QWidget> answered_;  ///< another box may come at the same address
  bool on_ = false;
};

}  // namespace

int main(int argc, char** argv) {
  hylden::DesktopApplication application(argc, argv);
  const Operator someone;
  return hylden::RunDesktop(application, std::vector<std::string>(argv + 1, argv + argc));
}
