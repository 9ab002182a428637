// The test run among the program's windows: from the command line to the saved data, on real dialogs, and the end of
// the program in the middle of a run.

#include <gmock/gmock.h>

#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>

#include "app/Desktop.h"
#include "desktop/RunForms.h"
#include "documents/qt/frmTestDef.h"
#include "platform/qt/QtDialogs.h"
#include "platform/qt/QtText.h"
#include "shell/qt/TopMenu.h"

namespace hylden {
namespace {

class DesktopRun : public testing::Test {
 protected:
  template <class AnyDialogs>
  void StartProgram(AnyDialogs& dialogs, std::function<void()> onEnding = {}) {
    m = std::make_unique<BenchMachine>(dialogs);
    DesktopOptions options;
    options.onEnding = std::move(onEnding);
    desktop = std::make_unique<Desktop>(m->station, options);
    ASSERT_TRUE(desktop->Start("\"/e:station.eqp\" \"/t:substitution-am.tst\""));
    ASSERT_NE(OpenWindow<frmTestDef>(), nullptr);
    Press(*OpenWindow<frmTestDef>(), "cmdStart");
    ASSERT_NE(OpenWindow<frmRunTest>(), nullptr);
    EXPECT_EQ(OpenWindow<frmTestDef>(), nullptr) << "the form that opened it is hidden";
  }
  void TearDown() override {
    desktop.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }

  std::unique_ptr<BenchMachine> m;
  std::unique_ptr<Desktop> desktop;
};

/// Answers the boxes of the screen as an operator who agrees to everything.
class Operator {
 public:
  explicit Operator(QString saveTo) : saveTo_(std::move(saveTo)) {
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Answer(); });
    timer_.start(0);
  }
  QStringList seen;

 private:
  void Answer() {
    QWidget* const modal = QApplication::activeModalWidget();
    if (!modal || modal == last_) return;
    last_ = modal;
    seen << modal->windowTitle();
    if (auto* const box = qobject_cast<QMessageBox*>(modal)) {
      box->buttons().front()->click();
    } else if (auto* const dialog = qobject_cast<QFileDialog*>(modal)) {
      dialog->selectFile(saveTo_);
      QMetaObject::invokeMethod(dialog, "accept", Qt::DirectConnection);
    }
  }

  QString saveTo_;
  QTimer timer_;
  QPointer<QWidget> last_;
};

TEST_F(DesktopRun, CommandLineLeadsToSavedRunData) {
  QtDialogs dialogs;
  StartProgram(dialogs);
  auto& form = *OpenWindow<frmRunTest>();
  EXPECT_TRUE(Find<QLabel>(form, "lblBench").isVisible());
  Operator someone(ToQt(m->directory.File("whole.run")));
  Press(form, "cmdRun");
  EXPECT_THAT(someone.seen, testing::ElementsAre("MAKE SURE!!!", "Save Run Data", "Select run file"));
  EXPECT_EQ(form.Engine().Outcome(), RunOutcome::Finished);
  EXPECT_EQ(m->directory.Read("whole.run"), RunFileText(form.Engine().Data(), false));
  Press(form, "cmdExit");
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(OpenWindow<frmRunTest>(), nullptr);
  EXPECT_NE(OpenWindow<frmTestDef>(), nullptr);
}

TEST_F(DesktopRun, EscapeInARealBoxHaltsTheRun) {
  QtDialogs dialogs;
  StartProgram(dialogs);
  dialogs.onEscape = [&] { desktop->EscapeInBox(); };
  m->Test().SweepDwell = 0;
  auto& form = *OpenWindow<frmRunTest>();
  ASSERT_TRUE(form.close());
  desktop->OpenTestRun(&desktop->Menu());
  auto& run = *OpenWindow<frmRunTest>();
  bool halted = false;
  QTimer someone;
  QObject::connect(&someone, &QTimer::timeout, &someone, [&] {
    auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (!box) return;
    if (box->windowTitle() != "Wait for user") {
      box->button(box->windowTitle() == "MAKE SURE!!!" ? QMessageBox::Ok : QMessageBox::No)->click();
      return;
    }
    EXPECT_TRUE(m->bench.State().Generator.RfOn);
    QTest::keyClick(box, Qt::Key_Escape);
    halted = m->station.shell.delay.HaltRequested();
  });
  someone.start(0);
  Press(run, "cmdRun");
  EXPECT_TRUE(halted);
  EXPECT_FALSE(m->bench.State().Generator.RfOn);
  EXPECT_EQ(run.Engine().Data().Entries().size(), 1u);
}

TEST_F(DesktopRun, EndOfTheProgramHaltsTheRunAndKeepsTheQuestionStanding) {
  FakeDialogs dialogs;
  int cancelled = 0;
  StartProgram(dialogs, [&] { ++cancelled; });
  dialogs.AnswerSave(m->directory.File("ended.run"));
  QSignalSpy ended(desktop.get(), &Desktop::Ended);
  dialogs.onShow = [&](const Message& message) {
    if (message.title != "Save Run Data") return;
    desktop->CloseAll();  // again, while the question stands
    QCoreApplication::processEvents();
    EXPECT_NE(OpenWindow<frmRunTest>(), nullptr) << "its data would be gone";
  };
  auto& form = *OpenWindow<frmRunTest>();
  m->When([&] { return TextOf(form, "lblStep") == "Step# 3" && m->bench.State().Generator.RfOn; },
          [&] { desktop->CloseAll(); });
  Press(form, "cmdRun");
  EXPECT_FALSE(m->bench.State().Generator.RfOn);
  EXPECT_EQ(cancelled, 1) << "the question was cancelled";
  EXPECT_TRUE(m->directory.Exists("ended.run"));
  for (int i = 0; i < 10; ++i) QCoreApplication::processEvents();
  EXPECT_EQ(ended.count(), 1);
  EXPECT_EQ(OpenWindow<QWidget>(), nullptr);
}

}  // namespace
}  // namespace hylden
