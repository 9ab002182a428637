#include "app/Desktop.h"

#include <QApplication>
#include <QFileInfo>
#include <QTimer>
#include <utility>

#include "app/BusChoice.h"
#include "app/DesktopBench.h"
#include "app/DesktopBeside.h"
#include "app/DesktopDemo.h"
#include "app/DesktopUtilities.h"
#include "app/OfferJournals.h"
#include "app/StartUp.h"
#include "app/Station.h"
#include "bench/Bench.h"
#include "calibration/CableCalibration.h"
#include "calibration/FrequencyPlan.h"
#include "calibration/qt/frmCblSetup.h"
#include "calibration/qt/frmRunCablCal.h"
#include "calibration/qt/frmRunCal.h"
#include "documents/qt/frmCalCurves.h"
#include "documents/qt/frmCalSetup.h"
#include "documents/qt/frmEquipment.h"
#include "documents/qt/frmTestDef.h"
#include "editors/qt/frmEditFactor.h"
#include "instruments/qt/frmBus.h"
#include "instruments/qt/frmMeter.h"
#include "instruments/qt/frmPMeter.h"
#include "instruments/qt/frmParseTest.h"
#include "instruments/qt/frmSigGen.h"
#include "measure/qt/frmBuildList.h"
#include "platform/qt/CommandWindow.h"
#include "platform/qt/Later.h"
#include "platform/qt/QtText.h"
#include "shell/FormInput.h"
#include "shell/Version.h"
#include "shell/qt/FormPrompts.h"
#include "shell/qt/SetupForm.h"
#include "shell/qt/TopMenu.h"
#include "shell/qt/WorkingForm.h"
#include "shell/qt/frmHelp.h"
#include "shell/qt/frmWelcome.h"
#include "testrun/TestPlan.h"
#include "testrun/qt/frmRunData.h"
#include "testrun/qt/frmRunTest.h"
#include "widgets/FileDrop.h"
#include "widgets/WindowMemory.h"
#include "widgets/WindowPlace.h"

namespace hylden {

namespace {

/// A program directory may end with its separator.
std::string HelpFileIn(const std::string& directory) {
  return directory + (directory.ends_with('/') || directory.ends_with('\\') ? "" : "/") + "hylden.hlp";
}

}  // namespace

Desktop::Desktop(Station& station, DesktopOptions options)
    : station_(station),
      shell_(station.shell),
      instruments_(station.instruments),
      documents_(station.documents),
      options_(std::move(options)),
      menu_(std::make_unique<TopMenu>()),
      bench_(std::make_unique<BenchWindows>(station.bench, shell_, menu_->windowIcon())),
      helpFile_(HelpFileIn(shell_.settings.ProgramDirectory())),
      cableCalibration_(std::make_unique<RunCablCal>(shell_, instruments_)) {
  menu_->SetTitle(VersionTitle());
  shell_.onSaved = [](const std::string& path) {
    if (auto* const form = qobject_cast<WorkingForm*>(CommandWindow::OfCommand())) form->ShowSaved(path);
  };
  QApplication::setWindowIcon(menu_->windowIcon());
  if (bench_->Present()) {
    if (shell_.runNotice.empty()) shell_.runNotice = kSimulatedBenchText;
    ShowBenchNotice(*menu_, shell_.runNotice);
    menu_->OfferBench();
  } else if (HasDemoStation(shell_.settings.SharedDirectory())) {
    menu_->OfferDemo();
  }
  connect(menu_.get(), &TopMenu::ConfigureRequested, this, [this] { OpenEquipment(menu_.get()); });
  connect(menu_.get(), &TopMenu::CalibrationRequested, this, [this] { OpenCalibrationSetup(); });
  connect(menu_.get(), &TopMenu::RunTestRequested, this, [this] { OpenTestDefinition(); });
  connect(menu_.get(), &TopMenu::BenchRequested, this, &Desktop::ShowBenchPanel);
  connect(menu_.get(), &TopMenu::DemoRequested, this, [this] { OpenDemoStation(shell_); });
  connect(menu_.get(), &TopMenu::OpenRunDataRequested, this, &Desktop::ChooseRunData);
  new FileDrop(menu_.get(), QStringLiteral("run"), [this](const QString& file) { OpenRunData(FromQt(file)); });
  connect(menu_.get(), &TopMenu::HelpRequested, this, &Desktop::ShowHelp);
  connect(bench_.get(), &BenchWindows::HelpRequested, this, &Desktop::ShowHelp);
  connect(bench_.get(), &BenchWindows::EscapePressed, this, &Desktop::EscapeInPanel);
  connect(menu_.get(), &TopMenu::Closed, this, [this] {
    if (help_) help_->close();
    bench_->ClosePanel();
    const QVector<QPointer<WorkingForm>> beside = open_;
    for (const QPointer<WorkingForm>& open : beside)
      if (open && open->StandsBeside()) open->close();
    shell_.end.Finish();
    emit Ended();
  });
}

Desktop::~Desktop() {
  shell_.onSaved = nullptr;
  for (const QPointer<WorkingForm>& form : open_) delete form.data();
}

bool Desktop::Start(const std::string& commandLine) {
  new WindowMemory(shell_, *menu_, WindowMemory::Keeps::SizeAndPlace);
  OpenOver(*menu_, nullptr);
  if (auto resumed = options_.journals ? OfferJournals(shell_, *options_.journals) : std::nullopt) {
    resumed_ = std::make_unique<ResumedJournal>(std::move(*resumed));
    Resume();
  } else if (StartUp(station_, commandLine) == Opening::TestDefinition) {
    OpenTestDefinition();
  }
  if (!shell_.end.MayStart()) return false;
  ShowStation();
  if (open_.isEmpty()) {
    menu_->show();
    ShowWelcome();
  }
  for (const std::string& file : ParseCommandLine(commandLine).RunFiles) OpenRunData(file);
  return true;
}

void Desktop::Resume() {
  const JournalHead head = resumed_->Former.Head;
  const bool isTest = head.Kind == JournalKind::Test;
  std::vector<std::string> switches = {"/e:" + head.Equipment};
  if (isTest) switches.push_back("/t:" + head.File);
  const Opening opening = StartUp(station_, JoinArguments(switches));
  if (!isTest)
    ResumeCalibration(head.File);
  else if (opening == Opening::TestDefinition)
    ResumeTest();
  resumed_.reset();
}

void Desktop::ResumeTest() {
  if (frmTestDef* const form = OpenTestDefinition()) form->Guard("cmdStart", [form] { form->Start(); });
}

void Desktop::ResumeCalibration(const std::string& setup) {
  frmCalSetup* const form = OpenCalibrationSetup();
  if (!form) return;
  form->LoadFile(ToQt(setup));
  if (documents_.calSetup.FileName == setup) form->Guard("cmdStart", [form] { form->Start(); });
}

/// The form that the operator works in.
WorkingForm* Desktop::Front() const {
  for (auto form = open_.rbegin(); form != open_.rend(); ++form)
    if (*form && (*form)->isVisible() && !(*form)->StandsBeside()) return form->data();
  return nullptr;
}

void Desktop::Raise() {
  QWidget* window = QApplication::activeModalWidget();
  if (!window) window = Front();
  if (!window) window = menu_.get();
  window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
  window->raise();
  window->activateWindow();
}

std::string Desktop::StartedAgain(const std::string& commandLine) {
  Raise();
  const CommandLine line = ParseCommandLine(commandLine);
  if (!line.Ok) return "Command line error, (" + commandLine + ")";
  for (const std::string& file : line.RunFiles) Later(this, [this, file] { OpenRunData(file); });
  const std::string files = line.EquipFile + (line.EquipFile.empty() ? "" : "\r\n") + line.TestFile;
  if (files.empty()) return {};
  if (shell_.InstrumentsClaimed()) return "Hylden's instruments are at work: this was not opened.\r\n" + files;
  const auto* const front = Front();
  const bool takesIt = !front || (qobject_cast<const frmEquipment*>(front) && line.TestFile.empty()) ||
                       (qobject_cast<const frmTestDef*>(front) && line.EquipFile.empty());
  if (!takesIt || !shell_.end.MayStart() || QApplication::activeModalWidget() || (front && front->IsBusy()))
    return "Hylden's open window has to be closed first: this was not opened.\r\n" + files;
  Later(this, [this, line] { OpenNamed(line); });
  return {};
}

void Desktop::OpenNamed(const CommandLine& line) {
  auto* equipment = qobject_cast<frmEquipment*>(Front());
  auto* test = qobject_cast<frmTestDef*>(Front());
  if (!line.EquipFile.empty()) {
    if (!equipment) equipment = OpenEquipment(menu_.get());
    if (!equipment) return;
    equipment->LoadFile(ToQt(line.EquipFile));
    if (line.TestFile.empty() || !equipment->close()) return;
  }
  if (!test) test = OpenTestDefinition();
  if (test) test->LoadFile(ToQt(line.TestFile));
}

/// Who has no settings starts for the first time.
void Desktop::ShowWelcome() {
  constexpr const char* kSection = "System";
  const std::string& shared = shell_.settings.SharedDirectory();
  if (shared.empty() || QFileInfo::exists(ToQt(shell_.settings.Store().PathRead()))) return;
  shell_.settings.Save(kSection, "Welcomed", "1");
  auto* const welcome = new frmWelcome(HasDemoStation(shared), menu_.get());
  welcome->setAttribute(Qt::WA_DeleteOnClose);
  connect(welcome, &frmWelcome::DemoRequested, this, [this] { OpenDemoStation(shell_); });
  connect(welcome, &frmWelcome::OwnStationRequested, menu_.get(), &TopMenu::ConfigureRequested);
  connect(welcome, &frmWelcome::ManualRequested, this, [this] { ShowHelp({}); });
  welcome->show();
}

bool Desktop::Open(WorkingForm* form, QWidget* caller) {
  if (!shell_.end.MayStart()) {  // maybe asked by a box that the form has shown first
    form->deleteLater();
    return false;
  }
  open_.removeAll(nullptr);
  open_ << form;
  form->setWindowIcon(menu_->windowIcon());
  // Above a modal form another one would be locked, and the forms behind it open to a second run.
  if (caller && caller->windowModality() != Qt::NonModal) form->setWindowModality(Qt::ApplicationModal);
  // A saved run tells by itself what it was made with, whatever drives the program now.
  if (!qobject_cast<frmRunData*>(form)) bench_->Announce(*form);
  connect(form, &WorkingForm::HelpRequested, this,
          [this, form](const QString& topic) { form->Guard("Help", [&] { ShowHelp(topic); }); });
  connect(form, &WorkingForm::Unloaded, this, [this, form] {
    open_.removeAll(form);
    form->deleteLater();
    ShowStation();
    Later(this, [this] { KeepBeside(); });
    Later(this, [this] { CloseNext(); });
  });
  connect(form, &WorkingForm::StaysOpen, this, [this, form] { RefuseEnd(*form); });
  form->OpenFrom(caller);
  KeepBeside();
  return true;
}

void Desktop::ShowStation() {
  menu_->ShowStation(documents_.equip.EquipFileName, documents_.testSetup.TestFileName);
}

frmEquipment* Desktop::OpenEquipment(QWidget* caller, int tab, bool modal) {
  if (!shell_.end.MayStart()) return nullptr;
  station_.LoadDefinitions();
  auto* const form = new frmEquipment(shell_, instruments_, documents_.equip);
  form->ShowTab(tab);
  if (modal) form->setWindowModality(Qt::ApplicationModal);
  connect(form, &frmEquipment::StationLoaded, this, [this] { station_.LoadDefinitions(); });
  connect(form, &frmEquipment::EntriesTaken, this, [this] { station_.TakeAddresses(); });
  connect(form, &frmEquipment::UtilityRequested, this,
          [this](Utility utility) { RunUtility(utility, station_, helpFile_); });
  connect(form, &frmEquipment::EditFactorRequested, this,
          [this, form](FactorKind kind) { OpenFactorEditor(form, kind); });
  connect(form, &frmEquipment::DefineInstrumentRequested, this,
          [this, form](InstrumentKind kind) { OpenDefinition(form, kind); });
  connect(form, &frmEquipment::BusRequested, this, &Desktop::ShowBus);
  connect(form, &frmEquipment::InsertionLossRequested, this, [this, form] { OpenCableSetup(form); });
  connect(form, &WorkingForm::Unloaded, this, [this, form] { Applied(form); });
  return Open(form, caller) ? form : nullptr;
}

/// Another equipment form, behind the one that has closed, shows what was changed there.
void Desktop::Applied(const frmEquipment* form) {
  station_.EquipBench();
  for (const QPointer<WorkingForm>& open : std::as_const(open_))
    if (auto* const other = qobject_cast<frmEquipment*>(open.data()); other && other != form) other->ShowChanges();
}

void Desktop::OpenDefinition(frmEquipment* equipment, InstrumentKind kind) {
  DefinitionForm* form = nullptr;
  switch (kind) {
    case InstrumentKind::SigGen:
      form = new frmSigGen(shell_, instruments_);
      break;
    case InstrumentKind::Meter:
      form = new frmMeter(shell_, instruments_);
      break;
    case InstrumentKind::PwrMtr:
      form = new frmPMeter(shell_, instruments_);
      break;
  }
  connect(form, &DefinitionForm::FileTaken, equipment, [equipment, kind] { equipment->UseDefinition(kind); });
  connect(
      form, &DefinitionForm::ParseTesterRequested, this,
      [this, form](const QString& answer, const QString& expression) { OpenParseTester(form, answer, expression); });
  connect(this, &Desktop::EscapePressed, form, &DefinitionForm::PressHalt);
  connect(form, &WorkingForm::Unloaded, this, [this] {
    station_.TakeAddresses();
    station_.EquipBench();
  });
  Open(form, equipment);
}

void Desktop::OpenParseTester(DefinitionForm* editor, const QString& answer, const QString& expression) {
  auto* const form = new frmParseTest(shell_, instruments_.parser);
  form->ReturnString(answer);
  form->ParseExpression(expression);
  form->setWindowModality(Qt::ApplicationModal);
  connect(form, &frmParseTest::ExpressionSaved, editor, &DefinitionForm::TakeExpression);
  Open(form, editor);
}

/// What every form that sets up a run may ask for.
void Desktop::Serve(RunSetupForm* form) {
  connect(form, &RunSetupForm::EditEquipmentRequested, this, [this, form](int tab) { OpenEquipment(form, tab, true); });
  connect(form, &RunSetupForm::CreateListRequested, this,
          [this, form](const QString& list) { OpenListBuilder(form, list); });
  connect(form, &RunSetupForm::CurvesRequested, this,
          [this, form](CurveKind kind, const QString& file) { ShowCurves(form, kind, file); });
}

frmTestDef* Desktop::OpenTestDefinition() {
  if (!shell_.end.MayStart()) return nullptr;
  auto* const form = new frmTestDef(shell_, documents_);
  Serve(form);
  form->TellPlanBy([this](const FormEntries& entries) {
    return TestPlanText(entries, documents_.testSetup.Definition, documents_.calInfo.Record.FreqRange);
  });
  connect(form, &frmTestDef::StartRequested, this, [this, form] { OpenTestRun(form); });
  connect(form, &frmTestDef::PrintPreviewRequested, this, [this, form] { Preview([form] { form->Print(); }); });
  return Open(form, menu_.get()) ? form : nullptr;
}

void Desktop::OpenTestRun(QWidget* caller) {
  // The product is connected, with the monitor probe around its cable.
  bench_->Cable(MeterAt::Probe);
  auto* const form = new frmRunTest(shell_, instruments_, documents_);
  if (bench_->Present()) form->SetSimulated();
  connect(this, &Desktop::EscapePressed, form, &RunWindow::PressHalt);
  connect(form, &frmRunTest::PrintPreviewRequested, this,
          [this, form](RunReportKind kind) { Preview([form, kind] { form->PrintReport(kind); }); });
  if (!Open(form, caller)) return;
  form->Load();
  if (auto resumed = std::exchange(resumed_, nullptr)) form->Continue(FormerTest(std::move(*resumed)));
}

frmCalSetup* Desktop::OpenCalibrationSetup() {
  if (!shell_.end.MayStart()) return nullptr;
  auto* const form = new frmCalSetup(shell_, instruments_, documents_);
  Serve(form);
  form->TellPlanBy([this](const FormEntries& entries) {
    return CalibrationPlanText(entries, documents_.calSetup.Record, documents_.equip.Record);
  });
  connect(form, &frmCalSetup::EditLevelRequested, this,
          [this, form](const QString& levelFile) { OpenFactorEditor(form, FactorKind::Level, levelFile); });
  connect(form, &frmCalSetup::StartRequested, this, [this, form] { OpenCalibrationRun(form); });
  return Open(form, menu_.get()) ? form : nullptr;
}

void Desktop::OpenCalibrationRun(QWidget* caller) {
  bench_->Cable(MeterAt::Port);
  auto* const form = new frmRunCal(shell_, instruments_, documents_);
  connect(this, &Desktop::EscapePressed, form, &RunWindow::PressHalt);
  if (!Open(form, caller)) return;
  form->Load();
  if (auto resumed = std::exchange(resumed_, nullptr)) form->Continue(FormerCalibration(std::move(*resumed)));
}

void Desktop::OpenFactorEditor(QWidget* caller, FactorKind kind, const QString& file) {
  auto* const form = new frmEditFactor(shell_);
  form->FilterDefault(static_cast<int>(kind));
  if (Open(form, caller) && !file.isEmpty()) form->LoadFile(file);
}

void Desktop::OpenCableSetup(QWidget* caller) {
  auto* const form = new frmCblSetup(shell_, documents_, *cableCalibration_);
  Serve(form);
  form->TellPlanBy([this](const FormEntries& entries) {
    const auto settling = static_cast<double>(instruments_.meter.SettlingTime());
    return CablePlanText(entries, cableCalibration_->Setup, settling);
  });
  connect(form, &frmCblSetup::StartRequested, this, [this, form] { OpenCableRun(form); });
  Open(form, caller);
}

void Desktop::ShowBus() {
  if (!shell_.end.MayStart()) return;
  if (bus_) return ShowBeside(*bus_);
  bus_ = new frmBus(shell_, instruments_, [this] { return station_.BusUnits(); });
  connect(bus_, &frmBus::EscapePressed, this, &Desktop::EscapePressed);
  connect(this, &Desktop::EscapePressed, bus_, &frmBus::PressHalt);
  Open(bus_, nullptr);
}

void Desktop::ShowCurves(RunSetupForm* form, CurveKind kind, const QString& file) {
  auto curves = std::make_unique<frmCalCurves>(shell_, kind);
  const std::string beside = kind == CurveKind::Calibration ? documents_.calSetup.RecordSaved : std::string();
  if (!(file.isEmpty() ? curves->AskAndAdd(beside) : curves->AddFile(FromQt(file)))) return;
  if (curves_) curves_->close();
  curves_ = curves.release();
  curvesOf_ = form;
  Open(curves_, nullptr);
}

void Desktop::ChooseRunData() {
  FileRequest request = RunDataRequest(shell_.settings);
  request.title = "Open run data";
  if (const auto file = shell_.dialogs.OpenFile(request)) OpenRunData(*file);
}

void Desktop::OpenRunData(const std::string& file) {
  if (!shell_.end.MayStart()) return;
  auto* const form = new frmRunData(shell_);
  connect(form, &frmRunData::OpenRequested, this, &Desktop::ChooseRunData);
  connect(form, &frmRunData::EscapePressed, this, &Desktop::EscapePressed);
  form->LoadFile(file);
  Open(form, nullptr);
}

void Desktop::OpenListBuilder(RunSetupForm* form, const QString& listFile) {
  auto* const builder = new frmBuildList(shell_);
  builder->setWindowModality(Qt::ApplicationModal);
  builder->DoIt(listFile);
  connect(builder, &WorkingForm::Unloaded, form, [builder, form] {
    if (const QString list = builder->GetFilename(); !list.isEmpty())
      form->Guard("cmdCreateList", [&] { form->UseList(list); });
  });
  Open(builder, form);
}

void Desktop::OpenCableRun(QWidget* caller) {
  auto* const form = new frmRunCablCal(shell_, instruments_, *cableCalibration_);
  connect(this, &Desktop::EscapePressed, form, &RunWindow::PressHalt);
  connect(form, &frmRunCablCal::PassStarting, this,
          [this](bool inserted) { bench_->Cable(inserted ? MeterAt::Cable : MeterAt::Generator); });
  Open(form, caller);
}

void Desktop::ShowBenchPanel() {
  bench_->ShowPanel();
}

/// While a run is on, Escape is Halt in the bench panel; without one it closes it.
void Desktop::EscapeInPanel() {
  if (shell_.InstrumentsClaimed())
    emit EscapePressed();
  else
    bench_->ClosePanel();
}

void Desktop::KeepBeside() {
  bench_->KeepBeside();
  if (help_ && help_->isVisible()) StandBeside(*help_);
  if (curves_ && curves_->isVisible() && !(curvesOf_ && curvesOf_->isVisible())) curves_->close();
  for (const QPointer<WorkingForm>& open : std::as_const(open_))
    if (open && open->StandsBeside() && open->isVisible()) StandBeside(*open);
}

bool Desktop::LoadHelp() {
  auto help = std::make_unique<frmHelp>();
  // A program directory of the user's own holds no help; it came with the program.
  const QString shared = ToQt(HelpFileIn(shell_.settings.SharedDirectory()));
  if (!help->LoadFile(ToQt(helpFile_)) && !help->LoadFile(shared)) return false;
  help->setWindowIcon(menu_->windowIcon());
  new WindowMemory(shell_, *help, WindowMemory::Keeps::SizeAndPlace);
  OpenOver(*help, nullptr);
  help_ = std::move(help);
  return true;
}

void Desktop::ShowHelp(const QString& topic) {
  if (!help_ && !LoadHelp()) {
    shell_.dialogs.Tell("The help file can't be read:\r\n" + helpFile_, MessageIcon::Exclamation);
    return;
  }
  ShowBeside(*help_);
  help_->OpenTopic(topic);
}

void Desktop::Preview(const std::function<void()>& print) {
  if (options_.preview)
    options_.preview(print);
  else
    print();
}

void Desktop::CloseAll() {
  // A message may stand on the screen with RF on behind it: the halt comes before its answer.
  shell_.delay.RequestHalt();
  if (shell_.end.Ask()) ClearBoxes();
  // A session that ends may not wait for the run to end in order.
  if (instruments_.sigGen.RfIsOn()) (void)instruments_.sigGen.SilenceRf();
  Later(this, [this] { CloseNext(); });
}

/// Boxes give way to the end, and the forms whose commands they belong to are asked to close behind them.
void Desktop::ClearBoxes() {
  open_.removeAll(nullptr);
  bool asking = false;
  for (const QPointer<WorkingForm>& form : std::as_const(open_)) {
    asking = asking || form->AsksToSave();
    form->CloseBehindCommand();
  }
  // The question whether to save waits for its answer: closed, it would lose what was measured.
  if (options_.onEnding && !asking) options_.onEnding();
}

/// What still has to be saved, or has to be thought about, ends the end: the program goes on as before.
void Desktop::RefuseEnd(const WorkingForm& form) {
  if (!shell_.end.Refuse()) return;
  for (const QPointer<WorkingForm>& open : std::as_const(open_))
    if (open) open->ForgetClose();
  const std::string text = "The program was asked to end, but this window stays open:\r\n" + FromQt(form.windowTitle());
  shell_.log.LogFile(text);
  Later(this, [this, text] { shell_.dialogs.Tell(text, MessageIcon::Information); });
}

void Desktop::CloseNext() {
  if (!shell_.end.IsAsked()) return;
  open_.removeAll(nullptr);
  for (const QPointer<WorkingForm>& form : std::as_const(open_))
    if (form->IsBusy()) return;  // it closes behind its command
  if (open_.isEmpty())
    menu_->close();
  else
    open_.last()->close();
}

}  // namespace hylden
