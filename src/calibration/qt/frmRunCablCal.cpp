#include "calibration/qt/frmRunCablCal.h"

#include <algorithm>

#include "instruments/Instruments.h"
#include "shell/Shell.h"
#include "ui_frmRunCablCal.h"
#include "widgets/AlignedNumbers.h"
#include "widgets/LabelText.h"

namespace hylden {

namespace {

enum Column : std::size_t { kFrequency, kSigGen, kDirect, kInsert, kLoss };

std::string Text(double value, std::string_view pattern, bool known) {
  return known ? Format(value, pattern) : std::string();
}

}  // namespace

frmRunCablCal::frmRunCablCal(Shell& shell, Instruments& instruments, RunCablCal& calibration, QWidget* parent)
    : CalibrationWindow(shell, instruments.sigGen, parent),
      run_(calibration),
      ui_(std::make_unique<Ui::frmRunCablCal>()),
      table_({"Frequency", "SigGen dBm", "Direct", "Insert", "IL dB"},
             [this](std::size_t row, std::size_t column) { return Cell(row, column); }) {
  ui_->setupUi(this);
  SetUp({ui_->lblFreq, ui_->lblSigGen, ui_->lblMeterLevel, ui_->lblCountdown, ui_->lblStep, ui_->lblSteps,
         ui_->lblStart, ui_->lblStop, ui_->lblDwell, ui_->lblElapsed, ui_->lblEstTime, ui_->lblState, ui_->lblRf,
         ui_->prgSteps, ui_->lvwData, ui_->mnuFile, ui_->cmdHalt, ui_->cmdExit},
        {"####0.0####", "##0.0#", "##0.0#"}, table_);
  new AlignedNumbers(*ui_->lvwData, {{5}, {2}, {2}, {2}, {2}});
  OnRun(ui_->cmdDirect, [this] { StartPass(false); });
  OnRun(ui_->cmdInsert, [this] { StartPass(true); });
  On(ui_->cmdSave, [this] { run_.SaveFile(); });
  On(ui_->mnuFileSaveAs, [this] { run_.SaveFile(); });
  connect(ui_->mnuFileExit, &QAction::triggered, this, &QWidget::close);
  connect(ui_->mnuHelpRun, &QAction::triggered, this, [this] { emit HelpRequested(HelpTopic()); });
  if (!run_.Points().empty())
    CalibrationWindow::Plan({static_cast<int>(run_.Points().size()), run_.Points().front().Freq,
                             run_.Points().back().Freq, run_.Setup.Dwell});
  ShowReadings();
}

frmRunCablCal::~frmRunCablCal() = default;

void frmRunCablCal::StartPass(bool inserted) {
  inserted_ = inserted;
  emit PassStarting(inserted);
  if (inserted)
    run_.InsertPass(*this);
  else
    run_.DirectPass(*this);
}

void frmRunCablCal::SetRunning(bool running) {
  passing_ = running;
  EnablePasses(!running);
  CalibrationWindow::SetRunning(running);
  if (running) return;
  ShowReadings();
  (inserted_ ? ui_->cmdSave : ui_->cmdInsert)->setFocus();
}

/// Every point that has been read, whichever pass it comes from.
void frmRunCablCal::ShowReadings() {
  const auto& points = run_.Points();
  const auto read = std::count_if(points.begin(), points.end(), [](const CablePoint& p) { return p.HasDirect(); });
  CalibrationWindow::RowChanged(0);
  CalibrationWindow::RowChanged(static_cast<int>(read));
}

void frmRunCablCal::EnablePasses(bool enabled) {
  for (QPushButton* const button : {ui_->cmdDirect, ui_->cmdInsert, ui_->cmdSave}) button->setEnabled(enabled);
}

void frmRunCablCal::Show(Readout readout, std::optional<double> value) {
  if (readout == Readout::MeterLevel) ++measured_;
  CalibrationWindow::Show(readout, value);
}

void frmRunCablCal::RowChanged(int row) {
  if (row == 0) measured_ = 0;
  CalibrationWindow::RowChanged(row);
}

/// During a pass readings of an earlier one are not shown as this one's.
std::string frmRunCablCal::Cell(std::size_t row, std::size_t column) const {
  if (row >= run_.Points().size()) return {};
  const CablePoint& point = run_.Points()[row];
  const bool now = !passing_ || row < measured_;
  const bool loss = (inserted_ || !passing_) && now && point.HasBoth();
  switch (column) {
    case kFrequency:
      return Format(point.Freq, "####0.0####");
    case kSigGen:
      return Format(double{point.SigGenLevel}, "##0.0#");
    case kDirect:
      return Text(point.Direct, "###0.0#", point.HasDirect() && (inserted_ || now));
    case kInsert:
      return Text(point.Insert, "###0.0#", loss);
    case kLoss:
      return Text(point.Loss, "###0.0#", loss);
    default:
      return {};
  }
}

}  // namespace hylden
