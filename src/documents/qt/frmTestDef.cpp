#include "documents/qt/frmTestDef.h"

#include "documents/CurveOverlay.h"
#include "documents/Documents.h"
#include "measure/ReadFreq.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "shell/qt/FormPrompts.h"
#include "ui_frmTestDef.h"
#include "widgets/EntryControls.h"

namespace hylden {

namespace {

constexpr char kTestFilter[] = "Definitions (*.tst)|*.tst";
constexpr char kCalFilter[] = "CalInfo (*.hyinfo)|*.hyinfo";

}  // namespace

frmTestDef::frmTestDef(Shell& shell, Documents& documents, QWidget* parent)
    : RunSetupForm(shell, parent, "Save Test Definition", "The test definition"),
      documents_(documents),
      ui_(std::make_unique<Ui::frmTestDef>()),
      readOnlyNotice_(new QLabel(this)) {
  ui_->setupUi(this);
  readOnlyNotice_->setObjectName(QStringLiteral("lblReadOnly"));
  readOnlyNotice_->setText(QStringLiteral("The test file is read-only: calibration and leveling stay as they are."));
  readOnlyNotice_->setMargin(4);
  ui_->statusBar->addWidget(readOnlyNotice_);
  ConnectCommands();
  calInfoOfRecord_ = documents_.calInfo.Record;
  DefToForm();
  ShowCalInfo();
  ShowFile();
  WatchEntries();
  KeepUnsaved();
}

frmTestDef::~frmTestDef() = default;

void frmTestDef::ConnectCommands() {
  OfferFiles(ui_->mnuFileRecent, datakind::kTestSetups, QStringLiteral("tst"),
             [this](const QString& path) { LoadFile(path); });
  OfferTemplates(ui_->mnuFileNew, QStringLiteral("tst"), [this](const QString& path) { NewFrom(path); });
  On(ui_->mnuFileLoad, [this] { Load(); });
  On(ui_->mnuFileSave, [this] { SaveEntries(); });
  On(ui_->mnuFileSaveAs, [this] { SaveAs(); });
  connect(ui_->mnuFilePrint, &QAction::triggered, this, &frmTestDef::Print);
  On(ui_->cmdLoad, [this] { Load(); });
  On(ui_->cmdSave, [this] { SaveEntries(); });
  On(ui_->cmdCalFile, [this] { SelectCalFile(); });
  On(ui_->cmdCurves, [this] { emit CurvesRequested(CurveKind::Calibration, ToQt(ui_->lblCalFileName->Path())); });
  ConnectList();
  On(ui_->cmdStart, [this] { Start(); });
  connect(ui_->cmdExit, &QPushButton::clicked, this, &QWidget::close);
  connect(ui_->mnuFileExit, &QAction::triggered, this, &QWidget::close);
  connect(ui_->mnuFilePreview, &QAction::triggered, this, &frmTestDef::PrintPreviewRequested);
  connect(ui_->mnuHelpTestdef, &QAction::triggered, this, [this] { emit HelpRequested(HelpTopic()); });
  ApplyRule(ui_->chkConstPeak, ConstPeakClicked);
  ApplyRule(ui_->chkModOffBetweenFreqs, ModOffBetweenFreqsClicked);
}

QString frmTestDef::HelpTopic() const {
  constexpr const char* kTopics[] = {"frequencies", "modulation", "calibration file", "test level:test definition"};
  return QString::fromLatin1(kTopics[ui_->tabSetup->currentIndex()]);
}

bool frmTestDef::QueryUnload() {
  if (!MayLeave()) return false;
  // A calibration that was chosen, but not taken into the record, is dropped together with its info.
  if (ui_->lblCalFileName->Path() != documents_.testSetup.Definition.CalInfoFile)
    documents_.calInfo.Record = calInfoOfRecord_;
  return true;
}

std::optional<FormEntries> frmTestDef::SavedEntries() const {
  return EntriesShowing(documents_.testSetup.Saved);
}

UsedControls frmTestDef::UsedNow() const {
  return UsedWith(Entries(), documents_.testSetup.Definition);
}

void frmTestDef::DefToForm() {
  ShowEntries(EntriesShowing(documents_.testSetup.Definition));
}

bool frmTestDef::FormToDef() {
  TestDefinition& test = documents_.testSetup.Definition;
  const bool good = TakeInto(test);
  if (test.CalInfoFile == ui_->lblCalFileName->Path()) calInfoOfRecord_ = documents_.calInfo.Record;
  if (good) ShowCalInfo();
  return good;
}

/// Checks the form and takes it into a definition, up to the first invalid entry, which is pointed out; false then.
bool frmTestDef::TakeInto(TestDefinition& test) {
  FormEntries entries = Entries();
  const TestValidation result = ValidateTestDefinition(entries, documents_.calInfo.Record.FreqRange, test);
  for (const std::string& notice : result.Notices) shell_.dialogs.Tell(notice);
  ShowEntries(entries);
  if (result.Failure) {
    PointOut(*this, *result.Failure, shell_.dialogs);
    return false;
  }
  return true;
}

void frmTestDef::ShowCalInfo() {
  const CalInfoRec& info = documents_.calInfo.Record;
  ui_->lblCalDescription->setText(ToQt(info.SetupDescription));
  ui_->lblAmplifier->setText(ToQt(info.AmpUsed));
  ui_->lblCouplingMethod->setText(ToQt(info.DeviceDescription));
  FitPathLabel(info.TestLevel, *ui_->lblCalLevel);
  ui_->lblCalFreqRange->setText(ToQt(info.FreqRange));
}

void frmTestDef::ShowFile() {
  const std::string& path = documents_.testSetup.TestFileName;
  const bool readOnly = documents_.testSetup.TestFileReadOnly();
  SetCaption(QStringLiteral("Test Definition File: ") + ToQt(path));
  ShowSaveTarget(*ui_->mnuFileSave, path);
  for (QWidget* const control : std::initializer_list<QWidget*>{
           ui_->fraFeedback, ui_->fraCalFileData, ui_->fraLevelingMode, ui_->fraLevelRamping, ui_->cmdCalFile})
    control->setEnabled(!readOnly);
  readOnlyNotice_->setVisible(readOnly);
}

void frmTestDef::EnableControls() {
  // Both steps are checked, whichever is chosen; Tab goes to the one in use.
  ui_->txtLinearStep->setFocusPolicy(ui_->optLinStep->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
  ui_->txtLogStep->setFocusPolicy(ui_->optLogStep->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
  SetSelected(*ui_->optSubstitution, !ui_->optRealTimeLevel->isChecked());
  SetupForm::EnableControls();
}

void frmTestDef::Load() {
  const auto path =
      AskFile("Select Test Definition File", kTestFilter, datakind::kTestSetups, documents_.testSetup.TestFileName);
  if (path) LoadFile(ToQt(*path));
}

void frmTestDef::LoadFile(const QString& path) {
  Guard("mnuFileLoad", [&] {
    if (!MayDropEntries()) return;
    TestSetup& testSetup = documents_.testSetup;
    if (!shell_.Ok(testSetup.LoadDef(FromQt(path)))) return;
    ShowLoaded();
    AddRecentFile(testSetup.TestFileName);
  });
}

void frmTestDef::NewFrom(const QString& path) {
  if (MayDropEntries() && shell_.Ok(documents_.testSetup.NewFrom(FromQt(path)))) ShowLoaded();
}

void frmTestDef::ShowLoaded() {
  ForgetKept();
  DefToForm();
  ShowFile();
  // Without its own info the test must not be checked against that of the calibration before.
  const std::string& file = documents_.testSetup.Definition.CalInfoFile;
  CalInfo& calInfo = documents_.calInfo;
  const bool isNew =
      file.empty() && documents_.testSetup.TestFileName.empty();  // its calibration is still to be chosen
  if (isNew || !shell_.Ok(calInfo.LoadDef(file))) calInfo.Record = {};
  calInfoOfRecord_ = calInfo.Record;
  ShowCalInfo();
}

bool frmTestDef::SaveEntries() {
  const std::string path = documents_.testSetup.TestFileName;
  return path.empty() ? SaveAs() : SaveTo(path);
}

bool frmTestDef::SaveAs() {
  const auto path = AskSaveFile("Select Test Definition Filename", kTestFilter, datakind::kTestSetups,
                                documents_.testSetup.TestFileName);
  return path && SaveTo(*path);
}

bool frmTestDef::SaveTo(const std::string& path) {
  if (!FormToDef() || !shell_.Ok(documents_.testSetup.SaveDef(path))) return false;
  ForgetKept();
  // What the definition does not take, as an impedance without a probe, is not in the file.
  DefToForm();
  ShowFile();
  AddRecentFile(documents_.testSetup.TestFileName);
  shell_.Saved(path);
  return true;
}

void frmTestDef::Print() {
  Guard("mnuFilePrint", [this] {
    TestDefinition shown = documents_.testSetup.Definition;
    if (TakeInto(shown)) shell_.Ok(documents_.testSetup.PrintTestSetup(shown));
  });
}

void frmTestDef::SelectCalFile() {
  const auto path =
      AskFile("Select Calibration File", kCalFilter, datakind::kCalibrations, ui_->lblCalFileName->Path());
  if (!path) return;
  if (!shell_.Ok(documents_.calInfo.LoadDef(*path))) return;
  FitPathLabel(*path, *ui_->lblCalFileName);
  ShowCalInfo();
}

void frmTestDef::UseList(const QString& path) {
  const std::string file = FromQt(path);
  if (!shell_.Ok(ReadFreq::FileTolist(file))) return;
  FitPathLabel(file, *ui_->lblListFile);
  ui_->chkFreqList->setChecked(true);
  ShowMark();
}

void frmTestDef::Start() {
  if (!FormToDef()) return;
  if (!TellMissing(CheckStart(documents_.testSetup.Definition, documents_.equip))) emit StartRequested();
}

}  // namespace hylden
