#include "documents/qt/frmCalSetup.h"

#include "documents/Documents.h"
#include "documents/qt/EntryPrompt.h"
#include "instruments/Instruments.h"
#include "measure/InterpClass.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "text/Numbers.h"
#include "ui_frmCalSetup.h"
#include "widgets/EntryControls.h"

namespace hylden {

namespace {

constexpr char kSetupFilter[] = "Cal Setup Files (*.csu)|*.csu|All Files|*.*";
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
    : SetupForm(shell, parent),
      instruments_(instruments),
      documents_(documents),
      ui_(std::make_unique<Ui::frmCalSetup>()) {
  ui_->setupUi(this);
  ConnectCommands();
  ConnectRules();
  Offer(false, false);
  CalSetupEntries design;
  ShowEntries(design);
  documents_.calSetup.SetOpeningDefaults(design.InitLevel, static_cast<double>(instruments_.meter.SettlingTime()));
  SetupToForm();
  ShowFile();
  WatchEntries();
  if (HasUnsaved()) kept_ = documents_.calSetup.Record;
}

frmCalSetup::~frmCalSetup() = default;

void frmCalSetup::ConnectCommands() {
  OfferFiles(ui_->mnuFileRecent, datakind::kCalibrations, QStringLiteral("csu"),
             [this](const QString& path) { LoadFile(path); });
  On(ui_->mnuFileLoad, [this] { Load(); });
  On(ui_->mnuFileSave, [this] { SaveEntries(); });
  On(ui_->mnuFileSaveAs, [this] { SaveAs(); });
  On(ui_->mnuStart, [this] { Start(); });
  On(ui_->cmdLoad, [this] { Load(); });
  On(ui_->cmdSave, [this] { SaveAs(); });
  On(ui_->cmdStart, [this] { Start(); });
  On(ui_->cmdListFile, [this] { SelectListFile(); });
  On(ui_->cmdLevelFile, [this] { SelectLevelFile(); });
  On(ui_->cmdCreateList, [this] { CreateList(); });
  connect(ui_->mnuEditList, &QAction::triggered, ui_->cmdCreateList, &QPushButton::click);
  ui_->lblListFile->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(ui_->lblListFile, &QWidget::customContextMenuRequested, ui_->cmdCreateList, &QPushButton::click);
  connect(ui_->mnuEditLevel, &QAction::triggered, this,
          [this] { emit EditLevelRequested(ToQt(ui_->lblLimitFile->Path())); });
  connect(ui_->cmdExit, &QPushButton::clicked, this, &QWidget::close);
  connect(ui_->mnuFileExit, &QAction::triggered, this, &QWidget::close);
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

/// After a click on the button the rule changes the other entries.
void frmCalSetup::ApplyRule(QAbstractButton* button, void (*rule)(CalSetupEntries&)) {
  On(button, [this, rule] {
    CalSetupEntries entries = Entries();
    rule(entries);
    ShowEntries(entries);
  });
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
  const bool mayClose = (kept_ && Shows(*kept_)) || MayDropEntries();
  if (mayClose) FormToSetup(false);
  return mayClose;
}

bool frmCalSetup::HasUnsaved() const {
  return !Shows(documents_.calSetup.Saved);
}

bool frmCalSetup::Shows(const CalSetupRecord& setup) const {
  CalSetupEntries entries = EntriesOf(setup, Entries()).Entries;
  bool same = true;
  WalkEntries(*ui_, entries, EntryComparer{same});
  return same;
}

bool frmCalSetup::MayDropEntries() {
  return MayDrop("Save Calibration Setup", "The calibration setup");
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
  const MessageAnswer answer = shell_.dialogs.Show({failure.Text, {}, MessageIcon::None, MessageButtons::OkCancel});
  if (answer == MessageAnswer::Ok) SelectListFile();
}

void frmCalSetup::ShowFile() {
  const std::string& file = documents_.calSetup.FileName;
  SetCaption(QStringLiteral("Cal Setup File: ") + ToQt(file));
  ShowSaveTarget(*ui_->mnuFileSave, file);
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
  const auto path =
      AskFile("Select Calibration Setup file", kSetupFilter, datakind::kCalibrations, documents_.calSetup.FileName);
  if (path) LoadFile(ToQt(*path));
}

void frmCalSetup::LoadFile(const QString& path) {
  Guard("mnuFileLoad", [&] {
    if (!MayDropEntries()) return;
    CalSetup& setup = documents_.calSetup;
    if (!setup.LoadDef(FromQt(path))) return;
    setup.FileName = FromQt(path);
    kept_.reset();
    ShowFile();
    SetupToForm();
    AddRecentFile(setup.FileName);
  });
}

bool frmCalSetup::SaveEntries() {
  const std::string file = documents_.calSetup.FileName;
  if (file.empty()) return SaveAs();
  return FormToSetup(true) && SaveTo(file);
}

bool frmCalSetup::SaveAs() {
  if (!FormToSetup(true)) return false;
  const auto path =
      AskSaveFile("Select Cal Setup file", kSetupFilter, datakind::kCalibrations, documents_.calSetup.FileName);
  return path && SaveTo(*path);
}

bool frmCalSetup::SaveTo(const std::string& path) {
  CalSetup& setup = documents_.calSetup;
  if (!setup.SaveDef(path)) return false;
  setup.FileName = path;
  kept_.reset();
  // What the setup does not take, as the step of a kind that is not chosen, is not in the file.
  ShowEntries(EntriesOf(setup.Record, Entries()).Entries);
  ShowFile();
  AddRecentFile(path);
  return true;
}

void frmCalSetup::SelectListFile() {
  if (const auto path = AskListFile(ui_->lblListFile->Path())) UseList(ToQt(*path));
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
  ShowMark();
}

void frmCalSetup::SelectLevelFile() {
  constexpr char kTitle[] = "Select test level file";
  const std::string loaded = ui_->lblLimitFile->Path(), directory = shell_.settings.GetDataDir(datakind::kCalibrations);
  const auto path = loaded.empty() ? shell_.dialogs.OpenFile({kTitle, kLevelFilter, directory, "*.lev"})
                                   : AskFile(kTitle, kLevelFilter, datakind::kCalibrations, loaded);
  if (path) UseLevelFile(ToQt(*path));
}

void frmCalSetup::UseLevelFile(const QString& path) {
  InterpClass table(shell_);
  if (!table.InitInterp(FromQt(path))) return;
  CalSetupEntries entries = Entries();
  entries.LimitFile = FromQt(path);
  entries.LimitType = static_cast<std::int32_t>(LimitType::File);
  ShowEntries(entries);
  ShowMark();
}

void frmCalSetup::CreateList() {
  emit CreateListRequested(ToQt(ui_->lblListFile->Path()));
}

void frmCalSetup::Start() {
  if (!FormToSetup(true)) return;
  const auto failure = CheckStation(documents_.calSetup.Record, documents_.equip);
  if (!failure) {
    emit StartRequested();
    return;
  }
  shell_.dialogs.Tell(failure->Text);
  emit EditEquipmentRequested(failure->EquipmentTab);
}

}  // namespace hylden
