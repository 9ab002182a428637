#include "documents/frmCalSetup.h"

#include "documents/Documents.h"
#include "documents/qt/EntryControls.h"
#include "documents/qt/EntryPrompt.h"
#include "instruments/Instruments.h"
#include "measure/InterpClass.h"
#include "platform/qt/FileDrop.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "shell/qt/RecentFilesMenu.h"
#include "text/Numbers.h"
#include "ui_frmCalSetup.h"

namespace hylden {

namespace {

constexpr char kSetupFilter[] = "Cal Setup Files (*.csu)|*.csu|All Files|*.*";
constexpr char kListFilter[] = "Frequency List (*.lst)|*.lst|All Files|*.*";
constexpr char kLevelFilter[] = "Test Level (*.lev)|*.lev|All Files|*.*";
constexpr char kInterDwell[] = "1.0";

/// Every entry beside its control, once: showing and reading walk this list.
template <class Visitor>
void WalkEntries(const Ui::frmCalSetup& ui, CalSetupEntries& e, const Visitor& visit) {
  visit(*ui.txtStartFreq, e.StartFreq);
  visit(*ui.txtStopFreq, e.StopFreq);
  visit({ui.optLinStep, ui.optLogStep, ui.optListStep}, e.StepType);
  visit(*ui.txtLinearStep, e.LinearStep);
  visit(*ui.txtLogStep, e.LogStep);
  visit(*ui.lblListFile, e.ListFile);
  visit({ui.optLimitFlat, ui.optLimitFile}, e.LimitType);
  visit(*ui.txtCalLevel, e.CalLevel);
  visit(*ui.lblLimitFile, e.LimitFile);
  visit(*ui.txtMaxLev, e.MaxLevel);
  visit(*ui.txtMaxStep, e.MaxStep);
  visit(*ui.txtInitLev, e.InitLevel);
  visit(*ui.chkRecordFP, e.RecordFwdPwr);
  visit(*ui.chkRecordRP, e.RecordRevPwr);
  visit(*ui.chkLimitFwdPwr, e.LimitFwdPwr);
  visit(*ui.txtFwdPwrLimit, e.FwdPwrLimit);
  visit(*ui.txtFinalDwell, e.FinalDwell);
  visit(*ui.txtDeviceDescription, e.DeviceDescription);
  visit(*ui.txtAmpUsed, e.AmpUsed);
  visit({ui.opt150ohm, ui.opt50ohm, ui.opt50ohm50141, ui.optUserDefinedCF}, e.CouplingMethod);
  visit(*ui.txtUserDefCF, e.UserDefCF);
  visit(*ui.txtSetupDescription, e.SetupDescription);
}

}  // namespace

frmCalSetup::frmCalSetup(Shell& shell, Instruments& instruments, Documents& documents, QWidget* parent)
    : WorkingForm(parent),
      shell_(shell),
      instruments_(instruments),
      documents_(documents),
      ui_(std::make_unique<Ui::frmCalSetup>()) {
  ui_->setupUi(this);
  ConnectCommands();
  ConnectRules();
  Offer(false, false);
  new FileDrop(this, QStringLiteral("csu"), [this](const QString& path) { LoadFile(path); });
  CalSetupEntries design;
  ShowEntries(design);
  documents_.calSetup.SetOpeningDefaults(design.InitLevel, static_cast<double>(instruments_.meter.SettlingTime()));
  SetupToForm();
  ShowFile();
}

frmCalSetup::~frmCalSetup() = default;

void frmCalSetup::ConnectCommands() {
  recentFiles_ = new RecentFilesMenu(ui_->mnuFileRecent, shell_.settings, datakind::kCalibrations);
  connect(recentFiles_, &RecentFilesMenu::Chosen, this, &frmCalSetup::LoadFile);
  On(ui_->mnuFileLoad, &QAction::triggered, &frmCalSetup::Load);
  On(ui_->mnuFileSave, &QAction::triggered, &frmCalSetup::Save);
  On(ui_->mnuFileSaveAs, &QAction::triggered, &frmCalSetup::SaveAs);
  On(ui_->mnuStart, &QAction::triggered, &frmCalSetup::Start);
  On(ui_->cmdLoad, &QPushButton::clicked, &frmCalSetup::Load);
  On(ui_->cmdSave, &QPushButton::clicked, &frmCalSetup::SaveAs);
  On(ui_->cmdStart, &QPushButton::clicked, &frmCalSetup::Start);
  On(ui_->cmdListFile, &QPushButton::clicked, &frmCalSetup::SelectListFile);
  On(ui_->cmdLevelFile, &QPushButton::clicked, &frmCalSetup::SelectLevelFile);
  On(ui_->cmdCreateList, &QPushButton::clicked, &frmCalSetup::CreateList);
  connect(ui_->mnuEditList, &QAction::triggered, ui_->cmdCreateList, &QPushButton::click);
  ui_->lblListFile->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(ui_->lblListFile, &QWidget::customContextMenuRequested, ui_->cmdCreateList, &QPushButton::click);
  connect(ui_->mnuEditLevel, &QAction::triggered, this,
          [this] { emit EditLevelRequested(ToQt(ui_->lblLimitFile->Path())); });
  connect(ui_->cmdExit, &QPushButton::clicked, this, &frmCalSetup::close);
  connect(ui_->mnuFileExit, &QAction::triggered, this, &frmCalSetup::close);
  connect(ui_->mnuHelpCalibrations, &QAction::triggered, this, [this] { emit HelpRequested(HelpTopic()); });
}

void frmCalSetup::ConnectRules() {
  const std::initializer_list<QAbstractButton*> plain = {ui_->optLinStep,   ui_->optLogStep,    ui_->optListStep,
                                                         ui_->optLimitFlat, ui_->optLimitFile,  ui_->opt150ohm,
                                                         ui_->opt50ohm,     ui_->opt50ohm50141, ui_->optUserDefinedCF};
  for (QAbstractButton* const button : plain)
    connect(button, &QAbstractButton::clicked, this, &frmCalSetup::EnableControls);
  ApplyRule(ui_->chkLimitFwdPwr, LimitFwdPwrClicked);
  ApplyRule(ui_->chkRecordFP, RecordFwdPwrClicked);
  ApplyRule(ui_->chkRecordRP, RecordRevPwrClicked);
}

/// After a click on the control the rule changes the other entries.
void frmCalSetup::ApplyRule(const QObject* control, void (*rule)(CalSetupEntries&)) {
  connect(qobject_cast<const QAbstractButton*>(control), &QAbstractButton::clicked, this, [this, rule] {
    CalSetupEntries entries = Entries();
    rule(entries);
    ShowEntries(entries);
  });
}

/// Runs a command of the form; what it could not foresee is reported, since nothing may leave an event handler.
template <class Action>
void frmCalSetup::Guard(const QObject* control, Action action) {
  try {
    action();
  } catch (const std::exception& error) {
    shell_.ReportError(error, "frmCalSetup." + FromQt(control->objectName()));
  }
}

template <class Sender, class Signal>
void frmCalSetup::On(Sender* sender, Signal signal, void (frmCalSetup::*command)()) {
  connect(sender, signal, this, [this, sender, command] { Guard(sender, [&] { (this->*command)(); }); });
}

void frmCalSetup::Offer(bool listBuilder, bool factorEditor) {
  const QString missing = QStringLiteral("This version has no form for it");
  ui_->cmdCreateList->setEnabled(listBuilder);
  ui_->cmdCreateList->setToolTip(listBuilder ? QStringLiteral("Compose a frequency list") : missing);
  ui_->mnuEditList->setEnabled(listBuilder);
  ui_->mnuEditList->setToolTip(ui_->cmdCreateList->toolTip());
  ui_->mnuEditLevel->setEnabled(factorEditor);
  ui_->mnuEditLevel->setToolTip(factorEditor ? QStringLiteral("Edit a test level file") : missing);
  ui_->mnuEdit->setToolTipsVisible(true);
}

QString frmCalSetup::HelpTopic() const {
  constexpr const char* kTopics[] = {"calibration:frequency", "calibration:level", "calibration:coupling method",
                                     "calibration file information"};
  return QString::fromLatin1(kTopics[ui_->tabSetup->currentIndex()]);
}

bool frmCalSetup::QueryUnload() {
  Guard(this, [this] { FormToSetup(false); });
  return true;
}

CalSetupEntries frmCalSetup::Entries() const {
  CalSetupEntries entries;
  WalkEntries(*ui_, entries, EntryReader{CalSetupEntries::kNoChoice});
  return entries;
}

void frmCalSetup::ShowEntries(CalSetupEntries entries) {
  WalkEntries(*ui_, entries, EntryShower());
  EnableControls();
}

void frmCalSetup::SetupToForm() {
  CalSetupEntries entries = Entries();
  const std::vector<std::string> messages = documents_.calSetup.SetupToForm(entries);
  ShowEntries(entries);
  ui_->txtInterDwell->setText(QString::fromLatin1(kInterDwell));
  for (const std::string& text : messages) shell_.dialogs.Tell(text);
}

bool frmCalSetup::FormToSetup(bool validate) {
  const auto failure = documents_.calSetup.FormToSetup(Entries(), validate);
  if (failure) Explain(*failure);
  return !failure;
}

void frmCalSetup::Explain(const EntryFailure& failure) {
  if (failure.Control != "lblListFile") {
    PointOut(*this, failure, shell_.dialogs);
    return;
  }
  ui_->tabSetup->setCurrentIndex(failure.Tab);
  shell_.dialogs.Show({failure.Text, {}, MessageIcon::None, MessageButtons::OkCancel});
  SelectListFile();
}

void frmCalSetup::ShowFile() {
  const QString path = ToQt(file_);
  setWindowTitle(QStringLiteral("Cal Setup File: ") + path);
  const QString name = QString(path).replace(QLatin1Char('&'), QLatin1String("&&"));
  ui_->mnuFileSave->setText(name.isEmpty() ? QStringLiteral("&Save") : QStringLiteral("&Save ") + name);
}

void frmCalSetup::EnableControls() {
  const EnabledCalControls enabled = EnabledControlsFor(Entries());
  ui_->txtLinearStep->setEnabled(enabled.LinearStep);
  ui_->txtLogStep->setEnabled(enabled.LogStep);
  ui_->lblListFile->setEnabled(enabled.ListFile);
  EnableAll(enabled.CalLevel, {ui_->txtCalLevel, ui_->lblCalLevelUnit});
  ui_->lblLimitFile->setEnabled(enabled.LimitFile);
  EnableAll(enabled.FwdPwrLimit, {ui_->txtFwdPwrLimit, ui_->lblFwdPwrUnit});
  ui_->txtUserDefCF->setEnabled(enabled.UserDefCF);
}

void frmCalSetup::Load() {
  const auto path = shell_.dialogs.OpenFile(
      {"Select Calibration Setup file", kSetupFilter, shell_.settings.GetDataDir(datakind::kCalibrations)});
  if (path) LoadFile(ToQt(*path));
}

void frmCalSetup::LoadFile(const QString& path) {
  Guard(ui_->mnuFileLoad, [&] {
    CalSetup& setup = documents_.calSetup;
    const CalSetupRecord previous = setup.Record;
    if (!setup.LoadDef(FromQt(path))) {
      setup.Record = previous;
      return;
    }
    file_ = FromQt(path);
    ShowFile();
    SetupToForm();
    recentFiles_->Add(file_);
  });
}

void frmCalSetup::Save() {
  if (file_.empty())
    SaveAs();
  else if (FormToSetup(true))
    SaveTo(file_);
}

void frmCalSetup::SaveAs() {
  if (!FormToSetup(true)) return;
  const auto path = shell_.dialogs.SaveFile(
      {"Select Cal Setup file", kSetupFilter, shell_.settings.GetDataDir(datakind::kCalibrations), file_});
  if (path) SaveTo(*path);
}

void frmCalSetup::SaveTo(const std::string& path) {
  if (!documents_.calSetup.SaveDef(path)) return;
  file_ = path;
  ShowFile();
  recentFiles_->Add(file_);
}

void frmCalSetup::SelectListFile() {
  const auto path = shell_.dialogs.OpenFile(
      {"Select frequency list file", kListFilter, shell_.settings.GetDataDir(datakind::kFreqList)});
  if (path) UseList(ToQt(*path));
}

void frmCalSetup::UseList(const QString& path) {
  CalSetup& setup = documents_.calSetup;
  if (!setup.LoadFreqList(FromQt(path))) return;
  CalSetupEntries entries = Entries();
  entries.ListFile = FromQt(path);
  ListFileChanged(entries);
  entries.StartFreq = ShortestText(setup.Record.StartFreq);
  entries.StopFreq = ShortestText(setup.Record.StopFreq);
  ShowEntries(entries);
}

void frmCalSetup::SelectLevelFile() {
  const auto path = shell_.dialogs.OpenFile(
      {"Select test level file", kLevelFilter, shell_.settings.GetDataDir(datakind::kCalibrations), "*.lev"});
  if (path) UseLevelFile(ToQt(*path));
}

void frmCalSetup::UseLevelFile(const QString& path) {
  InterpClass table(shell_);
  if (!table.InitInterp(FromQt(path))) return;
  CalSetupEntries entries = Entries();
  entries.LimitFile = FromQt(path);
  entries.LimitType = static_cast<std::int32_t>(LimitType::File);
  ShowEntries(entries);
}

void frmCalSetup::CreateList() {
  emit CreateListRequested(ToQt(ui_->lblListFile->Path()));
}

void frmCalSetup::Start() {
  if (!FormToSetup(true)) return;
  const auto failure = CheckStation(documents_.calSetup.Record, documents_.equip.Record);
  if (!failure) {
    emit StartRequested();
    return;
  }
  shell_.dialogs.Tell(failure->Text);
  emit EditEquipmentRequested(failure->EquipmentTab);
}

}  // namespace hylden
