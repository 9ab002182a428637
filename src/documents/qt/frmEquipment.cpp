#include "documents/qt/frmEquipment.h"

#include "documents/Equip.h"
#include "instruments/Instruments.h"
#include "measure/InterpClass.h"
#include "platform/qt/QtText.h"
#include "shell/FormInput.h"
#include "shell/Shell.h"
#include "shell/qt/AboutBox.h"
#include "shell/qt/FormPrompts.h"
#include "shell/qt/OptionsMenu.h"
#include "ui_frmEquipment.h"
#include "widgets/ThemeColors.h"

namespace hylden {

namespace {

constexpr char kEquipFilter[] = "Equipment Setup Files (*.eqp)|*.eqp|All Files|*.*";
constexpr char kSelectEquipment[] = "Select equipment file";
constexpr char kFactorFilter[] = "Factor File (*.fac)|*.fac", kFactorTitle[] = "Select coupling factor file";

/// Red and struck through: a path to nothing that can be used.
void MarkFailed(QLabel& label, bool failed) {
  label.setFont({});
  label.setPalette({});
  if (!failed) return;
  QFont font = label.font();
  font.setStrikeOut(true);
  label.setFont(font);
  QPalette palette = label.palette();
  palette.setColor(QPalette::WindowText, HighlightRed(palette));
  label.setPalette(palette);
}

}  // namespace

/// An instrument's place in the record and on the form.
struct frmEquipment::InstrumentRow {
  std::string& file;
  std::int16_t& address;
  PathLabel& label;
  QLineEdit& box;
};

/// A table's place in the record and on the form, and the dialog that chooses it.
struct frmEquipment::TableRow {
  QPushButton* button;
  QAction* entry;
  QToolButton* clear;
  PathLabel* label;
  std::string EquipRecord::*file;
  std::string_view directory;
  const char* filter;
  const char* title;
};

frmEquipment::frmEquipment(Shell& shell, Instruments& instruments, Equip& equip, QWidget* parent)
    : SetupForm(shell, parent, "Save Equipment", "The equipment"),
      instruments_(instruments),
      equip_(equip),
      ui_(std::make_unique<Ui::frmEquipment>()) {
  ui_->setupUi(this);
  ConnectFileMenu();
  ConnectInstruments();
  ConnectTables();
  ConnectAmplifier();
  ShowFileName();
  ShowRecord();
  WatchEntries();
  KeepUnsaved();
}

frmEquipment::~frmEquipment() = default;

void frmEquipment::ConnectFileMenu() {
  OfferFiles(ui_->mnuFileRecent, datakind::kEquip, QStringLiteral("eqp"),
             [this](const QString& path) { LoadFile(path); });
  FillOptionsMenu(*ui_->mnuFileOptions, shell_);
  On(ui_->mnuEquipFileLoad, [this] { AskAndLoad(); });
  On(ui_->mnuEquipFileSave, [this] { SaveEntries(); });
  On(ui_->mnuEquipFileSaveAs, [this] { SaveAs(); });
  On(ui_->mnuUtilInsertLoss, [this] { RequestInsertionLoss(); });
  On(ui_->mnuUtilBus, [this] {
    if (ApplyEquipment()) emit BusRequested();
  });
  On(ui_->mnuUtilInterpolate, [this] { emit UtilityRequested(Utility::Interpolation); });
  On(ui_->mnuUtilShortcut, [this] { emit UtilityRequested(Utility::Shortcut); });
  On(ui_->mnuUtilSystem, [this] { emit UtilityRequested(Utility::SystemCheck); });
  connect(ui_->mnuHelpEquipment, &QAction::triggered, this, [this] { emit HelpRequested(HelpTopic()); });
  On(ui_->mnuHelpAbout, [this] { ShowAbout(shell_.dialogs); });
}

void frmEquipment::ConnectInstruments() {
  struct {
    InstrumentKind kind;
    QPushButton* button;
    QToolButton* clear;
    QAction* select;
    QAction* define;
  } const rows[] = {
      {InstrumentKind::SigGen, ui_->cmdSigGen, ui_->cmdNoSigGen, ui_->mnuInstSelSigGen, ui_->mnuInstDefineSigGen},
      {InstrumentKind::Meter, ui_->cmdMeter, ui_->cmdNoMeter, ui_->mnuInstSelMeter, ui_->mnuInstDefineMeter},
      {InstrumentKind::PwrMtr, ui_->cmdPwrMtr, ui_->cmdNoPwrMtr, ui_->mnuInstSelPwrMtr, ui_->mnuInstDefinePwrMtr},
  };
  for (const auto& row : rows) {
    const auto select = [this, kind = row.kind] { SelectInstrument(kind); };
    On(row.button, select);
    On(row.select, select);
    On(row.clear, [this, kind = row.kind] { ClearInstrument(kind); });
    On(row.define, [this, kind = row.kind] {
      if (ApplyEquipment()) emit DefineInstrumentRequested(kind);
    });
  }
}

void frmEquipment::ConnectTables() {
  const TableRow rows[] = {
      {ui_->cmdCalCable, ui_->mnuFactorsSelectCalCable, ui_->cmdNoCalCable, ui_->lblCalCable,
       &EquipRecord::CableLossFile, datakind::kCables, "Cable Loss File (*.los)|*.los", "Select cable loss file"},
      {ui_->cmdFwdPort, ui_->mnuFactorsSelectFwdPort, ui_->cmdNoFwdPort, ui_->lblFwdPort, &EquipRecord::FwdPortFile,
       datakind::kFactors, kFactorFilter, kFactorTitle},
      {ui_->cmdRevPort, ui_->mnuFactorsSelectRevPort, ui_->cmdNoRevPort, ui_->lblRevPort, &EquipRecord::RevPortFile,
       datakind::kFactors, kFactorFilter, kFactorTitle},
      {ui_->cmdMaxPower, ui_->mnuFactorsSelectMaxPower, ui_->cmdNoMaxPower, ui_->lblMaxPower,
       &EquipRecord::MaxPowerFile, datakind::kEquip, "Amp Power File (*.pwr)|*.pwr", "Select Max Amp Power file"},
      {ui_->cmdProbe, ui_->mnuFactorsSelectProbe, ui_->cmdNoProbe, ui_->lblProbeFile, &EquipRecord::ProbeFile,
       datakind::kProbes, "Probe File (*.prb)|*.prb", "Select Monitor Probe Factor file"},
  };
  for (const TableRow& row : rows) {
    On(row.button, [this, row] { SelectTable(row); });
    On(row.entry, [this, row] { SelectTable(row); });
    On(row.clear, [this, row] {
      (equip_.Record.*row.file).clear();
      FitPathLabel({}, *row.label);
    });
  }
  connect(ui_->mnuFactorEditFactor, &QAction::triggered, this,
          [this] { emit EditFactorRequested(FactorKind::Factor); });
  connect(ui_->mnuFactorEditLevel, &QAction::triggered, this, [this] { emit EditFactorRequested(FactorKind::Level); });
  connect(ui_->mnuFactorEditLoss, &QAction::triggered, this, [this] { emit EditFactorRequested(FactorKind::Loss); });
}

void frmEquipment::ConnectAmplifier() {
  const std::pair<QRadioButton*, AmpConfig> configurations[] = {{ui_->optSingle, AmpConfig::Single},
                                                                {ui_->optDualFwdRev, AmpConfig::DualFwdRev},
                                                                {ui_->optDualSplit, AmpConfig::DualSplit}};
  for (const auto& [option, code] : configurations)
    On(option, [this, code = code] { equip_.Record.AmpConfiguration = code; });
  On(ui_->optGenericAmp, [this] { equip_.Record.AmplifierType = AmpType::Generic; });
  On(ui_->optIFIAmp, [this] { equip_.Record.AmplifierType = AmpType::Ifi; });
  connect(ui_->chkIfiPwr, &QCheckBox::clicked, this, [this](bool ticked) { equip_.Record.IfiPower = ticked; });
  connect(ui_->chkIfiAtten, &QCheckBox::clicked, this, [this](bool ticked) { equip_.Record.IfiAtten = ticked; });
}

void frmEquipment::ShowTab(int tab) {
  ui_->tabSetup->setCurrentIndex(tab);
}

QString frmEquipment::HelpTopic() const {
  return QStringLiteral("Setting up a station");
}

frmEquipment::InstrumentRow frmEquipment::Row(InstrumentKind kind) {
  EquipRecord& record = equip_.Record;
  switch (kind) {
    case InstrumentKind::SigGen:
      return {record.SigGenFile, record.SigGenAddress, *ui_->lblSigGen, *ui_->txtSigGenAddr};
    case InstrumentKind::Meter:
      return {record.MeterFile, record.MeterAddress, *ui_->lblMeter, *ui_->txtMeterAddr};
    case InstrumentKind::PwrMtr:
      break;
  }
  return {record.PwrMtrFile, record.PwrMtrAddress, *ui_->lblPwrMtr, *ui_->txtPwrMtrAddr};
}

template <class Driver>
void frmEquipment::ShowInstrument(InstrumentKind kind, const Driver& driver) {
  const InstrumentRow row = Row(kind);
  FitPathLabel(row.file, row.label);
  row.box.setText(row.file.empty() ? QString() : QString::number(row.address));
  const bool failed = !row.file.empty() && !driver.HasDefinition();
  MarkFailed(row.label, failed);
  if (failed)
    row.label.setToolTip(QStringLiteral("This definition could not be loaded, so the instrument can't be used:\n") +
                         ToQt(row.file));
  else if (!row.file.empty())
    row.label.setToolTip(ToQt(driver.InstrumentName()));
}

void frmEquipment::ShowInstruments() {
  ShowInstrument(InstrumentKind::SigGen, instruments_.sigGen);
  ShowInstrument(InstrumentKind::Meter, instruments_.meter);
  ShowInstrument(InstrumentKind::PwrMtr, instruments_.pm);
}

void frmEquipment::SelectInstrument(InstrumentKind kind) {
  switch (kind) {
    case InstrumentKind::SigGen:
      return SelectDefinition(instruments_.sigGen, kind);
    case InstrumentKind::Meter:
      return SelectDefinition(instruments_.meter, kind);
    case InstrumentKind::PwrMtr:
      return SelectDefinition(instruments_.pm, kind);
  }
}

template <class Driver>
void frmEquipment::SelectDefinition(Driver& driver, InstrumentKind kind) {
  const InstrumentRow row = Row(kind);
  const DefinitionTexts& texts = TextsOf(kind);
  driver.SetAddress(row.address);
  const auto path = AskFile(texts.LoadTitle, texts.Filter, datakind::kEquip, row.file);
  if (!path) return;
  if (shell_.Ok(driver.LoadFileOrKeep(*path))) TakeDefinition(driver, kind);
}

template <class Driver>
void frmEquipment::TakeDefinition(const Driver& driver, InstrumentKind kind) {
  const InstrumentRow row = Row(kind);
  row.file = driver.FileName();
  row.address = static_cast<std::int16_t>(driver.Address());
  ShowInstrument(kind, driver);
  ShowMark();
}

void frmEquipment::UseDefinition(InstrumentKind kind) {
  switch (kind) {
    case InstrumentKind::SigGen:
      return TakeDefinition(instruments_.sigGen, kind);
    case InstrumentKind::Meter:
      return TakeDefinition(instruments_.meter, kind);
    case InstrumentKind::PwrMtr:
      return TakeDefinition(instruments_.pm, kind);
  }
}

void frmEquipment::ClearInstrument(InstrumentKind kind) {
  const InstrumentRow row = Row(kind);
  row.file.clear();
  FitPathLabel({}, row.label);
  MarkFailed(row.label, false);
  row.box.clear();
}

void frmEquipment::SelectTable(const TableRow& row) {
  const auto path = AskFile(row.title, row.filter, row.directory, equip_.Record.*row.file);
  if (!path) return;
  InterpClass table(shell_);
  if (!shell_.Ok(table.InitInterp(*path))) return;
  equip_.Record.*row.file = *path;
  FitPathLabel(*path, *row.label);
}

void frmEquipment::ShowRecord() {
  const EquipRecord& record = equip_.Record;
  ShowEntries(EntriesOf(record));
  ShowInstruments();
  ui_->txtPmBandSwitchFreq->setText(record.PwrMtrFile.empty() ? QString() : ui_->txtIfiBandSwitch->text());
}

void frmEquipment::ShowChanges() {
  const bool changed = !(Entries() == EntriesOf(equip_.Record));
  ShowRecord();
  ShowFileName();
  if (changed) KeepUnsaved();  // the other form has asked about it
}

void frmEquipment::ShowFileName() {
  const std::string& path = equip_.EquipFileName;
  SetCaption(QStringLiteral("Equipment File: ") + ToQt(path));
  ShowSaveTarget(*ui_->mnuEquipFileSave, FileNameOnly(path));
}

UsedControls frmEquipment::UsedNow() const {
  return UsedWith(Entries(), equip_.Record);
}

void frmEquipment::EnableControls() {
  SetupForm::EnableControls();
  ui_->lblBandSwitchFreq->setEnabled(ui_->optDualSplit->isChecked());
  ui_->txtPmBandSwitchFreq->setEnabled(false);  // it shows what the amplifier's band switch says
}

bool frmEquipment::ApplyEquipment() {
  const auto failure = equip_.TakeEntries(Entries());
  emit EntriesTaken();
  if (failure) PointOut(*this, *failure, shell_.dialogs);
  return !failure;
}

void frmEquipment::AskAndLoad() {
  if (const auto path = AskFile(kSelectEquipment, kEquipFilter, datakind::kEquip, equip_.EquipFileName))
    LoadFile(ToQt(*path));
}

void frmEquipment::LoadFile(const QString& path) {
  Guard("mnuEquipFileLoad", [&] {
    if (!MayDropEntries()) return;
    const std::string file = FromQt(path);
    if (!shell_.Ok(equip_.LoadDef(file))) return;
    equip_.EquipFileName = file;
    ForgetKept();
    ShowFileName();
    emit StationLoaded();
    ShowRecord();
    AddRecentFile(file);
  });
}

bool frmEquipment::QueryUnload() {
  return ApplyEquipment() && MayLeave();
}

std::optional<FormEntries> frmEquipment::SavedEntries() const {
  return EntriesOf(equip_.Saved);
}

bool frmEquipment::SaveEntries() {
  const std::string file = equip_.EquipFileName;
  return file.empty() ? SaveAs() : SaveTo(file);
}

bool frmEquipment::SaveAs() {
  const auto path = AskSaveFile(kSelectEquipment, kEquipFilter, datakind::kEquip, equip_.EquipFileName);
  return path && SaveTo(*path);
}

bool frmEquipment::SaveTo(const std::string& path) {
  if (!ApplyEquipment() || !shell_.Ok(equip_.SaveDef(path))) return false;
  equip_.EquipFileName = path;
  ForgetKept();
  ShowRecord();
  ShowFileName();
  AddRecentFile(path);
  shell_.Saved(path);
  return true;
}

void frmEquipment::RequestInsertionLoss() {
  if (equip_.Record.SigGenFile.empty() || equip_.Record.MeterFile.empty()) {
    shell_.dialogs.Tell("The signal generator and meter must both be selected first");
    return;
  }
  if (ApplyEquipment()) emit InsertionLossRequested();
}

}  // namespace hylden
