#include "documents/frmTestDef.h"

#include "documents/Documents.h"
#include "documents/qt/EntryControls.h"
#include "documents/qt/EntryPrompt.h"
#include "measure/ReadFreq.h"
#include "platform/qt/FileDrop.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "shell/qt/RecentFilesMenu.h"
#include "ui_frmTestDef.h"

namespace hylden {

namespace {

constexpr char kTestFilter[] = "Definitions (*.tst)|*.tst";
constexpr char kCalFilter[] = "CalInfo (*.hyinfo)|*.hyinfo";
constexpr char kListFilter[] = "Frequency List (*.lst)|*.lst|All Files|*.*";

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
    : WorkingForm(parent),
      shell_(shell),
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
  new FileDrop(this, QStringLiteral("tst"), [this](const QString& path) { LoadFile(path); });
  calInfoOfRecord_ = documents_.calInfo.Record;
  DefToForm();
  ShowCalInfo();
  ShowFile();
}

frmTestDef::~frmTestDef() = default;

void frmTestDef::ConnectCommands() {
  recentFiles_ = new RecentFilesMenu(ui_->mnuFileRecent, shell_.settings, datakind::kTestSetups);
  connect(recentFiles_, &RecentFilesMenu::Chosen, this, &frmTestDef::LoadFile);
  On(ui_->mnuFileLoad, &QAction::triggered, &frmTestDef::Load);
  On(ui_->mnuFileSave, &QAction::triggered, &frmTestDef::Save);
  On(ui_->mnuFileSaveAs, &QAction::triggered, &frmTestDef::SaveAs);
  On(ui_->mnuFilePrint, &QAction::triggered, &frmTestDef::Print);
  On(ui_->cmdLoad, &QPushButton::clicked, &frmTestDef::Load);
  On(ui_->cmdSave, &QPushButton::clicked, &frmTestDef::Save);
  On(ui_->cmdCalFile, &QPushButton::clicked, &frmTestDef::SelectCalFile);
  On(ui_->cmdListFile, &QPushButton::clicked, &frmTestDef::SelectListFile);
  On(ui_->cmdCreateList, &QPushButton::clicked, &frmTestDef::CreateList);
  On(ui_->cmdStart, &QPushButton::clicked, &frmTestDef::Start);
  connect(ui_->cmdExit, &QPushButton::clicked, this, &frmTestDef::close);
  connect(ui_->mnuFileExit, &QAction::triggered, this, &frmTestDef::close);
  connect(ui_->mnuFilePreview, &QAction::triggered, this, &frmTestDef::PrintPreviewRequested);
  connect(ui_->mnuHelpTestdef, &QAction::triggered, this, [this] { emit HelpRequested(HelpTopic()); });
}

void frmTestDef::ConnectRules() {
  const std::initializer_list<QAbstractButton*> plain = {ui_->optNoMod,       ui_->optAMMod,      ui_->optFMMod,
                                                         ui_->optPulseMod,    ui_->chkUseAMdepth, ui_->chkMonitorProbe,
                                                         ui_->chkLimitCurrent};
  for (QAbstractButton* const button : plain)
    connect(button, &QAbstractButton::clicked, this, &frmTestDef::EnableControls);
  connect(ui_->chkConstPeak, &QCheckBox::clicked, this, &frmTestDef::ClickConstPeak);
  connect(ui_->chkModOffBetweenFreqs, &QCheckBox::clicked, this, &frmTestDef::ClickModOffBetweenFreqs);
}

/// Runs a command of the form; what it could not foresee is reported, since nothing may leave an event handler.
template <class Action>
void frmTestDef::Guard(const QObject* control, Action action) {
  try {
    action();
  } catch (const std::exception& error) {
    shell_.ReportError(error, "frmTestDef." + FromQt(control->objectName()));
  }
}

template <class Sender, class Signal>
void frmTestDef::On(Sender* sender, Signal signal, void (frmTestDef::*command)()) {
  connect(sender, signal, this, [this, sender, command] { Guard(sender, [&] { (this->*command)(); }); });
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
  // A calibration that was chosen, but not taken into the record, is dropped together with its info.
  if (ui_->lblCalFileName->Path() != documents_.testSetup.Definition.CalInfoFile)
    documents_.calInfo.Record = calInfoOfRecord_;
  return true;
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
  TestDefinitionEntries entries = Entries();
  const TestValidation result = ValidateTestDefinition(entries, documents_.calInfo.Record.FreqRange, test);
  if (test.CalInfoFile == entries.CalFile) calInfoOfRecord_ = documents_.calInfo.Record;
  for (const std::string& notice : result.Notices) shell_.dialogs.Tell(notice);
  ShowEntries(entries);
  if (result.Failure) {
    PointOut(*this, *result.Failure, shell_.dialogs);
    return false;
  }
  ShowCalInfo();
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
  const QString path = ToQt(documents_.testSetup.TestFileName);
  const bool readOnly = documents_.testSetup.TestFileReadOnly();
  setWindowTitle(QStringLiteral("Test Definition File: ") + path);
  const QString name = QString(path).replace(QLatin1Char('&'), QLatin1String("&&"));
  ui_->mnuFileSave->setText(name.isEmpty() ? QStringLiteral("&Save") : QStringLiteral("&Save ") + name);
  EnableAll(!readOnly,
            {ui_->fraFeedback, ui_->fraCalFileData, ui_->fraLevelingMode, ui_->fraLevelRamping, ui_->cmdCalFile});
  readOnlyNotice_->setVisible(readOnly);
}

void frmTestDef::EnableControls() {
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

void frmTestDef::ClickConstPeak() {
  TestDefinitionEntries entries = Entries();
  ConstPeakClicked(entries);
  ShowEntries(entries);
}

void frmTestDef::ClickModOffBetweenFreqs() {
  TestDefinitionEntries entries = Entries();
  ModOffBetweenFreqsClicked(entries);
  ShowEntries(entries);
}

void frmTestDef::Load() {
  const auto path = shell_.dialogs.OpenFile(
      {"Select Test Definition File", kTestFilter, shell_.settings.GetDataDir(datakind::kTestSetups)});
  if (path) LoadFile(ToQt(*path));
}

void frmTestDef::LoadFile(const QString& path) {
  Guard(ui_->mnuFileLoad, [&] {
    TestSetup& testSetup = documents_.testSetup;
    const TestDefinition previous = testSetup.Definition;
    if (!testSetup.LoadDef(FromQt(path))) {
      testSetup.Definition = previous;
      return;
    }
    DefToForm();
    ShowFile();
    // Without its own info the test must not be checked against that of the calibration before.
    CalInfo& calInfo = documents_.calInfo;
    if (!calInfo.LoadDef(testSetup.Definition.CalInfoFile)) calInfo.Record = {};
    calInfoOfRecord_ = calInfo.Record;
    ShowCalInfo();
    recentFiles_->Add(testSetup.TestFileName);
  });
}

void frmTestDef::Save() {
  const std::string& path = documents_.testSetup.TestFileName;
  if (path.empty())
    SaveAs();
  else
    SaveTo(path);
}

void frmTestDef::SaveAs() {
  const auto path =
      shell_.dialogs.SaveFile({"Select Test Definition Filename", kTestFilter,
                               shell_.settings.GetDataDir(datakind::kTestSetups), documents_.testSetup.TestFileName});
  if (path) SaveTo(*path);
}

void frmTestDef::SaveTo(const std::string& path) {
  if (!FormToDef() || !documents_.testSetup.SaveDef(path)) return;
  ShowFile();
  recentFiles_->Add(documents_.testSetup.TestFileName);
}

void frmTestDef::Print() {
  documents_.testSetup.PrintTestSetup();
}

void frmTestDef::SelectCalFile() {
  const auto path = shell_.dialogs.OpenFile(
      {"Select Calibration File", kCalFilter, shell_.settings.GetDataDir(datakind::kCalibrations)});
  if (!path) return;
  CalInfo& calInfo = documents_.calInfo;
  const CalInfoRec previous = calInfo.Record;
  if (!calInfo.LoadDef(*path)) {
    calInfo.Record = previous;
    return;
  }
  FitPathLabel(*path, *ui_->lblCalFileName);
  ShowCalInfo();
}

void frmTestDef::SelectListFile() {
  const auto path = shell_.dialogs.OpenFile(
      {"Select frequency list file", kListFilter, shell_.settings.GetDataDir(datakind::kFreqList)});
  if (path) UseList(ToQt(*path));
}

void frmTestDef::UseList(const QString& path) {
  const std::string file = FromQt(path);
  std::vector<double> frequencies;
  if (ReadFreq(shell_).FileTolist(file, frequencies) < 1) return;
  FitPathLabel(file, *ui_->lblListFile);
  ui_->chkFreqList->setChecked(true);
}

void frmTestDef::CreateList() {
  emit CreateListRequested(ToQt(ui_->lblListFile->Path()));
}

void frmTestDef::Start() {
  if (!FormToDef()) return;
  const auto failure = CheckStart(documents_.testSetup.Definition, documents_.equip.Record);
  if (!failure) {
    emit StartRequested();
    return;
  }
  shell_.dialogs.Tell(failure->Text);
  emit EditEquipmentRequested(failure->EquipmentTab);
}

}  // namespace hylden
