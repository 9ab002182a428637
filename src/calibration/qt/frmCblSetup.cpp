#include "calibration/qt/frmCblSetup.h"

#include "calibration/CableCalibration.h"
#include "documents/Documents.h"
#include "documents/qt/EntryPrompt.h"
#include "measure/ReadFreq.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "ui_frmCblSetup.h"
#include "widgets/EntryControls.h"

namespace hylden {

namespace {

/// Every entry beside its control, once: showing and reading walk this list.
template <class Visitor>
void WalkEntries(const Ui::frmCblSetup& ui, CableSetupEntries& e, const Visitor& visit) {
  visit(*ui.txtStartFreq, e.StartFreq);
  visit(*ui.txtStopFreq, e.StopFreq);
  visit({ui.optLinStep, ui.optLogStep, ui.optListStep}, e.StepType);
  visit(*ui.txtLinearStep, e.LinearStep);
  visit(*ui.txtLogStep, e.LogStep);
  visit(*ui.lblListFile, e.ListFile);
  visit(*ui.txtDwell, e.Dwell);
  visit(*ui.txtLev, e.Level);
}

}  // namespace

frmCblSetup::frmCblSetup(Shell& shell, Documents& documents, RunCablCal& calibration, QWidget* parent)
    : SetupForm(shell, parent), documents_(documents), run_(calibration), ui_(std::make_unique<Ui::frmCblSetup>()) {
  ui_->setupUi(this);
  for (QRadioButton* const option : {ui_->optLinStep, ui_->optLogStep, ui_->optListStep})
    connect(option, &QRadioButton::clicked, this, &frmCblSetup::EnableControls);
  ui_->lblListFile->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(ui_->lblListFile, &QWidget::customContextMenuRequested, ui_->cmdCreateList, &QPushButton::click);
  On(ui_->cmdListFile, [this] { SelectListFile(); });
  On(ui_->cmdCreateList, [this] { CreateList(); });
  On(ui_->cmdStart, [this] { Start(); });
  connect(ui_->cmdHelp, &QPushButton::clicked, this, [this] { emit HelpRequested(HelpTopic()); });
  connect(ui_->cmdExit, &QPushButton::clicked, this, &QWidget::close);
  Offer(false);
  ShowEntries(EntriesOf(run_.Setup));
}

frmCblSetup::~frmCblSetup() = default;

void frmCblSetup::Offer(bool listBuilder) {
  ui_->cmdCreateList->setEnabled(listBuilder);
  ui_->cmdCreateList->setToolTip(listBuilder ? QStringLiteral("Compose a frequency list")
                                             : QStringLiteral("This version has no form for it"));
}

CableSetupEntries frmCblSetup::Entries() const {
  CableSetupEntries entries;
  WalkEntries(*ui_, entries, EntryReader());
  return entries;
}

void frmCblSetup::ShowEntries(CableSetupEntries entries) {
  WalkEntries(*ui_, entries, EntryShower());
  EnableControls();
}

void frmCblSetup::EnableControls() {
  const EnabledCableControls enabled = EnabledControlsFor(Entries());
  ui_->txtLinearStep->setEnabled(enabled.LinearStep);
  ui_->txtLogStep->setEnabled(enabled.LogStep);
  ui_->lblListFile->setEnabled(enabled.ListFile);
}

void frmCblSetup::SelectListFile() {
  if (const auto path = AskListFile(ui_->lblListFile->Path())) UseList(ToQt(*path));
}

void frmCblSetup::UseList(const QString& path) {
  std::vector<double> frequencies;
  if (ReadFreq(shell_).FileTolist(FromQt(path), frequencies) < 1) return;
  CableSetupEntries entries = Entries();
  entries.ListFile = FromQt(path);
  entries.StepType = static_cast<std::int32_t>(StepType::List);
  ShowEntries(entries);
}

void frmCblSetup::CreateList() {
  emit CreateListRequested(ToQt(ui_->lblListFile->Path()));
}

void frmCblSetup::Start() {
  if (const auto missing = CheckCableStation(documents_.equip)) {
    shell_.dialogs.Tell(missing->Text);
    emit EditEquipmentRequested(missing->EquipmentTab);
    return;
  }
  if (const auto failure = ValidateCableSetup(Entries(), run_.Setup)) {
    PointOut(*this, *failure, shell_.dialogs);
    return;
  }
  if (run_.BuildPlan()) emit StartRequested();
}

}  // namespace hylden
