#include "testrun/qt/frmRunButtons.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QScreen>

#include "shell/Shell.h"
#include "shell/qt/WorkingForm.h"
#include "ui_frmRunButtons.h"
#include "widgets/WindowPlace.h"

namespace hylden {

frmRunButtons::frmRunButtons(Shell& shell, QWidget* parent)
    // A dialog of the run window stays above it.
    : QWidget(parent, Qt::Dialog | kRunFrame), shell_(shell), ui_(std::make_unique<Ui::frmRunButtons>()) {
  ui_->setupUi(this);
  ui_->cmdRun->setEnabled(false);
  ui_->cmdManual->setEnabled(false);
  ui_->cmdHalt->setEnabled(false);
  ui_->cmdHalt->hide();
  connect(ui_->cmdExit, &QPushButton::clicked, this, &frmRunButtons::ExitClick);
  connect(ui_->cmdManual, &QPushButton::clicked, this, &frmRunButtons::ManualClick);
  connect(ui_->cmdRun, &QPushButton::clicked, this, &frmRunButtons::RunClick);
  connect(ui_->cmdHalt, &QPushButton::clicked, this, &frmRunButtons::HaltClick);
  if (RestorePlace(shell_, windowkey::kRunButtons, *this) || !parent) return;
  adjustSize();
  move(PlaceBeside(parent->frameGeometry(), size(), parent->screen()->availableGeometry()));
  KeepFrame(*this);
}

frmRunButtons::~frmRunButtons() = default;

void frmRunButtons::ButtonsVisible(bool visible) {
  if (visible == isVisible()) return;
  if (!visible) place_ = pos();
  setVisible(visible);
  if (visible) move(place_);
}

void frmRunButtons::SetRunMode() {
  ui_->cmdRun->hide();  // first: four buttons would widen the form for good
  ui_->cmdRun->setEnabled(false);
  ui_->cmdHalt->show();
  ui_->cmdHalt->setEnabled(true);
  ui_->cmdHalt->setFocus();
  ui_->cmdManual->setEnabled(true);
  ui_->cmdExit->setEnabled(false);
  // The confirmation has left the keys to the run window, which has no Manual.
  if (isVisible()) activateWindow();
}

void frmRunButtons::SetHaltMode() {
  ui_->cmdHalt->hide();
  ui_->cmdHalt->setEnabled(false);
  ui_->cmdRun->show();
  ui_->cmdRun->setEnabled(true);
  ui_->cmdRun->setFocus();
  ui_->cmdManual->setEnabled(false);
  ui_->cmdExit->setEnabled(true);
  if (isVisible()) activateWindow();
}

void frmRunButtons::SetHalting() {
  for (QPushButton* const button : findChildren<QPushButton*>()) button->setEnabled(false);
}

void frmRunButtons::SetSimulated() {
  ShowBenchNotice(*ui_->lblBench, shell_.runNotice);
}

void frmRunButtons::Unload() {
  RememberPlace(shell_, windowkey::kRunButtons, *this);
  hide();
}

QPushButton& frmRunButtons::DefaultButton() const {
  return ui_->cmdExit->hasFocus() ? *ui_->cmdExit : *ui_->cmdRun;
}

void frmRunButtons::keyPressEvent(QKeyEvent* event) {
  const bool repeated = event->isAutoRepeat();
  switch (event->key()) {
    case Qt::Key_Escape:
      if (ui_->cmdExit->isEnabled() && !repeated)
        ui_->cmdExit->click();
      else
        ui_->cmdHalt->click();
      return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      // A key still held down from a box before starts nothing, and a disabled button can't be pressed.
      if (!repeated && ui_->cmdExit->isEnabled()) DefaultButton().click();
      return;
    case Qt::Key_F1:
      emit HelpRequested();
      return;
    default:
      QWidget::keyPressEvent(event);
  }
}

void frmRunButtons::closeEvent(QCloseEvent* event) {
  // The run window decides: during a run it halts first.
  event->ignore();
  emit ExitClick();
}

}  // namespace hylden
