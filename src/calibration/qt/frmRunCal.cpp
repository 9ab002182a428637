#include "calibration/qt/frmRunCal.h"

#include "instruments/Instruments.h"
#include "measure/Conversions.h"
#include "text/Numbers.h"
#include "ui_frmRunCal.h"
#include "widgets/AlignedNumbers.h"
#include "widgets/LabelText.h"

namespace hylden {

frmRunCal::frmRunCal(Shell& shell, Instruments& instruments, Documents& documents, QWidget* parent)
    : CalibrationWindow(shell, instruments.sigGen, parent),
      ui_(std::make_unique<Ui::frmRunCal>()),
      calibration_(shell, instruments, documents, *this),
      table_({"Freq MHz", "SG,dBm", "Lev dBuv", "FPwr dBm", "RPwr dBm"}, [this](std::size_t row, std::size_t column) {
        return row < calibration_.Rows().size() ? CellsOf(calibration_.Rows()[row])[column] : std::string();
      }) {
  ui_->setupUi(this);
  testLevelTip_ = ui_->lblTestLevel->toolTip();
  SetUp({ui_->lblFreq, ui_->lblSigGen, ui_->lblMeterLevel, ui_->lblCountdown, ui_->lblStep, ui_->lblSteps,
         ui_->lblStart, ui_->lblStop, ui_->lblDwell, ui_->lblElapsed, ui_->lblEstTime, ui_->lblState, ui_->lblRf,
         ui_->prgSteps, ui_->flxCalData, ui_->mnuFile, ui_->cmdHalt, ui_->cmdExit},
        {"0.0#####", "##0.00", "##0.00"}, table_);
  new AlignedNumbers(*ui_->flxCalData, {{6}});
  ui_->cmdStart->setEnabled(false);
  EnableSave(false);
  OnRun(ui_->cmdStart, [this] { calibration_.Run(); });
  On(ui_->cmdSave, [this] { calibration_.Save(); });
  On(ui_->mnuFileSaveAs, [this] { calibration_.Save(); });
  connect(ui_->mnuFileExit, &QAction::triggered, this, &QWidget::close);
  connect(ui_->mnuHelpRun, &QAction::triggered, this, [this] { emit HelpRequested(HelpTopic()); });
}

frmRunCal::~frmRunCal() = default;

void frmRunCal::Load() {
  // Before anything can fail: a message stands in front of a window that says what it is.
  setWindowTitle(ToQt(calibration_.Title()));
  const bool forward = calibration_.Setup().RecordsForward();
  ui_->lblFwdPwr->setEnabled(forward);
  ui_->lblFwdPwrCap->setEnabled(forward);
  Guard("Load", [this] { ready_ = calibration_.Prepare(); });
  ui_->cmdStart->setEnabled(ready_);
  if (ready_) ui_->cmdStart->setFocus();
}

void frmRunCal::StartAfresh() {
  CalibrationWindow::StartAfresh();
  for (QLabel* const label :
       {static_cast<QLabel*>(ui_->lblTestLevel), static_cast<QLabel*>(ui_->lblFwdPwr), ui_->lblCableLoss})
    ShowText(*label, QString::fromLatin1(kNoFigure));
  ui_->lblTestLevel->setToolTip(testLevelTip_);
}

void frmRunCal::SetRunning(bool running) {
  ui_->cmdStart->setEnabled(!running && ready_);
  CalibrationWindow::SetRunning(running);
  EnableSave(!running);
  if (running) return;
  const bool unsaved = !calibration_.Rows().empty() && !calibration_.Unsaved().AreSaved();
  (unsaved ? ui_->cmdSave : ui_->cmdExit)->setFocus();
}

void frmRunCal::EnableSave(bool enabled) {
  ui_->cmdSave->setEnabled(enabled);
  ui_->mnuFileSaveAs->setEnabled(enabled);
}

void frmRunCal::Show(Readout readout, std::optional<double> value) {
  CalibrationWindow::Show(readout, value);
  if (!value) return;
  if (readout == Readout::CableLoss) ShowNumber(*ui_->lblCableLoss, *value, "#0.00");
  if (readout == Readout::ForwardPower) ShowNumber(*ui_->lblFwdPwr, Conversions::DbmToWatts(*value), "0.000");
  if (readout != Readout::TestLevel) return;
  const double volts = Conversions::DbuvToVolts(*value);
  ShowNumber(*ui_->lblTestLevel, volts, "##0.000");
  ui_->lblTestLevel->setToolTip(ToQt(ShortestText(volts)));
}

}  // namespace hylden
