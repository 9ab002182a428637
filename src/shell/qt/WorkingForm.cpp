#include "shell/qt/WorkingForm.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QToolBar>

#include "platform/qt/CommandWindow.h"

namespace hylden {

WorkingForm::WorkingForm(QWidget* parent) : QMainWindow(parent) {}

void WorkingForm::OpenFrom(QWidget* caller) {
  CallingForm = caller;
  show();
  raise();
  activateWindow();
  // What a modal form stands above stays in sight, locked.
  if (caller && windowModality() == caller->windowModality()) caller->hide();
}

void WorkingForm::closeEvent(QCloseEvent* event) {
  const CommandWindow closing(*this);
  if (!QueryUnload()) {
    event->ignore();
    return;
  }
  event->accept();
  if (CallingForm) {
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

QToolBar& ShowBenchNotice(QMainWindow& window) {
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
  ShowBenchNotice(*notice);
  window.setContextMenuPolicy(Qt::NoContextMenu);
  window.addToolBar(Qt::TopToolBarArea, bar);
  return *bar;
}

void ShowBenchNotice(QLabel& notice) {
  notice.setText(QStringLiteral("SIMULATED BENCH \u2013 no real instrument is driven"));
  notice.setAlignment(Qt::AlignCenter);
  // Colours of its own in every theme: this is a warning, not a decoration.
  notice.setStyleSheet(QStringLiteral("background:#ffb300; color:black; font-weight:bold; padding:4px"));
  notice.show();
}

}  // namespace hylden
