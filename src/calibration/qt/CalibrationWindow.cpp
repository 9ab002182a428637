#include "calibration/qt/CalibrationWindow.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QProgressBar>
#include <QScopeGuard>
#include <QStatusBar>
#include <QTableView>
#include <algorithm>
#include <exception>
#include <utility>

#include "instruments/SigGen.h"
#include "platform/qt/CommandWindow.h"
#include "run/qt/RowTable.h"
#include "shell/Shell.h"
#include "widgets/LabelText.h"
#include "widgets/RfLamp.h"
#include "widgets/TableFollower.h"

namespace hylden {

namespace {

constexpr int kRfWatchMs = 100;
constexpr std::string_view kRange = "####0.0#####", kDwell = "##0.0##", kMinutes = "###0.0#", kRemaining = "###0.0";
constexpr char kIdle[] = "Idle";

/// A key that is held down presses a button once.
class HeldKeyFilter : public QObject {
 public:
  using QObject::QObject;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::KeyPress) return QObject::eventFilter(watched, event);
    const auto& press = *static_cast<QKeyEvent*>(event);
    const bool presses = press.key() == Qt::Key_Return || press.key() == Qt::Key_Enter || press.key() == Qt::Key_Space;
    return presses && press.isAutoRepeat();
  }
};

}  // namespace

CalibrationWindow::CalibrationWindow(Shell& shell, SigGen& sigGen, QWidget* parent)
    : WorkingForm(shell, parent),
      sigGen_(sigGen),
      escape_([this](const QWidget& window) { return &window == this; }, [this] { PressHalt(); }) {
  rfWatch_.setInterval(kRfWatchMs);
  connect(&rfWatch_, &QTimer::timeout, this, &CalibrationWindow::ShowRf);
}

void CalibrationWindow::SetUp(const Controls& controls, const Patterns& patterns, RowTable& table) {
  controls_ = controls;
  patterns_ = patterns;
  table_ = &table;
  controls_.Table->setModel(table_);
  follower_ = new TableFollower(*controls_.Table);
  SetUpStatusBar();
  controls_.Halt->setEnabled(false);
  connect(controls_.Halt, &QAbstractButton::clicked, this, [this] {
    shell_.delay.RequestHalt();
    Status("Halting...");
  });
  connect(controls_.Exit, &QAbstractButton::clicked, this, &QWidget::close);
  // A key still held down from the run before must not start the next one.
  auto* const held = new HeldKeyFilter(this);
  for (QAbstractButton* const button : findChildren<QAbstractButton*>()) button->installEventFilter(held);
  StartAfresh();
  Status({});
}

void CalibrationWindow::SetUpStatusBar() {
  const auto panel = [this](const char* name, const char* meaning) {
    auto* const label = new QLabel;
    label->setObjectName(QString::fromLatin1(name));
    label->setAccessibleName(QString::fromLatin1(meaning));
    label->setToolTip(label->accessibleName());
    label->setTextFormat(Qt::PlainText);
    return label;
  };
  statusPanel_ = panel("pnlStatus", "State of the run");
  statusPanel_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);  // a long reason makes no window wide
  stepPanel_ = panel("pnlStep", "The frequency that was completed last");
  dwellPanel_ = panel("pnlDwell", "What is left of the wait, seconds");
  statusBar()->addWidget(statusPanel_, 1);
  statusBar()->addPermanentWidget(stepPanel_);
  statusBar()->addPermanentWidget(dwellPanel_);
}

void CalibrationWindow::StartAfresh() {
  for (QLabel* const label :
       {controls_.Freq, controls_.SigGen, controls_.MeterLevel, controls_.Step, controls_.Elapsed, controls_.Remaining})
    ShowText(*label, QString::fromLatin1(kNoFigure));
  stepPanel_->clear();
  ClearCountdown();
  controls_.Progress->setValue(0);
  follower_->StartAfresh();
}

void CalibrationWindow::ClearCountdown() {
  ShowText(*controls_.Countdown, QString::fromLatin1(kNoFigure));
  dwellPanel_->clear();
}

void CalibrationWindow::OnRun(QAbstractButton* button, std::function<void()> run) {
  On(button, [this, calibrate = std::move(run)] { RunFrom(calibrate); });
}

void CalibrationWindow::RunFrom(const std::function<void()>& run) {
  if (inRun_) return;
  const auto done = qScopeGuard([this] {
    rfWatch_.stop();
    escape_.Stop();
    inRun_ = false;
    ShowRf();
  });
  inRun_ = true;
  escape_.Start();
  rfWatch_.start();
  run();
}

void CalibrationWindow::PressHalt() {
  controls_.Halt->click();
}

void CalibrationWindow::Hurry() {
  if (!inRun_) return;
  // Also where the button can't be pressed: a run that is being brought up has to see it.
  shell_.delay.RequestHalt();
  PressHalt();
}

void CalibrationWindow::Phase(RunPhase phase) {
  ShowBusy(phase == RunPhase::BringingUp || phase == RunPhase::TakingDown);
  if (phase == RunPhase::BringingUp) SetRunning(true);
  if (phase == RunPhase::Ready) SetRunning(false);
}

void CalibrationWindow::SetRunning(bool running) {
  controls_.Halt->setEnabled(running);
  controls_.Exit->setEnabled(!running);
  controls_.File->setEnabled(!running);
  for (QAction* const action : controls_.File->actions()) action->setEnabled(!running);
  if (running) {
    StartAfresh();
    controls_.Halt->setFocus();
    return;
  }
  ClearCountdown();
  Status({});
  follower_->Follow();
}

void CalibrationWindow::Status(const std::string& text) {
  const QString shown = text.empty() ? QString::fromLatin1(kIdle) : ToQt(text);
  ShowText(*statusPanel_, shown);
  ShowText(*controls_.State, shown.section(QLatin1Char(':'), 0, 0));  // the reason stands in the status bar
  ClearCountdown();
  ShowRf();
}

void CalibrationWindow::ShowRf() {
  controls_.Rf->ShowRf(sigGen_.RfIsOn(), sigGen_.RfState() != Rf::Unknown);
}

void CalibrationWindow::ShowBusy(bool busy) {
  if (busy == std::exchange(busy_, busy)) return;
  if (busy)
    QApplication::setOverrideCursor(Qt::WaitCursor);
  else
    QApplication::restoreOverrideCursor();
}

void CalibrationWindow::Plan(const RunPlan& plan) {
  ShowText(*controls_.Steps, QString::number(plan.Steps));
  ShowNumber(*controls_.Start, plan.StartMHz, kRange);
  ShowNumber(*controls_.Stop, plan.StopMHz, kRange);
  ShowNumber(*controls_.Dwell, plan.DwellSeconds, kDwell);
  controls_.Progress->setRange(0, std::max(1, plan.Steps));
  controls_.Progress->setValue(0);
  if (plan.EstimatedMinutes > 0) Show(Readout::Remaining, plan.EstimatedMinutes);
}

void CalibrationWindow::Countdown(double seconds) {
  const QString left = ToQt(Format(std::max(0.0, seconds), "##0.0"));
  ShowText(*controls_.Countdown, left);
  ShowText(*dwellPanel_, QStringLiteral("Dwelling ") + left);
}

void CalibrationWindow::Show(Readout readout, std::optional<double> value) {
  const double number = value.value_or(0);
  switch (readout) {
    case Readout::Frequency:
      return ShowNumber(*controls_.Freq, number, patterns_.Freq);
    case Readout::SigGenLevel:
      ShowRf();
      return ShowNumber(*controls_.SigGen, number, patterns_.SigGen);
    case Readout::MeterLevel:
      return ShowNumber(*controls_.MeterLevel, number, patterns_.MeterLevel);
    case Readout::Elapsed:
      return ShowNumber(*controls_.Elapsed, number, kMinutes);
    case Readout::Remaining:
      return ShowNumber(*controls_.Remaining, number, kRemaining);
    default:
      return;
  }
}

void CalibrationWindow::StepDone(int step) {
  ShowText(*controls_.Step, QString::number(step));
  ShowText(*stepPanel_, QStringLiteral("Step Number %1").arg(step));
  controls_.Progress->setValue(step);
}

void CalibrationWindow::RowChanged(int row) {
  table_->RowChanged(row);
  follower_->RowChanged();
}

}  // namespace hylden
