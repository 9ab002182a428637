// The test run form and the windows around it: loading, the run buttons, manual mode, unloading.

#include <QMenu>
#include <QScopeGuard>

#include "instruments/Instruments.h"
#include "platform/qt/QtText.h"
#include "run/qt/RunWindowPlace.h"
#include "shell/Shell.h"
#include "testrun/qt/frmManual.h"
#include "testrun/qt/frmRunButtons.h"
#include "testrun/qt/frmRunTest.h"
#include "ui_frmRunTest.h"
#include "widgets/TableFollower.h"

namespace hylden {

void frmRunTest::Load() {
  Status("State: Idle");
  ButtonForm = std::make_unique<frmRunButtons>(shell_, this);
  ButtonForm->setWindowIcon(windowIcon());
  if (simulated_) ButtonForm->SetSimulated();
  connect(ButtonForm.get(), &frmRunButtons::RunClick, this, &frmRunTest::buttonform_RunClick);
  connect(ButtonForm.get(), &frmRunButtons::HaltClick, this, &frmRunTest::buttonform_HaltClick);
  connect(ButtonForm.get(), &frmRunButtons::ManualClick, this, &frmRunTest::buttonform_ManualClick);
  connect(ButtonForm.get(), &frmRunButtons::ExitClick, this, &frmRunTest::buttonform_exitclick);
  connect(ButtonForm.get(), &frmRunButtons::HelpRequested, this, &frmRunTest::AskForHelp);
  ButtonForm->show();
  auto readiness = RunReadiness::NotReady;
  Guard("Load", [&] { readiness = engine_.Prepare(); });
  if (readiness == RunReadiness::NoSteps) close();
}

void frmRunTest::SetSimulated() {
  simulated_ = true;
  ShowBenchNotice(*this);
  if (ButtonForm) ButtonForm->SetSimulated();
}

void frmRunTest::Hurry() {
  if (inRun_) PressHalt();
}

/// Rows that were to be saved and are not are asked about once more.
bool frmRunTest::QueryUnload() {
  if (!engine_.Unsaved().MayLeave()) return false;
  RememberPlace(shell_, windowkey::kRunTestForm, *this);
  if (ButtonForm) ButtonForm->Unload();
  return true;
}

bool frmRunTest::IsOurs(const QWidget& window) const {
  return &window == this || &window == ButtonForm.get() || &window == ManForm.get();
}

void frmRunTest::PressHalt() {
  if (ButtonForm) ButtonForm->PressHalt();
}

void frmRunTest::buttonform_RunClick() {
  if (inRun_) return;
  Guard("cmdRun", [this] {
    const auto done = qScopeGuard([this] {
      rfWatch_.stop();
      escape_.Stop();
      inRun_ = false;
      RememberPlace(shell_, windowkey::kManualForm, manualPlace_);
      ShowRf();
    });
    inRun_ = true;
    escape_.Start();
    rfWatch_.start();
    engine_.ConfirmAndRun();
  });
}

void frmRunTest::buttonform_HaltClick() {
  shell_.delay.RequestHalt();
  SetHalting();
}

void frmRunTest::buttonform_ManualClick() {
  engine_.RequestManual();
}

void frmRunTest::buttonform_exitclick() {
  close();
}

void frmRunTest::Phase(RunPhase phase) {
  switch (phase) {
    case RunPhase::BringingUp:
      EnableFileMenu(false);
      return SetRunMode();
    case RunPhase::Asking:
      if (ButtonForm) ButtonForm->setEnabled(false);
      return;
    case RunPhase::Ready:
      if (ButtonForm) ButtonForm->setEnabled(true);
      EnableFileMenu(true);
      return SetHaltMode();
    default:
      return;
  }
}

void frmRunTest::SetRunMode() {
  ui_->cmdRunHalt->setEnabled(true);
  if (ButtonForm) ButtonForm->SetRunMode();
}

void frmRunTest::SetHaltMode() {
  ui_->cmdRunHalt->setEnabled(false);
  if (ButtonForm) ButtonForm->SetHaltMode();
  Status("State: Idle");
  ClearCountdown();
  ui_->prgSteps->setValue(engine_.CompletedSteps());
  follower_->Follow();
}

void frmRunTest::SetHalting() {
  ui_->cmdRunHalt->setEnabled(false);
  if (ButtonForm) ButtonForm->SetHalting();
  Status("Halting...");
}

void frmRunTest::EnableFileMenu(bool enabled) {
  ui_->mnuFile->setEnabled(enabled);
  for (const QMenu* const menu : {ui_->mnuFile, ui_->mnuFilePrint, ui_->mnuFilePreview})
    for (QAction* const action : menu->actions()) action->setEnabled(enabled);
}

QString frmRunTest::HelpTopic() const {
  return ManForm ? QStringLiteral("Manual mode") : QStringLiteral("Running a test");
}

void frmRunTest::OpenManual(const ManualStart& start) {
  ClearCountdown();
  ManForm = std::make_unique<frmManual>(shell_, engine_.Manual(), this);
  if (simulated_) ManForm->SetSimulated();
  connect(ManForm.get(), &frmManual::manThresholdClick, this, &frmRunTest::manform_manThresholdClick);
  connect(ManForm.get(), &frmManual::manExitClick, this, &frmRunTest::manform_manExitClick);
  connect(ManForm.get(), &frmManual::manRfOn, this, &frmRunTest::manform_manRfOn);
  connect(ManForm.get(), &frmManual::manModOn, this, &frmRunTest::manform_manModOn);
  connect(ManForm.get(), &frmManual::HaltClick, this, &frmRunTest::PressHalt);
  connect(ManForm.get(), &frmManual::HelpRequested, this, &frmRunTest::AskForHelp);
  ManForm->Open(start, manualPlace_);
  ui_->prgSteps->setValue(start.HighestStep);
  if (ButtonForm) ButtonForm->ButtonsVisible(false);
}

void frmRunTest::CloseManual() {
  if (!ManForm) return;
  if (ButtonForm) ButtonForm->ButtonsVisible(true);
  manualPlace_ = ManForm->Unload();
  ManForm.reset();
  follower_->Release();
}

void frmRunTest::ManualStep(int step, int row, double frequencyMHz) {
  Step(step);
  follower_->Hold(row - 1);
  if (ManForm) ManForm->SetManualFreq(frequencyMHz);
}

void frmRunTest::ManualRf(bool on) {
  if (ManForm) ManForm->SetRfOn(on);
  ShowRf();
}

void frmRunTest::ManualMod(bool on) {
  if (ManForm) ManForm->SetModOn(on);
}

void frmRunTest::manform_manThresholdClick(double frequencyMHz, float offsetDb) {
  engine_.Manual().manThresholdClick(frequencyMHz, offsetDb);
}

void frmRunTest::manform_manRfOn(bool on) {
  engine_.Manual().manRfOn(on);
  ManualRf(instruments_.sigGen.RfIsOn());  // also where the run took no notice of the switch
}

void frmRunTest::manform_manModOn(bool on) {
  engine_.Manual().manModOn(on);
}

void frmRunTest::manform_manExitClick() {
  engine_.Manual().manExitClick();
}

}  // namespace hylden
