// hylden with an operator of its own, who runs the test that the command line names, or without one tries the signal
// generator in its editor, says when RF is on, and lets nothing be saved. With HYLDEN_OPERATED_SAVE in the environment
// the operator works instead: runs that test, or the level calibration of HYLDEN_OPERATED_SETUP, says which step is
// done
// ("step 5"), continues what an earlier program has left, saves to that file, and ends the program.

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QTimer>
#include <csignal>
#include <cstdio>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "app/DesktopApplication.h"
#include "app/DesktopProgram.h"
#include "documents/qt/frmCalSetup.h"

namespace {

class Operator {
 public:
  Operator() {
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Act(); });
    timer_.start(1);
  }

 private:
  struct Step {
    const char *form, *control;
  };

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
  QObject* Next() const {
    static constexpr Step kTrial[] = {{"frmRunTest", "cmdRun"},
                                      {"frmTestDef", "cmdStart"},
                                      {"frmSigGen", "mnuTestRfOn"},
                                      {"frmSigGen", "mnuTestInit"},
                                      {"frmEquipment", "mnuInstDefineSigGen"},
                                      {"TopMenu", "cmdConfigSys"}};
    static constexpr Step kWork[] = {{"frmRunTest", "cmdRun"},
                                     {"frmRunCal", "cmdStart"},
                                     {"frmTestDef", "cmdStart"},
                                     {"frmCalSetup", "cmdStart"},
                                     {"TopMenu", "cmdCalibration"}};
    const auto way = file_.isEmpty() ? std::span<const Step>(kTrial) : std::span<const Step>(kWork);
    for (const Step& step : way) {
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
    if (auto* const dialog = qobject_cast<QFileDialog*>(modal)) return Save(*dialog);
    if (!file_.isEmpty()) return Work();
    if (!on_ && Lamp() == QLatin1String("RF ON")) {
      on_ = true;
      ChangeName();
      Say(Lamp());
    }
    if (!on_) GoOn();
  }
  void GoOn() {
    QObject* const next = Next();
    if (next && next != pressed_) Press(next);
    if (next) pressed_ = next;
  }
  /// To the file, step by step.
  void Work() {
    if (isSaved_) return End();
    for (const char* const form : {"frmRunTest", "frmRunCal"})
      if (const QWidget* const window = Window(form)) SayStep(*window);
    auto* const setup = static_cast<hylden::frmCalSetup*>(Window("frmCalSetup"));
    if (setup && !pressed_.isNull() && pressed_->parent() != setup && !std::exchange(isLoaded_, true))
      setup->LoadFile(qEnvironmentVariable("HYLDEN_OPERATED_SETUP"));
    GoOn();
  }
  void SayStep(const QWidget& window) {
    const int step = window.findChild<QProgressBar*>(QStringLiteral("prgSteps"))->value();
    if (step > step_) Say(QStringLiteral("step %1").arg(step));
    step_ = step;
  }
  void Save(QFileDialog& dialog) {
    if (&dialog == answered_) return;
    answered_ = &dialog;
    isSaved_ = true;
    dialog.selectFile(file_);
    QMetaObject::invokeMethod(&dialog, "accept", Qt::QueuedConnection);
  }
  void End() {
    if (std::exchange(isEnded_, true)) return;
    Say(QStringLiteral("saved"));
    std::raise(SIGTERM);
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
    if (!file_.isEmpty()) Say(box.text().simplified());
    QAbstractButton* const word = box.button(file_.isEmpty() ? QMessageBox::No : QMessageBox::Yes);
    Press(word ? word : box.button(QMessageBox::Ok));
  }

  QTimer timer_;
  QPointer<QObject> pressed_;
  QPointer<QWidget> answered_;  ///< another box may come at the same address
  bool on_ = false;
  // At work.
  const QString file_ = qEnvironmentVariable("HYLDEN_OPERATED_SAVE");
  int step_ = 0;
  bool isLoaded_ = false, isSaved_ = false, isEnded_ = false;
};

}  // namespace

int main(int argc, char** argv) {
  hylden::DesktopApplication application(argc, argv);
  const Operator someone;
  return hylden::RunDesktop(application, std::vector<std::string>(argv + 1, argv + argc));
}
