#include "calibration/frmRunCablCal.h"

#include "instruments/Instruments.h"
#include "platform/qt/LabelText.h"
#include "shell/Shell.h"
#include "ui_frmRunCablCal.h"

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
  connect(ui_->cmdDirect, &QPushButton::clicked, this, [this] { StartPass(false); });
  connect(ui_->cmdInsert, &QPushButton::clicked, this, [this] { StartPass(true); });
  connect(ui_->cmdSave, &QPushButton::clicked, this, &frmRunCablCal::Save);
  connect(ui_->mnuFileSaveAs, &QAction::triggered, this, &frmRunCablCal::Save);
  connect(ui_->mnuFileExit, &QAction::triggered, this, &QWidget::close);
  connect(ui_->mnuHelpRun, &QAction::triggered, this, [this] { emit HelpRequested(HelpTopic()); });
  if (!run_.Points().empty())
    CalibrationWindow::Plan({static_cast<int>(run_.Points().size()), run_.Points().front().Freq,
                             run_.Points().back().Freq, run_.Setup.Dwell});
}

frmRunCablCal::~frmRunCablCal() = default;

void frmRunCablCal::StartPass(bool inserted) {
  RunFrom([this, inserted] {
    const bool shown = inserted_;
    inserted_ = inserted;
    emit PassStarting(inserted);
    if (inserted)
      run_.InsertPass(*this);
    else
      run_.DirectPass(*this);
    if (measured_ == 0) inserted_ = shown;  // nothing came of it
  });
}

void frmRunCablCal::Running(bool running) {
  EnablePasses(!running);
  CalibrationWindow::Running(running);
  if (!running) (inserted_ ? ui_->cmdSave : ui_->cmdInsert)->setFocus();
}

void frmRunCablCal::EnablePasses(bool enabled) {
  for (QPushButton* const button : {ui_->cmdDirect, ui_->cmdInsert, ui_->cmdSave}) button->setEnabled(enabled);
}

void frmRunCablCal::MeterLevel(double levelDbuv) {
  ++measured_;
  CalibrationWindow::MeterLevel(levelDbuv);
}

void frmRunCablCal::TableCut(int rows) {
  if (rows == 0) measured_ = 0;
  CalibrationWindow::TableCut(rows);
}

/// Readings of an earlier pass are not shown as this one's.
std::string frmRunCablCal::Cell(std::size_t row, std::size_t column) const {
  if (row >= run_.Points().size()) return {};
  const CablePoint& point = run_.Points()[row];
  const bool now = row < measured_;
  switch (column) {
    case kFrequency:
      return Format(point.Freq, "####0.0####");
    case kSigGen:
      return Format(double{point.SigGenLevel}, "##0.0#");
    case kDirect:
      return Text(point.Direct, "###0.0#", point.HasDirect() && (inserted_ || now));
    case kInsert:
      return Text(point.Insert, "###0.0#", inserted_ && now && point.HasBoth());
    case kLoss:
      return Text(point.Loss, "###0.0#", inserted_ && now && point.HasBoth());
    default:
      return {};
  }
}

void frmRunCablCal::Save() {
  Guard("cmdSave", [this] { run_.SaveFile(); });
}

}  // namespace hylden
