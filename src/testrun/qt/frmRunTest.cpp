#include "testrun/qt/frmRunTest.h"

#include <QEvent>
#include <QMenu>
#include <QScopeGuard>

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "run/qt/RunCurvePanel.h"
#include "shell/FormInput.h"
#include "shell/Shell.h"
#include "testrun/qt/UnitsMenu.h"
#include "testrun/qt/frmManual.h"
#include "testrun/qt/frmReport.h"
#include "testrun/qt/frmRunButtons.h"
#include "ui_frmRunTest.h"
#include "widgets/AlignedNumbers.h"
#include "widgets/LabelText.h"
#include "widgets/TableFollower.h"
#include "widgets/ThemeColors.h"
#include "widgets/WindowPlace.h"

namespace hylden {

namespace {

constexpr std::string_view kMinutes = "##0.0";
constexpr char kUnitsKey[] = "Units";
constexpr int kCommentColumn = static_cast<int>(RunColumn::TestLevel);

void ShowLevel(QLabel& caption, QLabel& figure, const ShownLevel& shown, bool known) {
  ShowText(caption, ScreenText(shown.Caption));
  ShowText(figure, known ? ToQt(shown.Value) : QString::fromLatin1(kNoFigure));
}

void OpenOnRightClick(QMenu& menu, const std::vector<QWidget*>& labels) {
  for (QWidget* const label : labels) {
    label->setContextMenuPolicy(Qt::CustomContextMenu);
    // A pop-up that returns at once: a menu that waits for its choice would hold up the run.
    QObject::connect(label, &QWidget::customContextMenuRequested, &menu,
                     [&menu, label](const QPoint& position) { menu.popup(label->mapToGlobal(position)); });
  }
}

}  // namespace

frmRunTest::frmRunTest(Shell& shell, Instruments& instruments, Documents& documents, QWidget* parent)
    : RunWindow(shell, instruments.sigGen, parent),
      documents_(documents),
      ui_(std::make_unique<Ui::frmRunTest>()),
      engine_(shell, instruments, documents, *this, *this),
      table_(
          {kRunHeadings.begin(), kRunHeadings.end()},
          [this](std::size_t row, std::size_t column) {
            const auto& rows = engine_.Data().Entries();
            return row < rows.size() ? CellsOf(rows[row])[column] : std::string();
          },
          [this](std::size_t row, std::size_t column) { return column > 0 && IsThreshold(row); }) {
  ui_->setupUi(this);
  units_ = UnitsFrom(shell_.settings.Get(std::string(windowkey::kRunTestForm), kUnitsKey, ""));
  marks_ = {{Readout::SigGenLevel, ui_->lblSigGenLevel},
            {Readout::InducedLevel, ui_->lblInducedLevel},
            {Readout::ForwardPower, ui_->lblPower}};
  SetUp(TheControls(), table_, engine_.Unsaved(), {"pnlFreq", "Frequency, MHz"});
  new AlignedNumbers(*ui_->flxTestData, {{6}, {1, true}, {1}, {1, true}, {1, true}, {1}});
  ConnectFileMenu();
  ConnectUnits();
  EnableFile(false);
  SetUpCurves();
  RestoreLayout(windowkey::kRunTestForm);
  manualPlace_ = shell_.settings.GetFormPosition(windowkey::kManualForm);
}

frmRunTest::~frmRunTest() = default;

RunWindow::Controls frmRunTest::TheControls() {
  Controls controls = Controls::Of(*ui_);
  controls.Start = ui_->lblStartFreq;
  controls.Stop = ui_->lblStopFreq;
  controls.Table = ui_->flxTestData;
  controls.Halt = ui_->cmdRunHalt;
  controls.Figures = {{Readout::Frequency, ui_->lblFreq, "#0.0#####"},
                      {Readout::SigGenLevel, ui_->lblSigGenLevel, "##0.0"},
                      {Readout::Dwell, ui_->lblDwell, "###0.00"},
                      {Readout::Elapsed, ui_->lblElapsed, kMinutes},
                      {Readout::Remaining, ui_->lblEstTime, kMinutes}};
  return controls;
}

void frmRunTest::ConnectFileMenu() {
  On(ui_->mnuFileSave, [this] { engine_.Save(); });
  On(ui_->mnuFileReport, [this] {
    frmReport report(shell_,
                     {.File = engine_.SavedFile(),
                      .Run = {engine_.Data(), false, {}},
                      .Beside = {engine_.Info(), {}, RunChecksum(engine_.Data())}},
                     this);
    if (report.exec() == QDialog::Accepted) engine_.SetParticulars(report.Particulars());
  });
  const auto print = [this](QAction* action, QAction* preview, RunReportKind kind) {
    connect(action, &QAction::triggered, this, [this, kind] { PrintReport(kind); });
    connect(preview, &QAction::triggered, this, [this, kind] { emit PrintPreviewRequested(kind); });
  };
  print(ui_->mnuFilePrintBrief, ui_->mnuFilePreviewBrief, RunReportKind::Brief);
  print(ui_->mnuFilePrintDetailed, ui_->mnuFilePreviewDetailed, RunReportKind::Detailed);
  print(ui_->mnuFilePrintThreshold, ui_->mnuFilePreviewThreshold, RunReportKind::Threshold);
}

void frmRunTest::PrintReport(RunReportKind kind) {
  Guard("mnuFilePrint", [&] { shell_.Ok(PrintRunReport(shell_.printer, documents_, engine_.Data(), kind)); });
}

void frmRunTest::ConnectUnits() {
  auto* const menu = new UnitsMenu(*ui_->mnuUnits, units_);
  OpenOnRightClick(menu->TestLevel(), {ui_->lblTestLevel, ui_->lblTestLevelCap});
  OpenOnRightClick(menu->Induced(), {ui_->lblInducedLevel, ui_->lblInducedLevelCap});
  OpenOnRightClick(menu->Power(), {ui_->lblPower, ui_->lblPowerCap});
  connect(menu, &UnitsMenu::Chosen, this, [this] {
    ShowLevels();
    Curves().Renew();
  });
}

void frmRunTest::SetUpCurves() {
  const auto make = [this](std::size_t quantity) -> const RowCurves& {
    curves_ = std::make_unique<RunCurves>(static_cast<RunQuantity>(quantity), CurveContext(), engine_.Data().Entries());
    return *curves_;
  };
  // In the order of RunQuantity.
  Curves().SetSource(
      {{{"Test level", "TestLevel"}, {"Generator", "Generator"}, {"Induced", "Induced"}, {"Power", "Power"}},
       make,
       [this](int row) { return curves_->Add(engine_.Data().Entries(), row); }},
      *ui_->flxTestData);
}

RunCurveContext frmRunTest::CurveContext() const {
  const TestDefinition& test = documents_.testSetup.Definition;
  return {units_, test.EUTCircuitImpedance, test.LevelsBy(LevelingMethod::NetPower), aims_};
}

void frmRunTest::Load() {
  const std::string test = FileNameOnly(documents_.testSetup.TestFileName);
  if (!test.empty()) SetCaption(windowTitle() + QStringLiteral(" - ") + ToQt(test));
  ButtonForm = std::make_unique<frmRunButtons>(shell_, this);
  ButtonForm->setWindowIcon(windowIcon());
  if (simulated_) ButtonForm->SetSimulated();
  connect(ButtonForm.get(), &frmRunButtons::RunClick, this, &frmRunTest::buttonform_RunClick);
  connect(ButtonForm.get(), &frmRunButtons::HaltClick, this, &frmRunTest::buttonform_HaltClick);
  connect(ButtonForm.get(), &frmRunButtons::ManualClick, this, &frmRunTest::buttonform_ManualClick);
  connect(ButtonForm.get(), &frmRunButtons::ExitClick, this, &frmRunTest::buttonform_exitclick);
  connect(ButtonForm.get(), &frmRunButtons::HelpRequested, this, &frmRunTest::AskForHelp);
  ButtonForm->show();
  auto readiness = RunReadiness::NotReady;
  Guard("Load", [&] { readiness = engine_.Prepare(); });
  if (readiness == RunReadiness::NoSteps) return void(close());
  if (readiness == RunReadiness::Ready) aims_ = engine_.Aims();
  Curves().Renew();
}

void frmRunTest::Continue(FormerRun<RunData> former) {
  Guard("Continue", [&] {
    const Done taken = engine_.Continue(std::move(former));
    if (!taken) return shell_.dialogs.Tell(NotContinuedText(taken.error()), MessageIcon::Exclamation);
    ui_->prgSteps->setValue(engine_.CompletedSteps());
  });
}

void frmRunTest::SetSimulated() {
  simulated_ = true;
  ShowBenchNotice(*this, shell_.runNotice);
  if (ButtonForm) ButtonForm->SetSimulated();
}

bool frmRunTest::QueryUnload() {
  if (!RunWindow::QueryUnload()) return false;
  shell_.settings.Save(std::string(windowkey::kRunTestForm), kUnitsKey, UnitsText(units_));
  if (ButtonForm) ButtonForm->Unload();
  return true;
}

QString frmRunTest::HelpTopic() const {
  return ManForm ? QStringLiteral("Manual mode") : QStringLiteral("Running a test");
}

bool frmRunTest::IsOurs(const QWidget& window) const {
  return &window == this || &window == ButtonForm.get() || &window == ManForm.get();
}

void frmRunTest::buttonform_RunClick() {
  Guard("cmdRun", [this] {
    RunFrom([this] {
      const auto done = qScopeGuard([this] { RememberPlace(shell_, windowkey::kManualForm, manualPlace_); });
      engine_.ConfirmAndRun();
    });
  });
}

void frmRunTest::Halt() {
  // Not while the operator is asked about the rows: the run is over.
  if (!ButtonForm || !ButtonForm->isEnabled()) return;
  RunWindow::Halt();
  ui_->cmdRunHalt->setEnabled(false);
  ButtonForm->SetHalting();
}

void frmRunTest::Phase(RunPhase phase) {
  const bool ready = phase == RunPhase::Ready;
  if (ButtonForm && (ready || phase == RunPhase::Asking)) ButtonForm->setEnabled(ready);
  if (ready || phase == RunPhase::BringingUp) SetRunning(!ready);
}

void frmRunTest::SetRunning(bool running) {
  RunWindow::SetRunning(running);
  if (!running) ShowProgress(engine_.CompletedSteps());
  if (ButtonForm) running ? ButtonForm->SetRunMode() : ButtonForm->SetHaltMode();
}

void frmRunTest::StartAfresh() {
  RunWindow::StartAfresh();
  testLevelDbuv_ = inducedDbua_ = powerDbm_ = std::nullopt;
  ShowLevels();
  for (Marked& mark : marks_) mark.red = false;
  ShowMarks();
  Show(Readout::Remaining, estimatedMinutes_);
  ui_->flxTestData->clearSpans();
}

void frmRunTest::Plan(const RunPlan& plan) {
  RunWindow::Plan(plan);
  estimatedMinutes_ = plan.EstimatedMinutes;
  Show(Readout::Remaining, estimatedMinutes_);
}

void frmRunTest::Status(const std::string& text) {
  const QString shown = text.empty() ? QStringLiteral("State: Idle") : ToQt(text);
  ShowStatus(shown, shown);
}

void frmRunTest::Show(Readout readout, std::optional<double> value) {
  RunWindow::Show(readout, value);
  switch (readout) {
    case Readout::Frequency:
      return ShowPanel(ToQt(Format(value.value_or(0), "0.0#####")));
    case Readout::InducedLimit:
      inducedLimitDbua_ = value.value_or(0);  // its level follows
      return;
    case Readout::TestLevel:
      testLevelDbuv_ = value;
      return ShowLevels();
    case Readout::InducedLevel:
      inducedDbua_ = value;
      return ShowLevels();
    case Readout::ForwardPower:
      powerDbm_ = value;
      return ShowLevels();
    default:
      return;
  }
}

void frmRunTest::ShowLevels() {
  const float ohms = documents_.testSetup.Definition.EUTCircuitImpedance;
  const ShownLevel test = ShowTestLevel(testLevelDbuv_.value_or(0), units_.TestLevel, ohms);
  ShowLevel(*ui_->lblTestLevelCap, *ui_->lblTestLevel, test, testLevelDbuv_.has_value());
  ui_->lblTestLevel->setToolTip(testLevelDbuv_ ? ToQt(test.ToolTip) : QString());
  const ShownLevel induced = ShowInducedLevel(inducedDbua_.value_or(0), inducedLimitDbua_, units_.Induced, ohms);
  ShowLevel(*ui_->lblInducedLevelCap, *ui_->lblInducedLevel, induced, inducedDbua_.has_value());
  ui_->lblInducedLevel->setToolTip(ToQt(induced.ToolTip));
  const ShownLevel power = ShowPower(powerDbm_.value_or(0), units_.Power);
  ShowLevel(*ui_->lblPowerCap, *ui_->lblPower, power, powerDbm_.has_value());
}

void frmRunTest::Mark(Readout readout, bool held) {
  for (Marked& mark : marks_)
    if (mark.readout == readout) mark.red = held;
  ShowMarks();
}

void frmRunTest::ShowMarks() {
  QPalette red;
  red.setColor(QPalette::WindowText, HighlightRed(palette()));
  for (const Marked& mark : marks_) mark.label->setPalette(mark.red ? red : QPalette());
}

void frmRunTest::changeEvent(QEvent* event) {
  RunWindow::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) ShowMarks();
}

bool frmRunTest::IsThreshold(std::size_t row) const {
  const auto& rows = engine_.Data().Entries();
  return row < rows.size() && hylden::IsThreshold(rows[row]);
}

void frmRunTest::RowChanged(int row) {
  RunWindow::RowChanged(row);
  if (row > 0 && IsThreshold(static_cast<std::size_t>(row) - 1))
    ui_->flxTestData->setSpan(row - 1, kCommentColumn, 1, table_.columnCount() - kCommentColumn);
}

void frmRunTest::OpenManual(const ManualStart& start) {
  ClearCountdown();
  ManForm = std::make_unique<frmManual>(shell_, engine_.Manual(), this);
  if (simulated_) ManForm->SetSimulated();
  connect(ManForm.get(), &frmManual::manThresholdClick, this, &frmRunTest::manform_manThresholdClick);
  connect(ManForm.get(), &frmManual::manExitClick, this, &frmRunTest::manform_manExitClick);
  connect(ManForm.get(), &frmManual::manRfOn, this, &frmRunTest::manform_manRfOn);
  connect(ManForm.get(), &frmManual::manModOn, this, &frmRunTest::manform_manModOn);
  connect(ManForm.get(), &frmManual::HaltClick, this, &frmRunTest::PressHalt);
  connect(ManForm.get(), &frmManual::HelpRequested, this, &frmRunTest::AskForHelp);
  ManForm->Open(start, manualPlace_);
  ShowProgress(start.HighestStep);
  if (ButtonForm) ButtonForm->ButtonsVisible(false);
}

void frmRunTest::CloseManual() {
  if (!ManForm) return;
  if (ButtonForm) ButtonForm->ButtonsVisible(true);
  manualPlace_ = ManForm->Unload();
  ManForm.reset();
  Follower().Release();
}

void frmRunTest::ManualStep(int step, int row, double frequencyMHz) {
  Step(step);
  Follower().Hold(row - 1);
  if (ManForm) ManForm->SetManualFreq(frequencyMHz);
}

void frmRunTest::ManualRf(bool on) {
  if (ManForm) ManForm->SetRfOn(on);
  ShowRf();
}

void frmRunTest::ManualMod(bool on) {
  if (ManForm) ManForm->SetModOn(on);
}

}  // namespace hylden
