#include "calibration/qt/frmRunCal.h"

#include "instruments/Instruments.h"
#include "measure/Conversions.h"
#include "run/qt/RunCurvePanel.h"
#include "shell/Shell.h"
#include "text/Numbers.h"
#include "ui_frmRunCal.h"
#include "widgets/AlignedNumbers.h"
#include "widgets/LabelText.h"

namespace hylden {

frmRunCal::frmRunCal(Shell& shell, Instruments& instruments, Documents& documents, QWidget* parent)
    : RunWindow(shell, instruments.sigGen, parent),
      ui_(std::make_unique<Ui::frmRunCal>()),
      calibration_(shell, instruments, documents, *this),
      table_({"Freq MHz", "SG,dBm", "Lev dBuv", "FPwr dBm", "RPwr dBm"}, [this](std::size_t row, std::size_t column) {
        return row < calibration_.Rows().size() ? CellsOf(calibration_.Rows()[row])[column] : std::string();
      }) {
  ui_->setupUi(this);
  testLevelTip_ = ui_->lblTestLevel->toolTip();
  Controls controls = Controls::Of(*ui_);
  controls.Start = ui_->lblStart;
  controls.Stop = ui_->lblStop;
  controls.Dwell = ui_->lblDwell;
  controls.Table = ui_->flxCalData;
  controls.Halt = ui_->cmdHalt;
  controls.Idle = {ui_->cmdStart, ui_->cmdSave, ui_->cmdExit};
  controls.Figures = {
      {Readout::Frequency, ui_->lblFreq, "0.0#####"},   {Readout::TestLevel, ui_->lblTestLevel, "##0.000"},
      {Readout::SigGenLevel, ui_->lblSigGen, "##0.00"}, {Readout::MeterLevel, ui_->lblMeterLevel, "##0.00"},
      {Readout::ForwardPower, ui_->lblFwdPwr, "0.000"}, {Readout::CableLoss, ui_->lblCableLoss, "#0.00"},
      {Readout::Elapsed, ui_->lblElapsed, "###0.0#"},   {Readout::Remaining, ui_->lblEstTime, "###0.0"}};
  SetUp(controls, table_, calibration_.Unsaved());
  new AlignedNumbers(*ui_->flxCalData, {{6}});
  for (QWidget* const button : {ui_->cmdStart, ui_->cmdSave}) button->setEnabled(false);
  ui_->mnuFileSaveAs->setEnabled(false);
  On(ui_->cmdStart, [this] { RunFrom([this] { calibration_.Run(); }); });
  On(ui_->cmdSave, [this] { calibration_.Save(); });
  On(ui_->mnuFileSaveAs, [this] { calibration_.Save(); });
  connect(ui_->cmdExit, &QPushButton::clicked, this, &QWidget::close);
  SetUpCurves();
  RestoreLayout(windowkey::kRunCalForm);
}

frmRunCal::~frmRunCal() = default;

void frmRunCal::SetUpCurves() {
  const auto make = [this](std::size_t quantity) -> const RowCurves& {
    curves_ = std::make_unique<CalRunCurves>(static_cast<CalQuantity>(quantity), calibration_.Rows(), targets_);
    return *curves_;
  };
  // In the order of CalQuantity.
  Curves().SetSource({{{"Level", "Level"}, {"Generator", "Generator"}, {"Power", "Power"}, {"Gain", "Gain"}},
                      make,
                      [this](int row) { return curves_->Add(calibration_.Rows(), row); }},
                     *ui_->flxCalData);
}

void frmRunCal::Load() {
  // Before anything can fail: a message stands in front of a window that says what it is.
  SetCaption(ToQt(calibration_.Title()));
  const bool forward = calibration_.Setup().RecordsForward();
  ui_->lblFwdPwr->setEnabled(forward);
  ui_->lblFwdPwrCap->setEnabled(forward);
  bool ready = false;
  Guard("Load", [&] {
    ready = calibration_.Prepare();
    if (ready) targets_ = calibration_.Targets();
  });
  Curves().Renew();
  ui_->cmdStart->setEnabled(ready);
  if (ready) ui_->cmdStart->setFocus();
}

void frmRunCal::Continue(FormerRun<CalRows> former) {
  Guard("Continue", [&] {
    const Done taken = calibration_.Continue(std::move(former));
    if (!taken) return shell_.dialogs.Tell(NotContinuedText(taken.error()), MessageIcon::Exclamation);
    ui_->prgSteps->setValue(static_cast<int>(calibration_.Rows().size()));
    ui_->cmdSave->setEnabled(true);
    ui_->mnuFileSaveAs->setEnabled(true);
  });
}

void frmRunCal::StartAfresh() {
  RunWindow::StartAfresh();
  ui_->lblTestLevel->setToolTip(testLevelTip_);
}

void frmRunCal::SetRunning(bool running) {
  RunWindow::SetRunning(running);
  const bool unsaved = !calibration_.Rows().empty() && !calibration_.Unsaved().AreSaved();
  (running ? static_cast<QWidget*>(ui_->cmdHalt) : unsaved ? ui_->cmdSave : ui_->cmdExit)->setFocus();
}

/// Level and power as the operator knows them: volts and watts.
void frmRunCal::Show(Readout readout, std::optional<double> value) {
  if (value && readout == Readout::ForwardPower) value = Conversions::DbmToWatts(*value);
  if (value && readout == Readout::TestLevel) {
    value = Conversions::DbuvToVolts(*value);
    ui_->lblTestLevel->setToolTip(ToQt(ShortestText(*value)));
  }
  RunWindow::Show(readout, value);
}

}  // namespace hylden
