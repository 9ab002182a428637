#include "shell/qt/WorkingForm.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>
#include <QWindow>
#include <exception>
#include <string>
#include <utility>

#include "platform/qt/CommandWindow.h"
#include "platform/qt/Later.h"
#include "platform/qt/QtText.h"
#include "shell/FormInput.h"
#include "shell/ProgramEnd.h"
#include "shell/Shell.h"
#include "widgets/WindowMemory.h"
#include "widgets/WindowPlace.h"

namespace hylden {

namespace {

constexpr int kPassingMs = 8000;

/// At the end of the menu bar it takes no room from the form.
QLabel& PassingLabel(QMenuBar& menus) {
  if (auto* const shown = menus.findChild<QLabel*>(QStringLiteral("lblSaved"))) return *shown;
  auto* const label = new QLabel(&menus);
  label->setObjectName(QStringLiteral("lblSaved"));
  label->setAccessibleName(QStringLiteral("What was saved"));
  label->setTextFormat(Qt::PlainText);
  label->setContentsMargins(6, 0, 6, 0);
  return *label;
}

}  // namespace

WorkingForm::WorkingForm(Shell& shell, QWidget* parent) : QMainWindow(parent), shell_(shell) {
  passing_.setSingleShot(true);
  passing_.setInterval(kPassingMs);
  connect(&passing_, &QTimer::timeout, this, [this] { ShowPassing({}); });
}

void WorkingForm::OpenFrom(QWidget* caller) {
  CallingForm = caller;
  using Keeps = WindowMemory::Keeps;
  new WindowMemory(shell_, *this, caller && !StandsBeside() ? Keeps::Size : Keeps::SizeAndPlace);
  OpenOver(*this, caller);
  if (caller) callerPlace_ = caller->geometry().topLeft();
  show();
  raise();
  activateWindow();
  // What a modal form stands above stays in sight, locked.
  if (caller && windowModality() == caller->windowModality()) caller->hide();
}

void WorkingForm::Guard(std::string_view name, const std::function<void()>& command) {
  if (shell_.end.MayStart()) Run(name, command);
}

void WorkingForm::On(QAction* entry, std::function<void()> command) {
  connect(entry, &QAction::triggered, this,
          [this, entry, run = std::move(command)] { Guard(FromQt(entry->objectName()), run); });
}

void WorkingForm::On(QAbstractButton* button, std::function<void()> command) {
  connect(button, &QAbstractButton::clicked, this,
          [this, button, run = std::move(command)] { Guard(FromQt(button->objectName()), run); });
}

void WorkingForm::Run(std::string_view name, const std::function<void()>& command) {
  const CommandWindow running(*this);
  if (commands_ == 0 && passing_.isActive()) ShowPassing({});
  ++commands_;
  try {
    command();
  } catch (const ProgramEnd&) {
    // It goes on to the application from its event loop, since nothing may cross the button that was pressed.
    Later(qApp, [end = std::current_exception()] { std::rethrow_exception(end); });
  } catch (const std::exception& error) {
    shell_.ReportUnforeseen(error, FromQt(objectName()).append(".").append(name));
  }
  if (--commands_ > 0) return;
  CommandEnded();
  CloseIfPending();
}

void WorkingForm::ShowSaved(const std::string& path) {
  ShowPassing(QStringLiteral("Saved: ") + ToQt(FileNameOnly(path)));
  passing_.start();
}

void WorkingForm::ShowPassing(const QString& text) {
  passing_.stop();
  if (auto* const status = findChild<QStatusBar*>()) return status->showMessage(text);
  auto* const menus = findChild<QMenuBar*>();
  if (!menus) return;
  QLabel& label = PassingLabel(*menus);
  label.setText(label.fontMetrics().elidedText(text, Qt::ElideMiddle, width() / 2));
  label.setToolTip(text);
  label.adjustSize();
  menus->setCornerWidget(&label);  // which gives it its room anew
  label.setVisible(!text.isEmpty());
}

void WorkingForm::CloseBehindCommand() {
  if (!IsBusy()) return;
  closePending_ = true;
  missedBefore_ = SaveMissed();
  Hurry();
}

void WorkingForm::CloseIfPending() {
  if (!closePending_) return;
  // Not before the press has returned: the button that was pressed goes with the form.
  Later(this, [this] {
    if (!closePending_ || IsBusy()) return;  // taken back, or done behind the next command
    closePending_ = false;
    if (SaveMissed() && !missedBefore_)
      emit StaysOpen();
    else
      close();
  });
}

bool WorkingForm::MayClose() {
  if (IsBusy()) {
    CloseBehindCommand();
    return false;
  }
  bool mayClose = false;
  Run("QueryUnload", [&] { mayClose = QueryUnload(); });
  // Asked to close once more meanwhile, the form has not answered yet.
  if (!mayClose && !closePending_) emit StaysOpen();
  return mayClose;
}

void WorkingForm::closeEvent(QCloseEvent* event) {
  if (!MayClose()) {
    event->ignore();
    return;
  }
  event->accept();
  closePending_ = false;
  if (CallingForm) {
    // Else the window system finds a new place for what was hidden. A move to where it is would not reach it.
    if (QWindow* const handle = CallingForm->windowHandle();
        handle && !CallingForm->isVisible() && !CallingForm->isMaximized())
      handle->setPosition(callerPlace_);
    CallingForm->show();
    CallingForm->activateWindow();
  }
  CallingForm.clear();
  emit Unloaded();
}

void WorkingForm::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_F1)
    emit HelpRequested(HelpTopic());
  else
    QMainWindow::keyPressEvent(event);
}

QToolBar& ShowBenchNotice(QMainWindow& window, const std::string& words) {
  if (auto* const shown = window.findChild<QToolBar*>(QStringLiteral("tbrBench"))) return *shown;
  auto* const notice = new QLabel;
  notice->setObjectName(QStringLiteral("lblBench"));
  notice->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  auto* const bar = new QToolBar(QStringLiteral("Simulated bench"));
  bar->setObjectName(QStringLiteral("tbrBench"));
  bar->setMovable(false);
  bar->setContextMenuPolicy(Qt::PreventContextMenu);
  bar->toggleViewAction()->setEnabled(false);
  bar->addWidget(notice);
  ShowBenchNotice(*notice, words);
  window.setContextMenuPolicy(Qt::NoContextMenu);
  window.addToolBar(Qt::TopToolBarArea, bar);
  return *bar;
}

void ShowBenchNotice(QLabel& notice, const std::string& words) {
  notice.setText(ToQt(words));
  notice.setAlignment(Qt::AlignCenter);
  // Colours of its own in every theme: this is a warning, not a decoration.
  notice.setStyleSheet(QStringLiteral("background:#ffb300; color:black; font-weight:bold; padding:4px"));
  notice.show();
}

}  // namespace hylden
