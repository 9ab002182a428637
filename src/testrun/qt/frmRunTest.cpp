#include "testrun/qt/frmRunTest.h"

#include <QActionGroup>
#include <QEvent>
#include <algorithm>

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "platform/qt/CommandWindow.h"
#include "run/qt/RunWindowPlace.h"
#include "shell/Shell.h"
#include "testrun/qt/frmManual.h"
#include "testrun/qt/frmRunButtons.h"
#include "ui_frmRunTest.h"
#include "widgets/AlignedNumbers.h"
#include "widgets/LabelText.h"
#include "widgets/TableFollower.h"
#include "widgets/ThemeColors.h"

namespace hylden {

namespace {

constexpr int kRfWatchMs = 100;
constexpr std::string_view kMinutes = "##0.0";
constexpr int kCommentColumn = static_cast<int>(RunColumn::TestLevel);

}  // namespace

frmRunTest::frmRunTest(Shell& shell, Instruments& instruments, Documents& documents, QWidget* parent)
    : WorkingForm(shell, parent),
      instruments_(instruments),
      documents_(documents),
      ui_(std::make_unique<Ui::frmRunTest>()),
      engine_(shell, instruments, documents, *this, *this),
      table_(
          {kRunHeadings.begin(), kRunHeadings.end()},
          [this](std::size_t row, std::size_t column) {
            const auto& rows = engine_.Data().Entries();
            return row < rows.size() ? CellsOf(rows[row])[column] : std::string();
          },
          [this](std::size_t row, std::size_t column) { return column > 0 && IsThreshold(row); }),
      escape_([this](const QWidget& window) { return IsOurs(window); }, [this] { PressHalt(); }) {
  ui_->setupUi(this);
  marks_ = {{Readout::SigGenLevel, ui_->lblSigGenLevel},
            {Readout::InducedLevel, ui_->lblInducedLevel},
            {Readout::ForwardPower, ui_->lblPower}};
  ui_->flxTestData->setModel(&table_);
  follower_ = new TableFollower(*ui_->flxTestData);
  new AlignedNumbers(*ui_->flxTestData, {{6}, {1, true}, {1}, {1, true}, {1, true}, {1}});
  SetUpStatusBar();
  ConnectFileMenu();
  ConnectUnits();
  connect(ui_->mnuHelpRun, &QAction::triggered, this, &frmRunTest::AskForHelp);
  connect(ui_->cmdRunHalt, &QPushButton::clicked, this, &frmRunTest::PressHalt);
  rfWatch_.setInterval(kRfWatchMs);
  connect(&rfWatch_, &QTimer::timeout, this, &frmRunTest::ShowRf);
  StartAfresh();
  ShowRf();
  EnableFileMenu(false);
  RestorePlace(shell_, windowkey::kRunTestForm, *this);
  manualPlace_ = shell_.settings.GetFormPosition(windowkey::kManualForm);
}

frmRunTest::~frmRunTest() = default;

void frmRunTest::SetUpStatusBar() {
  const auto panel = [this](const char* name, const char* meaning) {
    auto* const label = new QLabel;
    label->setObjectName(QString::fromLatin1(name));
    label->setAccessibleName(QString::fromLatin1(meaning));
    label->setToolTip(label->accessibleName());
    label->setTextFormat(Qt::PlainText);
    return label;
  };
  statusPanel_ = panel("pnlStatus", "State of the run");
  frequencyPanel_ = panel("pnlFreq", "Frequency, MHz");
  dwellPanel_ = panel("pnlDwell", "What is left of the wait, seconds");
  ui_->statusBar->addWidget(statusPanel_, 1);
  ui_->statusBar->addPermanentWidget(frequencyPanel_);
  ui_->statusBar->addPermanentWidget(dwellPanel_);
}

void frmRunTest::ConnectFileMenu() {
  On(ui_->mnuFileSave, [this] { engine_.Save(); });
  const auto print = [this](QAction* action, QAction* preview, RunReportKind kind) {
    connect(action, &QAction::triggered, this, [this, kind] { PrintReport(kind); });
    connect(preview, &QAction::triggered, this, [this, kind] { emit PrintPreviewRequested(kind); });
  };
  print(ui_->mnuFilePrintBrief, ui_->mnuFilePreviewBrief, RunReportKind::Brief);
  print(ui_->mnuFilePrintDetailed, ui_->mnuFilePreviewDetailed, RunReportKind::Detailed);
  print(ui_->mnuFilePrintThreshold, ui_->mnuFilePreviewThreshold, RunReportKind::Threshold);
  connect(ui_->mnuFileExit, &QAction::triggered, this, &frmRunTest::close);
}

void frmRunTest::PrintReport(RunReportKind kind) {
  Guard("mnuFilePrint", [&] { PrintRunReport(shell_, documents_, engine_.Data(), kind); });
}

void frmRunTest::ConnectUnits() {
  OfferUnits(ui_->mnuUnitsTarget,
             {{ui_->mnuLevelUnitsDBuV, RunUnit::DbuV},
              {ui_->mnuLevelUnitsDBuA, RunUnit::DbuA},
              {ui_->mnuLevelUnitsDBm, RunUnit::Dbm},
              {ui_->mnuLevelUnitsMW, RunUnit::Milliwatts},
              {ui_->mnuLevelUnitsVolts, RunUnit::Volts}},
             units_.TestLevel, &frmRunTest::ShowTestLevelNow);
  OfferUnits(ui_->mnuUnitsInduced,
             {{ui_->mnuUnitsInducedDBuV, RunUnit::DbuV},
              {ui_->mnuUnitsInducedDBuA, RunUnit::DbuA},
              {ui_->mnuUnitsInducedDBM, RunUnit::Dbm},
              {ui_->mnuUnitsInducedMW, RunUnit::Milliwatts},
              {ui_->mnuUnitsInducedVolts, RunUnit::Volts},
              {ui_->mnuUnitsInducedRelative, RunUnit::Relative}},
             units_.Induced, &frmRunTest::ShowInducedLevelNow);
  OfferUnits(ui_->mnuUnitsPower, {{ui_->mnuUnitsPowerdBm, RunUnit::Dbm}, {ui_->mnuUnitsPowerWatts, RunUnit::Watts}},
             units_.Power, &frmRunTest::ShowPowerNow);
  OpenOnRightClick(ui_->mnuUnitsTarget, {ui_->lblTestLevel, ui_->lblTestLevelCap});
  OpenOnRightClick(ui_->mnuUnitsInduced, {ui_->lblInducedLevel, ui_->lblInducedLevelCap});
  OpenOnRightClick(ui_->mnuUnitsPower, {ui_->lblPower, ui_->lblPowerCap});
}

void frmRunTest::OfferUnits(QMenu* menu, const std::vector<UnitEntry>& entries, RunUnit& choice,
                            void (frmRunTest::*refresh)()) {
  auto* const group = new QActionGroup(menu);
  for (const UnitEntry& entry : entries) {
    group->addAction(entry.action);
    entry.action->setChecked(entry.unit == choice);
    connect(entry.action, &QAction::triggered, this, [this, &choice, unit = entry.unit, refresh] {
      choice = unit;
      (this->*refresh)();
    });
  }
}

void frmRunTest::OpenOnRightClick(QMenu* menu, const std::vector<QWidget*>& labels) {
  for (QWidget* const label : labels) {
    label->setContextMenuPolicy(Qt::CustomContextMenu);
    // A pop-up that returns at once: a menu that waits for its choice would hold up the run.
    connect(label, &QWidget::customContextMenuRequested, menu,
            [menu, label](const QPoint& position) { menu->popup(label->mapToGlobal(position)); });
  }
}

void frmRunTest::StartAfresh() {
  testLevelDbuv_.reset();
  inducedDbua_.reset();
  powerDbm_.reset();
  for (QLabel* const label : {static_cast<QLabel*>(ui_->lblFreq), static_cast<QLabel*>(ui_->lblSigGenLevel),
                              ui_->lblStep, ui_->lblDwell, ui_->lblElapsed})
    ShowText(*label, QString::fromLatin1(kNoFigure));
  frequencyPanel_->clear();
  for (Marked& mark : marks_) mark.red = false;
  ShowMarks();
  ShowTestLevelNow();
  ShowInducedLevelNow();
  ShowPowerNow();
  ClearCountdown();
  Show(Readout::Remaining, estimatedMinutes_);
  follower_->StartAfresh();
  ui_->prgSteps->setValue(0);
  ui_->flxTestData->clearSpans();
}

void frmRunTest::ClearCountdown() {
  ShowText(*ui_->lblCountdown, QString::fromLatin1(kNoFigure));
  dwellPanel_->clear();
}

void frmRunTest::Countdown(double seconds) {
  const QString left = ToQt(Format(std::max(0.0, seconds), "##0.0"));
  ShowText(*ui_->lblCountdown, left);
  ShowText(*dwellPanel_, QStringLiteral("Dwelling ") + left);
}

void frmRunTest::Status(const std::string& text) {
  ShowText(*statusPanel_, ToQt(text));
  ShowText(*ui_->lblState, ToQt(text));
  ShowRf();
}

void frmRunTest::Step(int step) {
  ShowText(*ui_->lblStep, QStringLiteral("Step# %1").arg(step));
}

void frmRunTest::StepDone(int step) {
  ui_->prgSteps->setValue(step);
}

void frmRunTest::Show(Readout readout, std::optional<double> value) {
  const double number = value.value_or(0);
  switch (readout) {
    case Readout::Frequency:
      ShowNumber(*ui_->lblFreq, number, "#0.0#####");
      return ShowText(*frequencyPanel_, ToQt(Format(number, "0.0#####")) + QStringLiteral(" MHz"));
    case Readout::SigGenLevel:
      return ShowNumber(*ui_->lblSigGenLevel, number, "##0.0");
    case Readout::TestLevel:
      testLevelDbuv_ = value;
      return ShowTestLevelNow();
    case Readout::InducedLimit:
      inducedLimitDbua_ = number;
      return;
    case Readout::InducedLevel:
      inducedDbua_ = value;
      return ShowInducedLevelNow();
    case Readout::ForwardPower:
      powerDbm_ = value;
      return ShowPowerNow();
    case Readout::Dwell:
      return ShowNumber(*ui_->lblDwell, number, "###0.00");
    case Readout::Elapsed:
      return ShowNumber(*ui_->lblElapsed, number, kMinutes);
    case Readout::Remaining:
      return ShowNumber(*ui_->lblEstTime, number, kMinutes);
    default:
      return;
  }
}

void frmRunTest::ShowTestLevelNow() {
  const ShownLevel shown =
      ShowTestLevel(testLevelDbuv_.value_or(0), units_.TestLevel, documents_.testSetup.Definition.EUTCircuitImpedance);
  ShowText(*ui_->lblTestLevelCap, ScreenText(shown.Caption));
  ShowText(*ui_->lblTestLevel, testLevelDbuv_ ? ToQt(shown.Value) : QString::fromLatin1(kNoFigure));
  ui_->lblTestLevel->setToolTip(testLevelDbuv_ ? ToQt(shown.ToolTip) : QString());
}

void frmRunTest::ShowInducedLevelNow() {
  const ShownLevel shown = ShowInducedLevel(inducedDbua_.value_or(0), inducedLimitDbua_, units_.Induced,
                                            documents_.testSetup.Definition.EUTCircuitImpedance);
  ShowText(*ui_->lblInducedLevelCap, ScreenText(shown.Caption));
  ShowText(*ui_->lblInducedLevel, inducedDbua_ ? ToQt(shown.Value) : QString::fromLatin1(kNoFigure));
  ui_->lblInducedLevel->setToolTip(ToQt(shown.ToolTip));
}

void frmRunTest::ShowPowerNow() {
  const ShownLevel shown = ShowPower(powerDbm_.value_or(0), units_.Power);
  ShowText(*ui_->lblPowerCap, ScreenText(shown.Caption));
  ShowText(*ui_->lblPower, powerDbm_ ? ToQt(shown.Value) : QString::fromLatin1(kNoFigure));
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
  WorkingForm::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) ShowMarks();
}

void frmRunTest::ShowRf() {
  ui_->lblRf->ShowRf(instruments_.sigGen.RfIsOn(), instruments_.sigGen.RfState() != Rf::Unknown);
}

void frmRunTest::Plan(const RunPlan& plan) {
  ShowText(*ui_->lblSteps, QString::number(plan.Steps));
  ShowNumber(*ui_->lblStartFreq, plan.StartMHz, "#0.0#####");
  ShowNumber(*ui_->lblStopFreq, plan.StopMHz, "#0.0#####");
  ui_->prgSteps->setRange(0, std::max(1, plan.Steps));
  estimatedMinutes_ = plan.EstimatedMinutes;
  Show(Readout::Remaining, estimatedMinutes_);
}

bool frmRunTest::IsThreshold(std::size_t row) const {
  const auto& rows = engine_.Data().Entries();
  return row < rows.size() && hylden::IsThreshold(rows[row]);
}

void frmRunTest::RowChanged(int row) {
  table_.RowChanged(row);
  if (row == 0) {
    StartAfresh();
    return;
  }
  if (IsThreshold(static_cast<std::size_t>(row) - 1))
    ui_->flxTestData->setSpan(row - 1, kCommentColumn, 1, table_.columnCount() - kCommentColumn);
  follower_->RowChanged();
}

}  // namespace hylden
