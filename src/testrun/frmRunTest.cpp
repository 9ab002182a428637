#include "testrun/frmRunTest.h"

#include <QActionGroup>
#include <QEvent>
#include <QFontMetrics>
#include <QScrollBar>
#include <algorithm>

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "platform/qt/QtText.h"
#include "platform/qt/ThemeColors.h"
#include "shell/Shell.h"
#include "testrun/frmManual.h"
#include "testrun/frmRunButtons.h"
#include "testrun/qt/RunWindowPlace.h"
#include "text/Pattern.h"
#include "ui_frmRunTest.h"

namespace hylden {

namespace {

constexpr char kNothing[] = "--";
constexpr int kFollowMs = 50;
constexpr int kRfWatchMs = 100;
constexpr int kCommentColumn = static_cast<int>(RunColumn::TestLevel);

/// Text that is already there costs no layout and no painting: the countdown is written a thousand times a second.
void Show(QLabel& label, const QString& text) {
  if (label.text() != text) label.setText(text);
}

void ShowNumber(QLabel& label, double value, std::string_view pattern) {
  Show(label, ToQt(Format(value, pattern)));
}

}  // namespace

frmRunTest::frmRunTest(Shell& shell, Instruments& instruments, Documents& documents, QWidget* parent)
    : WorkingForm(parent),
      shell_(shell),
      instruments_(instruments),
      documents_(documents),
      ui_(std::make_unique<Ui::frmRunTest>()),
      engine_(shell, instruments, documents, *this, *this),
      commands_(shell, documents, engine_, *this),
      model_(engine_.Data()) {
  ui_->setupUi(this);
  marks_ = {{ui_->lblSigGenLevel, false}, {ui_->lblInducedLevel, false}, {ui_->lblPower, false}};
  SetUpTable();
  SetUpStatusBar();
  ConnectFileMenu();
  ConnectUnits();
  connect(ui_->mnuHelpRun, &QAction::triggered, this, [this] { emit HelpRequested(HelpTopic()); });
  follow_.setObjectName(QStringLiteral("tmrFollow"));
  follow_.setSingleShot(true);
  follow_.setInterval(kFollowMs);
  connect(&follow_, &QTimer::timeout, this, &frmRunTest::FollowRow);
  rfWatch_.setInterval(kRfWatchMs);
  connect(&rfWatch_, &QTimer::timeout, this, &frmRunTest::ShowRf);
  StartAfresh();
  ShowRf();
  FileMenuEnabled(false);
  RestorePlace(shell_, windowkey::kRunTestForm, *this);
}

frmRunTest::~frmRunTest() = default;

void frmRunTest::SetUpTable() {
  QTableView& table = *ui_->flxTestData;
  table.setModel(&model_);
  // Every row is of one height, and no column asks its rows how wide they are.
  table.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  table.verticalHeader()->setDefaultSectionSize(QFontMetrics(table.font()).height() + 6);
  table.horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  table.horizontalHeader()->setHighlightSections(false);
  const QScrollBar* const bar = table.verticalScrollBar();
  connect(bar, &QScrollBar::valueChanged, this, [this, bar](int value) { following_ = value == bar->maximum(); });
  connect(bar, &QScrollBar::rangeChanged, &follow_, [this] { follow_.start(); });
}

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
    try {
      SaveRunData(shell_, engine_.Data());
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
    Show(*label, QString::fromLatin1(kNothing));
  frequencyPanel_->clear();
  for (Marked& mark : marks_) mark.red = false;
  ShowMarks();
  ShowTestLevelNow();
  ShowInducedLevelNow();
  ShowPowerNow();
  ClearCountdown();
  step_ = filledRows_ = 0;
  following_ = true;
  ui_->prgSteps->setValue(0);
  ui_->flxTestData->clearSpans();
}

void frmRunTest::ClearCountdown() {
  Show(*ui_->lblCountdown, QString::fromLatin1(kNothing));
  dwellPanel_->clear();
}

void frmRunTest::Countdown(double seconds) {
  const QString left = ToQt(Format(std::max(0.0, seconds), "##0.0"));
  Show(*ui_->lblCountdown, left);
  Show(*dwellPanel_, QStringLiteral("Dwelling ") + left);
}

void frmRunTest::Status(const std::string& text) {
  Show(*statusPanel_, ToQt(text));
  Show(*ui_->lblState, ToQt(text));
  ShowRf();
}

void frmRunTest::Step(int step) {
  step_ = step;
  Show(*ui_->lblStep, QStringLiteral("Step# %1").arg(step));
}

void frmRunTest::Frequency(double frequencyMHz) {
  ShowNumber(*ui_->lblFreq, frequencyMHz, "#0.0#####");
  Show(*frequencyPanel_, ToQt(Format(frequencyMHz, "0.0#####")) + QStringLiteral(" MHz"));
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

void frmRunTest::ShowTestLevelNow() {
  const ShownLevel shown = ShowTestLevel(double{testLevelDbuv_.value_or(0)}, units_.TestLevel,
                                         documents_.testSetup.Definition.EUTCircuitImpedance);
  Show(*ui_->lblTestLevelCap, ScreenText(shown.Caption));
  Show(*ui_->lblTestLevel, testLevelDbuv_ ? ToQt(shown.Value) : QString::fromLatin1(kNothing));
  ui_->lblTestLevel->setToolTip(testLevelDbuv_ ? ToQt(shown.ToolTip) : QString());
}

void frmRunTest::ShowInducedLevelNow() {
  const ShownLevel shown = ShowInducedLevel(inducedDbua_.value_or(0), inducedLimitDbua_, units_.Induced,
                                            documents_.testSetup.Definition.EUTCircuitImpedance);
  Show(*ui_->lblInducedLevelCap, ScreenText(shown.Caption));
  Show(*ui_->lblInducedLevel, inducedDbua_ ? ToQt(shown.Value) : QString::fromLatin1(kNothing));
  ui_->lblInducedLevel->setToolTip(ToQt(shown.ToolTip));
}

void frmRunTest::ShowPowerNow() {
  const ShownLevel shown = ShowPower(powerDbm_.value_or(0), units_.Power);
  Show(*ui_->lblPowerCap, ScreenText(shown.Caption));
  Show(*ui_->lblPower, powerDbm_ ? ToQt(shown.Value) : QString::fromLatin1(kNothing));
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
  if (event->type() != QEvent::PaletteChange || marks_.empty()) return;
  ShowMarks();
  rfShown_ = !instruments_.sigGen.RfIsOn();  // its colours are of the theme before
  ShowRf();
}

void frmRunTest::ShowRf() {
  const bool on = instruments_.sigGen.RfIsOn();
  if (on == rfShown_) return;
  rfShown_ = on;
  QPalette colours;
  if (on) {
    colours.setColor(QPalette::Window, HighlightRed(palette()));
    colours.setColor(QPalette::WindowText, IsDark(palette()) ? Qt::black : Qt::white);
  }
  ui_->lblRf->setPalette(colours);
  ui_->lblRf->setText(on ? QStringLiteral("RF ON") : QStringLiteral("RF off"));
}

void frmRunTest::Dwell(double seconds) {
  ShowNumber(*ui_->lblDwell, seconds, "###0.00");
}

void frmRunTest::Plan(int steps, double estimatedMinutes) {
  Show(*ui_->lblSteps, QString::number(steps));
  ui_->prgSteps->setRange(0, std::max(1, steps));
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
  if (!follow_.isActive()) follow_.start();
}

void frmRunTest::FollowRow() {
  if (!following_ || model_.rowCount() == 0) return;
  ui_->flxTestData->setCurrentIndex(model_.index(model_.rowCount() - 1, 0));
  ui_->flxTestData->scrollToBottom();
}

}  // namespace hylden
