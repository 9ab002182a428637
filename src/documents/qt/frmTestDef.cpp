#include "documents/qt/frmTestDef.h"

#include "documents/Documents.h"
#include "documents/qt/EntryPrompt.h"
#include "measure/ReadFreq.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "ui_frmTestDef.h"
#include "widgets/EntryControls.h"

namespace hylden {

namespace {

constexpr char kTestFilter[] = "Definitions (*.tst)|*.tst";
constexpr char kCalFilter[] = "CalInfo (*.hyinfo)|*.hyinfo";

/// Every entry beside its control, once: showing and reading walk this list.
template <class Visitor>
void WalkEntries(const Ui::frmTestDef& ui, TestDefinitionEntries& e, const Visitor& visit) {
  visit(*ui.lblCalFileName, e.CalFile);
  visit(*ui.txtStartFreq, e.StartFreq);
  visit(*ui.txtStopFreq, e.StopFreq);
  visit(*ui.chkFreqSweep, e.FreqSweep);
  visit(*ui.optLinStep, e.LinStep);
  visit(*ui.optLogStep, e.LogStepChosen);
  visit(*ui.txtLinearStep, e.LinearStep);
  visit(*ui.txtLogStep, e.LogStep);
  visit(*ui.txtSweepDwell, e.SweepDwell);
  visit(*ui.chkFreqList, e.FreqList);
  visit(*ui.lblListFile, e.ListFile);
  visit(*ui.txtDiscreteDwell, e.DiscreteDwell);
  visit({ui.optNoMod, ui.optAMMod, ui.optFMMod, ui.optPulseMod}, e.ModType);
  visit(*ui.txtAmDepth, e.AmDepth);
  visit(*ui.txtAmModFreq, e.AmModFreq);
  visit(*ui.txtFmDev, e.FmDev);
  visit(*ui.txtFmModFreq, e.FmModFreq);
  visit(*ui.txtPulseWidth, e.PulseWidth);
  visit(*ui.txtPulsePeriod, e.PulsePeriod);
  visit(*ui.chkConstPeak, e.ConstPeak);
  visit(*ui.chkModOffBetweenFreqs, e.ModOffBetweenFreqs);
  visit(*ui.chkUseAMdepth, e.UseAMdepth);
  visit(*ui.optRealTimeLevel, e.RealTimeLevel);
  visit(*ui.txtInitLevOffset, e.InitLevOffset);
  visit(*ui.txtLevelInc, e.LevelInc);
  visit(*ui.txtInterDwell, e.InterDwell);
  visit({ui.optSigGenLevel, ui.optUseFwdPwr, ui.optNetPwrLev}, e.LevelingMethod);
  visit(*ui.chkExtrapolate, e.Extrapolate);
  visit(*ui.txtExtrapolateTo, e.ExtrapolateTo);
  visit(*ui.chkMonitorProbe, e.MonitorProbe);
  visit(*ui.chkLimitCurrent, e.LimitCurrent);
  visit(*ui.txtLimitMargin, e.LimitMargin);
  visit(*ui.txtEUTCircuitImpedance, e.EUTCircuitImpedance);
}

}  // namespace

frmTestDef::frmTestDef(Shell& shell, Documents& documents, QWidget* parent)
    : SetupForm(shell, parent),
      documents_(documents),
      ui_(std::make_unique<Ui::frmTestDef>()),
      readOnlyNotice_(new QLabel(this)) {
  ui_->setupUi(this);
  readOnlyNotice_->setObjectName(QStringLiteral("lblReadOnly"));
  readOnlyNotice_->setText(QStringLiteral("The test file is read-only: calibration and leveling stay as they are."));
  readOnlyNotice_->setMargin(4);
  ui_->statusBar->addWidget(readOnlyNotice_);
  ConnectCommands();
  ConnectRules();
  Offer(false);
  calInfoOfRecord_ = documents_.calInfo.Record;
  DefToForm();
  ShowCalInfo();
  ShowFile();
  WatchEntries();
  if (HasUnsaved()) kept_ = documents_.testSetup.Definition;
}

frmTestDef::~frmTestDef() = default;

void frmTestDef::ConnectCommands() {
  OfferFiles(ui_->mnuFileRecent, datakind::kTestSetups, QStringLiteral("tst"),
             [this](const QString& path) { LoadFile(path); });
  On(ui_->mnuFileLoad, [this] { Load(); });
  On(ui_->mnuFileSave, [this] { SaveEntries(); });
  On(ui_->mnuFileSaveAs, [this] { SaveAs(); });
  connect(ui_->mnuFilePrint, &QAction::triggered, this, &frmTestDef::Print);
  On(ui_->cmdLoad, [this] { Load(); });
  On(ui_->cmdSave, [this] { SaveEntries(); });
  On(ui_->cmdCalFile, [this] { SelectCalFile(); });
  On(ui_->cmdListFile, [this] { SelectListFile(); });
  On(ui_->cmdCreateList, [this] { CreateList(); });
  On(ui_->cmdStart, [this] { Start(); });
  connect(ui_->cmdExit, &QPushButton::clicked, this, &QWidget::close);
  connect(ui_->mnuFileExit, &QAction::triggered, this, &QWidget::close);
  connect(ui_->mnuFilePreview, &QAction::triggered, this, &frmTestDef::PrintPreviewRequested);
  connect(ui_->mnuHelpTestdef, &QAction::triggered, this, [this] { emit HelpRequested(HelpTopic()); });
}

void frmTestDef::ConnectRules() {
  const std::initializer_list<QAbstractButton*> plain = {
      ui_->optLinStep,  ui_->optLogStep,    ui_->optNoMod,        ui_->optAMMod,       ui_->optFMMod,
      ui_->optPulseMod, ui_->chkUseAMdepth, ui_->chkMonitorProbe, ui_->chkLimitCurrent};
  for (QAbstractButton* const button : plain)
    connect(button, &QAbstractButton::clicked, this, &frmTestDef::EnableControls);
  ApplyRule(ui_->chkConstPeak, ConstPeakClicked);
  ApplyRule(ui_->chkModOffBetweenFreqs, ModOffBetweenFreqsClicked);
}

/// After a click on the button the rule changes the other entries.
void frmTestDef::ApplyRule(QAbstractButton* button, void (*rule)(TestDefinitionEntries&)) {
  On(button, [this, rule] {
    TestDefinitionEntries entries = Entries();
    rule(entries);
    ShowEntries(entries);
  });
}

void frmTestDef::Offer(bool listBuilder) {
  ui_->cmdCreateList->setEnabled(listBuilder);
  ui_->cmdCreateList->setToolTip(listBuilder ? QStringLiteral("Compose a frequency list")
                                             : QStringLiteral("This version has no form for it"));
}

QString frmTestDef::HelpTopic() const {
  constexpr const char* kTopics[] = {"frequencies", "modulation", "calibration file", "test level:test definition"};
  return QString::fromLatin1(kTopics[ui_->tabSetup->currentIndex()]);
}

bool frmTestDef::QueryUnload() {
  if (!(kept_ && Shows(*kept_)) && !MayDropEntries()) return false;
  // A calibration that was chosen, but not taken into the record, is dropped together with its info.
  if (ui_->lblCalFileName->Path() != documents_.testSetup.Definition.CalInfoFile)
    documents_.calInfo.Record = calInfoOfRecord_;
  return true;
}

bool frmTestDef::HasUnsaved() const {
  return !Shows(documents_.testSetup.Saved);
}

bool frmTestDef::Shows(const TestDefinition& test) const {
  TestDefinitionEntries entries = EntriesOf(test);
  bool same = true;
  WalkEntries(*ui_, entries, EntryComparer{same});
  return same;
}

bool frmTestDef::MayDropEntries() {
  return MayDrop("Save Test Definition", "The test definition");
}

TestDefinitionEntries frmTestDef::Entries() const {
  TestDefinitionEntries entries;
  WalkEntries(*ui_, entries, EntryReader());
  return entries;
}

void frmTestDef::ShowEntries(TestDefinitionEntries entries) {
  WalkEntries(*ui_, entries, EntryShower());
  SetSelected(*ui_->optSubstitution, !entries.RealTimeLevel);
  EnableControls();
}

void frmTestDef::DefToForm() {
  ShowEntries(EntriesOf(documents_.testSetup.Definition));
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
  TestDefinitionEntries entries = Entries();
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
  EnableAll(!readOnly,
            {ui_->fraFeedback, ui_->fraCalFileData, ui_->fraLevelingMode, ui_->fraLevelRamping, ui_->cmdCalFile});
  readOnlyNotice_->setVisible(readOnly);
}

void frmTestDef::EnableControls() {
  // Both steps are checked, whichever is chosen; Tab goes to the one in use.
  ui_->txtLinearStep->setFocusPolicy(ui_->optLinStep->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
  ui_->txtLogStep->setFocusPolicy(ui_->optLogStep->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
  const EnabledControls enabled = EnabledControlsFor(Entries());
  EnableAll(enabled.ModOffBetweenFreqs, {ui_->chkModOffBetweenFreqs});
  EnableAll(enabled.AmControls,
            {ui_->chkConstPeak, ui_->txtAmDepth, ui_->lblAmDepth, ui_->txtAmModFreq, ui_->lblAmModFreq});
  EnableAll(enabled.UseAMdepth, {ui_->chkUseAMdepth});
  EnableAll(enabled.FmControls, {ui_->txtFmDev, ui_->lblFmDev, ui_->txtFmModFreq, ui_->lblFmModFreq});
  EnableAll(enabled.PulseControls, {ui_->txtPulsePeriod, ui_->lblPulsePeriod, ui_->txtPulseWidth, ui_->lblPulseWidth});
  EnableAll(enabled.ProbeControls,
            {ui_->chkLimitCurrent, ui_->txtEUTCircuitImpedance, ui_->lblEUTCircuitImpedance, ui_->lblImpedanceUnit});
  EnableAll(enabled.LimitMargin, {ui_->txtLimitMargin, ui_->lblLimitMargin, ui_->lblLimitMargin2});
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
    if (!testSetup.LoadDef(FromQt(path))) return;
    kept_.reset();
    DefToForm();
    ShowFile();
    // Without its own info the test must not be checked against that of the calibration before.
    CalInfo& calInfo = documents_.calInfo;
    if (!calInfo.LoadDef(testSetup.Definition.CalInfoFile)) calInfo.Record = {};
    calInfoOfRecord_ = calInfo.Record;
    ShowCalInfo();
    AddRecentFile(testSetup.TestFileName);
  });
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
  if (!FormToDef() || !documents_.testSetup.SaveDef(path)) return false;
  kept_.reset();
  // What the definition does not take, as an impedance without a probe, is not in the file.
  DefToForm();
  ShowFile();
  AddRecentFile(documents_.testSetup.TestFileName);
  return true;
}

void frmTestDef::Print() {
  Guard("mnuFilePrint", [this] {
    TestDefinition shown = documents_.testSetup.Definition;
    if (TakeInto(shown)) documents_.testSetup.PrintTestSetup(shown);
  });
}

void frmTestDef::SelectCalFile() {
  const auto path =
      AskFile("Select Calibration File", kCalFilter, datakind::kCalibrations, ui_->lblCalFileName->Path());
  if (!path) return;
  if (!documents_.calInfo.LoadDef(*path)) return;
  FitPathLabel(*path, *ui_->lblCalFileName);
  ShowCalInfo();
}

void frmTestDef::SelectListFile() {
  if (const auto path = AskListFile(ui_->lblListFile->Path())) UseList(ToQt(*path));
}

void frmTestDef::UseList(const QString& path) {
  const std::string file = FromQt(path);
  std::vector<double> frequencies;
  if (ReadFreq(shell_).FileTolist(file, frequencies) < 1) return;
  FitPathLabel(file, *ui_->lblListFile);
  ui_->chkFreqList->setChecked(true);
  ShowMark();
}

void frmTestDef::CreateList() {
  emit CreateListRequested(ToQt(ui_->lblListFile->Path()));
}

void frmTestDef::Start() {
  if (!FormToDef()) return;
  const auto failure = CheckStart(documents_.testSetup.Definition, documents_.equip);
  if (!failure) {
    emit StartRequested();
    return;
  }
  shell_.dialogs.Tell(failure->Text);
  emit EditEquipmentRequested(failure->EquipmentTab);
}

}  // namespace hylden
