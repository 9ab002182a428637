// hylden with an operator of its own, who runs the test that the command line names, says when RF is on, and lets no
// data be saved.

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
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
  static void Press(QAbstractButton* button) { QMetaObject::invokeMethod(button, "click", Qt::QueuedConnection); }
  QString Lamp() const { return Window("frmRunTest")->findChild<QLabel*>(QStringLiteral("lblRf"))->text(); }

  void Act() {
    if (auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) return Answer(*box);
    QWidget* const run = Window("frmRunTest");
    QWidget* const window = run ? run : Window("frmTestDef");
    if (window && window != pressed_)
      Press(window->findChild<QAbstractButton*>(QLatin1String(run ? "cmdRun" : "cmdStart")));
    if (window) pressed_ = window;
    if (run && !on_ && Lamp() == QLatin1String("RF ON")) {
      on_ = true;
      Say(Lamp());
    }
  }
  void Answer(QMessageBox& box) {
    if (&box == answered_) return;
    answered_ = &box;
    if (on_) Say(box.windowTitle() + QStringLiteral(": ") + Lamp());
    QAbstractButton* const no = box.button(QMessageBox::No);
    Press(no ? no : box.button(QMessageBox::Ok));
  }

  QTimer timer_;
  QPointer<QWidget> pressed_;
  QPointer<QWidget> answered_;  ///< another box may come at the same address
  bool on_ = false;
};

}  // namespace

int main(int argc, char** argv) {
  hylden::DesktopApplication application(argc, argv);
  const Operator someone;
  return hylden::RunDesktop(application, std::vector<std::string>(argv + 1, argv + argc));
}
