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
#include "widgets/LabelText.h"
#include "widgets/TableFollower.h"
#include "widgets/ThemeColors.h"

namespace hylden {

namespace {

constexpr int kRfWatchMs = 100;
constexpr int kCommentColumn = static_cast<int>(RunColumn::TestLevel);

}  // namespace

frmRunTest::frmRunTest(Shell& shell, Instruments& instruments, Documents& documents, QWidget* parent)
    : WorkingForm(parent),
      shell_(shell),
      instruments_(instruments),
      documents_(documents),
      ui_(std::make_unique<Ui::frmRunTest>()),
      engine_(shell, instruments, documents, *this, *this),
      commands_(shell, documents, engine_, *this),
      model_(engine_.Data()),
      escape_([this](const QWidget& window) { return IsOurs(window); }, [this] { PressHalt(); }) {
  ui_->setupUi(this);
  marks_ = {{ui_->lblSigGenLevel, false}, {ui_->lblInducedLevel, false}, {ui_->lblPower, false}};
  ui_->flxTestData->setModel(&model_);
  follower_ = new TableFollower(*ui_->flxTestData);
  SetUpStatusBar();
  ConnectFileMenu();
  ConnectUnits();
  connect(ui_->mnuHelpRun, &QAction::triggered, this, &frmRunTest::AskForHelp);
  connect(ui_->cmdRunHalt, &QPushButton::clicked, this, &frmRunTest::PressHalt);
  rfWatch_.setInterval(kRfWatchMs);
  connect(&rfWatch_, &QTimer::timeout, this, &frmRunTest::ShowRf);
  StartAfresh();
  ShowRf();
  FileMenuEnabled(false);
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
  connect(ui_->mnuFileSave, &QAction::triggered, this, [this] {
    const CommandWindow saving(*this);
    try {
      engine_.Save();
    } catch (const std::exception& error) {
      shell_.ReportError(error, "mnuFileSave");
    }
  });
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
  const CommandWindow printing(*this);
  try {
    PrintRunReport(shell_, documents_, engine_.Data(), kind);
  } catch (const std::exception& error) {
    shell_.ReportError(error, "mnuFilePrint");
  }
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
  Remaining(estimatedMinutes_);
  step_ = filledRows_ = 0;
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
  step_ = step;
  ShowText(*ui_->lblStep, QStringLiteral("Step# %1").arg(step));
}

void frmRunTest::ManualStep(int step, int row) {
  ShowText(*ui_->lblStep, QStringLiteral("Step# %1").arg(step));
  follower_->Hold(row - 1);
}

void frmRunTest::Frequency(double frequencyMHz) {
  ShowNumber(*ui_->lblFreq, frequencyMHz, "#0.0#####");
  ShowText(*frequencyPanel_, ToQt(Format(frequencyMHz, "0.0#####")) + QStringLiteral(" MHz"));
}

void frmRunTest::SigGenLevel(float levelDbm) {
  ShowNumber(*ui_->lblSigGenLevel, double{levelDbm}, "##0.0");
}

void frmRunTest::TestLevel(float levelDbuv) {
  testLevelDbuv_ = levelDbuv;
  ShowTestLevelNow();
}

void frmRunTest::InducedLevel(double levelDbua, double limitDbua) {
  inducedDbua_ = levelDbua;
  inducedLimitDbua_ = limitDbua;
  ShowInducedLevelNow();
}

void frmRunTest::Power(double powerDbm) {
  powerDbm_ = powerDbm;
  ShowPowerNow();
}

void frmRunTest::ForgetReadings() {
  inducedDbua_.reset();
  powerDbm_.reset();
  ShowInducedLevelNow();
  ShowPowerNow();
}

void frmRunTest::ShowTestLevelNow() {
  const ShownLevel shown = ShowTestLevel(double{testLevelDbuv_.value_or(0)}, units_.TestLevel,
                                         documents_.testSetup.Definition.EUTCircuitImpedance);
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

void frmRunTest::Highlight(Quantity quantity, bool red) {
  marks_[static_cast<std::size_t>(quantity)].red = red;
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

void frmRunTest::Dwell(double seconds) {
  ShowNumber(*ui_->lblDwell, seconds, "###0.00");
}

void frmRunTest::Plan(int steps, double estimatedMinutes) {
  ShowText(*ui_->lblSteps, QString::number(steps));
  ui_->prgSteps->setRange(0, std::max(1, steps));
  estimatedMinutes_ = estimatedMinutes;
  Remaining(estimatedMinutes);
}

void frmRunTest::Range(double startMHz, double stopMHz) {
  ShowNumber(*ui_->lblStartFreq, startMHz, "#0.0#####");
  ShowNumber(*ui_->lblStopFreq, stopMHz, "#0.0#####");
}

void frmRunTest::Elapsed(double minutes) {
  ShowNumber(*ui_->lblElapsed, minutes, "##0.0");
}

void frmRunTest::Remaining(double minutes) {
  ShowNumber(*ui_->lblEstTime, minutes, "##0.0");
}

void frmRunTest::RowChanged(int row) {
  model_.RowChanged(row);
  if (row < 0) {
    StartAfresh();
    return;
  }
  const bool added = row > filledRows_;
  filledRows_ = std::max(filledRows_, row);
  const bool threshold = model_.IsThreshold(row - 1);
  if (threshold && added) ui_->flxTestData->setSpan(row - 1, kCommentColumn, 1, model_.columnCount() - kCommentColumn);
  if (!threshold && !added) ui_->prgSteps->setValue(step_);
  follower_->RowChanged();
}

}  // namespace hylden
