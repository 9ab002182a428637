#include "calibration/qt/frmCblSetup.h"

#include "calibration/CableCalibration.h"
#include "documents/CurveOverlay.h"
#include "documents/Documents.h"
#include "measure/ReadFreq.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "shell/qt/FormPrompts.h"
#include "ui_frmCblSetup.h"

namespace hylden {

frmCblSetup::frmCblSetup(Shell& shell, Documents& documents, RunCablCal& calibration, QWidget* parent)
    : RunSetupForm(shell, parent, "", ""),
      documents_(documents),
      run_(calibration),
      ui_(std::make_unique<Ui::frmCblSetup>()) {
  ui_->setupUi(this);
  ui_->lblListFile->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(ui_->lblListFile, &QWidget::customContextMenuRequested, ui_->cmdCreateList, &QPushButton::click);
  ConnectList();
  On(ui_->cmdStart, [this] { Start(); });
  On(ui_->cmdCurves, [this] { emit CurvesRequested(CurveKind::InsertionLoss, {}); });
  connect(ui_->cmdHelp, &QPushButton::clicked, this, [this] { emit HelpRequested(HelpTopic()); });
  connect(ui_->cmdExit, &QPushButton::clicked, this, &QWidget::close);
  ShowEntries(EntriesOf(run_.Setup));
}

frmCblSetup::~frmCblSetup() = default;

UsedControls frmCblSetup::UsedNow() const {
  return UsedWith(Entries(), run_.Setup);
}

void frmCblSetup::UseList(const QString& path) {
  if (!shell_.Ok(ReadFreq::FileTolist(FromQt(path)))) return;
  FitPathLabel(FromQt(path), *ui_->lblListFile);
  ui_->optListStep->setChecked(true);
  EnableControls();
}

void frmCblSetup::Start() {
  if (TellMissing(CheckCableStation(documents_.equip))) return;
  if (const auto failure = ValidateCableSetup(Entries(), run_.Setup)) {
    PointOut(*this, *failure, shell_.dialogs);
    return;
  }
  if (run_.BuildPlan()) emit StartRequested();
}

}  // namespace hylden
