#include "documents/qt/frmCalSetup.h"

#include "documents/CurveOverlay.h"
#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "measure/InterpClass.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "shell/qt/FormPrompts.h"
#include "text/Numbers.h"
#include "ui_frmCalSetup.h"

namespace hylden {

namespace {

constexpr char kSetupFilter[] = "Cal Setup Files (*.csu)|*.csu|All Files|*.*";
constexpr char kLevelFilter[] = "Test Level (*.lev)|*.lev|All Files|*.*";
constexpr char kInterDwell[] = "1.0";

}  // namespace

frmCalSetup::frmCalSetup(Shell& shell, Instruments& instruments, Documents& documents, QWidget* parent)
    : RunSetupForm(shell, parent, "Save Calibration Setup", "The calibration setup"),
      instruments_(instruments),
      documents_(documents),
      ui_(std::make_unique<Ui::frmCalSetup>()) {
  ui_->setupUi(this);
  ConnectCommands();
  ShowEntries(EntriesOf(CalSetupRecord()).Entries);
  documents_.calSetup.SetOpeningDefaults(static_cast<double>(instruments_.meter.SettlingTime()));
  SetupToForm();
  ShowFile();
  WatchEntries();
  KeepUnsaved();
}

frmCalSetup::~frmCalSetup() = default;

void frmCalSetup::ConnectCommands() {
  OfferFiles(ui_->mnuFileRecent, datakind::kCalibrations, QStringLiteral("csu"),
             [this](const QString& path) { LoadFile(path); });
  OfferTemplates(ui_->mnuFileNew, QStringLiteral("csu"), [this](const QString& path) { NewFrom(path); });
  On(ui_->mnuFileLoad, [this] { Load(); });
  On(ui_->mnuFileSave, [this] { SaveEntries(); });
  On(ui_->mnuFileSaveAs, [this] { SaveAs(); });
  On(ui_->mnuStart, [this] { Start(); });
  On(ui_->mnuFileCurves, [this] { emit CurvesRequested(CurveKind::Calibration, {}); });
  On(ui_->cmdLoad, [this] { Load(); });
  On(ui_->cmdSave, [this] { SaveAs(); });
  On(ui_->cmdStart, [this] { Start(); });
  ConnectList();
  On(ui_->cmdLevelFile, [this] { SelectLevelFile(); });
  connect(ui_->mnuEditList, &QAction::triggered, ui_->cmdCreateList, &QPushButton::click);
  ui_->lblListFile->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(ui_->lblListFile, &QWidget::customContextMenuRequested, ui_->cmdCreateList, &QPushButton::click);
  connect(ui_->mnuEditLevel, &QAction::triggered, this,
          [this] { emit EditLevelRequested(ToQt(ui_->lblLimitFile->Path())); });
  connect(ui_->cmdExit, &QPushButton::clicked, this, &QWidget::close);
  connect(ui_->mnuFileExit, &QAction::triggered, this, &QWidget::close);
  connect(ui_->mnuHelpCalibrations, &QAction::triggered, this, [this] { emit HelpRequested(HelpTopic()); });
  ApplyRule(ui_->chkLimitFwdPwr, LimitFwdPwrClicked);
  ApplyRule(ui_->chkRecordFP, RecordFwdPwrClicked);
  ApplyRule(ui_->chkRecordRP, RecordRevPwrClicked);
}

QString frmCalSetup::HelpTopic() const {
  constexpr const char* kTopics[] = {"calibration:frequency", "calibration:level", "calibration:coupling method",
                                     "calibration file information"};
  return QString::fromLatin1(kTopics[ui_->tabSetup->currentIndex()]);
}

bool frmCalSetup::QueryUnload() {
  const bool mayClose = MayLeave();
  if (mayClose) FormToSetup(false);
  return mayClose;
}

std::optional<FormEntries> frmCalSetup::SavedEntries() const {
  const FormEntries shown = Entries();
  return EntriesOf(documents_.calSetup.Saved, &shown).Entries;
}

UsedControls frmCalSetup::UsedNow() const {
  return UsedWith(Entries(), documents_.calSetup.Record);
}

void frmCalSetup::SetupToForm() {
  const FormEntries shown = Entries();
  const CalSetupShown setup = EntriesOf(documents_.calSetup.Record, &shown);
  ShowEntries(setup.Entries);
  ui_->txtInterDwell->setText(QString::fromLatin1(kInterDwell));
  for (const std::string& text : setup.Messages) shell_.dialogs.Tell(text);
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
  ui_->tabSetup->setCurrentWidget(ui_->tabFrequency);
  const MessageAnswer answer = shell_.dialogs.Show({failure.Text, {}, MessageIcon::None, MessageButtons::OkCancel});
  if (answer == MessageAnswer::Ok) SelectListFile();
}

void frmCalSetup::ShowFile() {
  const std::string& file = documents_.calSetup.FileName;
  SetCaption(QStringLiteral("Cal Setup File: ") + ToQt(file));
  ShowSaveTarget(*ui_->mnuFileSave, file);
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
    if (!shell_.Ok(setup.LoadDef(FromQt(path)))) return;
    setup.FileName = FromQt(path);
    ForgetKept();
    ShowFile();
    SetupToForm();
    AddRecentFile(setup.FileName);
  });
}

void frmCalSetup::NewFrom(const QString& path) {
  if (!MayDropEntries() || !shell_.Ok(documents_.calSetup.NewFrom(FromQt(path)))) return;
  ForgetKept();
  ShowFile();
  SetupToForm();
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
  if (!shell_.Ok(setup.SaveDef(path))) return false;
  setup.FileName = path;
  ForgetKept();
  // What the setup does not take, as the step of a kind that is not chosen, is not in the file.
  const FormEntries shown = Entries();
  ShowEntries(EntriesOf(setup.Record, &shown).Entries);
  ShowFile();
  AddRecentFile(path);
  shell_.Saved(path);
  return true;
}

void frmCalSetup::UseList(const QString& path) {
  CalSetup& setup = documents_.calSetup;
  if (!shell_.Ok(setup.LoadFreqList(FromQt(path)))) return;
  FitPathLabel(FromQt(path), *ui_->lblListFile);
  ui_->optListStep->setChecked(true);
  ui_->txtStartFreq->setText(ToQt(ShortestText(setup.Record.StartFreq)));
  ui_->txtStopFreq->setText(ToQt(ShortestText(setup.Record.StopFreq)));
  EnableControls();
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
  if (!shell_.Ok(table.InitInterp(FromQt(path)))) return;
  FitPathLabel(FromQt(path), *ui_->lblLimitFile);
  ui_->optLimitFile->setChecked(true);
  EnableControls();
  ShowMark();
}

void frmCalSetup::Start() {
  if (!FormToSetup(true)) return;
  if (!TellMissing(CheckStation(documents_.calSetup.Record, documents_.equip))) emit StartRequested();
}

}  // namespace hylden
