#include "calibration/qt/frmRunCablCal.h"

#include <algorithm>

#include "instruments/Instruments.h"
#include "run/qt/RunCurvePanel.h"
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
    : RunWindow(shell, instruments.sigGen, parent),
      run_(calibration),
      ui_(std::make_unique<Ui::frmRunCablCal>()),
      table_({"Frequency", "SigGen dBm", "Direct", "Insert", "IL dB"},
             [this](std::size_t row, std::size_t column) { return Cell(row, column); }) {
  ui_->setupUi(this);
  Controls controls = Controls::Of(*ui_);
  controls.Start = ui_->lblStart;
  controls.Stop = ui_->lblStop;
  controls.Dwell = ui_->lblDwell;
  controls.Table = ui_->lvwData;
  controls.Halt = ui_->cmdHalt;
  controls.Idle = {ui_->cmdDirect, ui_->cmdInsert, ui_->cmdSave, ui_->cmdExit};
  controls.Figures = {{Readout::Frequency, ui_->lblFreq, "####0.0####"},
                      {Readout::SigGenLevel, ui_->lblSigGen, "##0.0#"},
                      {Readout::MeterLevel, ui_->lblMeterLevel, "##0.0#"},
                      {Readout::Elapsed, ui_->lblElapsed, "###0.0#"},
                      {Readout::Remaining, ui_->lblEstTime, "###0.0"}};
  SetUp(controls, table_, run_.Unsaved());
  new AlignedNumbers(*ui_->lvwData, {{5}, {2}, {2}, {2}, {2}});
  On(ui_->cmdDirect, [this] { RunFrom([this] { StartPass(false); }); });
  On(ui_->cmdInsert, [this] { RunFrom([this] { StartPass(true); }); });
  On(ui_->cmdSave, [this] { run_.SaveFile(); });
  On(ui_->mnuFileSaveAs, [this] { run_.SaveFile(); });
  connect(ui_->cmdExit, &QPushButton::clicked, this, &QWidget::close);
  if (!run_.Points().empty())
    RunWindow::Plan({static_cast<int>(run_.Points().size()), run_.Points().front().Freq, run_.Points().back().Freq,
                     run_.Setup.Dwell});
  SetUpCurves();
  ShowReadings();
  RestoreLayout(windowkey::kRunCablCalForm);
}

frmRunCablCal::~frmRunCablCal() = default;

void frmRunCablCal::SetUpCurves() {
  const auto make = [this](std::size_t quantity) -> const RowCurves& {
    curves_ = std::make_unique<CableCurves>(static_cast<CableQuantity>(quantity), run_.Points(), Shown());
    return *curves_;
  };
  // In the order of CableQuantity.
  Curves().SetSource({{{"Direct and insert", "Readings"}, {"Insertion loss", "Loss"}},
                      make,
                      [this](int row) { return curves_->Add(run_.Points(), row, Shown()); }},
                     *ui_->lvwData);
}

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
  RunWindow::SetRunning(running);
  if (!running) ShowReadings();
  (running ? static_cast<QWidget*>(ui_->cmdHalt) : inserted_ ? ui_->cmdSave : ui_->cmdInsert)->setFocus();
}

/// Every point that has been read, whichever pass it comes from.
void frmRunCablCal::ShowReadings() {
  const auto& points = run_.Points();
  const auto read = std::count_if(points.begin(), points.end(), [](const CablePoint& p) { return p.HasDirect(); });
  RunWindow::RowChanged(0);
  RunWindow::RowChanged(static_cast<int>(read));
}

void frmRunCablCal::Show(Readout readout, std::optional<double> value) {
  if (readout == Readout::MeterLevel) ++measured_;
  RunWindow::Show(readout, value);
}

void frmRunCablCal::RowChanged(int row) {
  if (row == 0) measured_ = 0;
  RunWindow::RowChanged(row);
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
