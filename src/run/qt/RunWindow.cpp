#include "run/qt/RunWindow.h"

#include <QAbstractButton>
#include <QApplication>
#include <QBoxLayout>
#include <QGridLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QProgressBar>
#include <QScopeGuard>
#include <QStatusBar>
#include <QTableView>
#include <algorithm>
#include <cmath>
#include <utility>

#include "instruments/SigGen.h"
#include "platform/qt/RepaintFilter.h"
#include "run/UnsavedRows.h"
#include "run/qt/RowTable.h"
#include "run/qt/RunCurvePanel.h"
#include "run/qt/RunLayout.h"
#include "shell/Shell.h"
#include "text/Duration.h"
#include "widgets/CurvePicture.h"
#include "widgets/CurveView.h"
#include "widgets/LabelText.h"
#include "widgets/RfLamp.h"
#include "widgets/TableCopy.h"
#include "widgets/TableFollower.h"
#include "widgets/WindowPlace.h"

namespace hylden {

namespace {

constexpr int kRfWatchMs = 100, kTimeParts = 1000;
/// Below this height, pixels, the room for a second row of figures is worth more to table and curves.
constexpr int kTightHeight = 600, kFigureRows = 2;
constexpr std::string_view kRange = "#0.0#####", kDwell = "##0.0##";
constexpr char kIdle[] = "Idle";

/// A key that is held down presses a button of the window once.
class HeldKeyFilter : public QObject {
 public:
  explicit HeldKeyFilter(QWidget& window) : QObject(&window) {
    for (QAbstractButton* const button : window.findChildren<QAbstractButton*>()) button->installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::KeyPress) return QObject::eventFilter(watched, event);
    const auto& press = *static_cast<QKeyEvent*>(event);
    const bool presses = press.key() == Qt::Key_Return || press.key() == Qt::Key_Enter || press.key() == Qt::Key_Space;
    return presses && press.isAutoRepeat();
  }
};

}  // namespace

RunWindow::RunWindow(Shell& shell, SigGen& sigGen, QWidget* parent)
    : WorkingForm(shell, parent),
      sigGen_(sigGen),
      escape_([this](const QWidget& window) { return IsOurs(window); }, [this] { PressHalt(); }) {
  rfWatch_.setInterval(kRfWatchMs);
  connect(&rfWatch_, &QTimer::timeout, this, &RunWindow::ShowRf);
}

void RunWindow::SetUp(Controls controls, RowTable& table, UnsavedRows& rows, const Panel& panel) {
  controls_ = std::move(controls);
  table_ = &table;
  rows_ = &rows;
  caption_ = windowTitle();
  controls_.Table->setModel(table_);
  follower_ = new TableFollower(*controls_.Table);
  new TableCopy(*controls_.Table);
  SetUpStatusBar(panel);
  controls_.Halt->setEnabled(false);
  controls_.Halt->setProperty(kHaltsProperty, true);
  connect(controls_.Halt, &QAbstractButton::clicked, this, &RunWindow::Halt);
  On(controls_.Picture, [this] { SavePicture(); });
  connect(controls_.Exit, &QAction::triggered, this, &QWidget::close);
  connect(controls_.Help, &QAction::triggered, this, &RunWindow::AskForHelp);
  // A key still held down from the run before must not start the next one.
  new HeldKeyFilter(*this);
  StartAfresh();
  Status({});
}

void RunWindow::RestoreLayout(std::string_view windowKey) {
  layoutKey_ = windowKey;
  RunLayout{*this, *controls_.Split, *controls_.Curves}.Restore(shell_, windowKey);
  RestorePlace(shell_, windowKey, *this);
}

void RunWindow::SetCaption(const QString& caption) {
  caption_ = caption;
  ShowCaption();
}

void RunWindow::ShowCaption() {
  QString text = caption_;
  if (running_ && step_ > 0) text += QStringLiteral(" - step %1 of %2").arg(step_).arg(steps_);
  if (running_ || sigGen_.RfIsOn()) text += QStringLiteral(" - ") + controls_.Rf->text();
  if (windowTitle() != text) setWindowTitle(text);
}

QLabel* RunWindow::MakePanel(const Panel& panel) {
  auto* const label = new QLabel;
  label->setObjectName(QString::fromLatin1(panel.Name));
  label->setAccessibleName(QString::fromLatin1(panel.Meaning));
  label->setToolTip(label->accessibleName());
  label->setTextFormat(Qt::PlainText);
  return label;
}

void RunWindow::SetUpStatusBar(const Panel& panel) {
  statusPanel_ = MakePanel({"pnlStatus", "State of the run"});
  statusPanel_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);  // a long reason makes no window wide
  panel_ = MakePanel(panel);
  panelTellsStep_ = panel.TellsStep;
  dwellPanel_ = MakePanel({"pnlDwell", "What is left of the wait, seconds"});
  statusBar()->addWidget(statusPanel_, 1);
  notePanel_ = MakePanel({"pnlNote", "What the operator has to know of this run"});
  notePanel_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  notePanel_->hide();
  statusBar()->addWidget(notePanel_, 2);
  timePanel_ = MakePanel({"pnlTime", "How long the run takes yet, by what earlier runs took"});
  statusBar()->addPermanentWidget(timePanel_);
  statusBar()->addPermanentWidget(panel_);
  statusBar()->addPermanentWidget(dwellPanel_);
}

void RunWindow::SavePicture() {
  const auto path = shell_.dialogs.SaveFile(
      {"Save curves as picture", kCurvePictureFilter, shell_.settings.GetDataDir(datakind::kTestResults), {}});
  if (path) SaveCurvePicture(shell_, controls_.Curves->View(), *path);
}

void RunWindow::StartAfresh() {
  for (const Figure& figure : controls_.Figures) ShowText(*figure.Label, QString::fromLatin1(kNoFigure));
  ShowText(*controls_.Step, QString::fromLatin1(kNoFigure));
  panel_->clear();
  notePanel_->hide();
  ClearCountdown();
  ShowProgress(0);
  step_ = 0;
  elapsedMinutes_ = remainingMinutes_ = std::nullopt;
  ShowTimes();
  follower_->StartAfresh();
}

void RunWindow::ClearCountdown() {
  ShowText(*controls_.Countdown, QString::fromLatin1(kNoFigure));
  dwellPanel_->clear();
}

void RunWindow::RunFrom(const std::function<void()>& run) {
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

void RunWindow::Tighten() {
  ArrangeFigures(true);
}

void RunWindow::ArrangeFigures(bool inOneRow) {
  if (inOneRow == std::exchange(figuresInOneRow_, inOneRow)) return;
  QGridLayout& grid = *controls_.FigureGrid;
  std::vector<QWidget*> cells;
  cells.reserve(static_cast<std::size_t>(grid.count()));
  for (int i = 0; i < grid.count(); ++i) cells.push_back(grid.itemAt(i)->widget());
  const int count = static_cast<int>(cells.size()), columns = inOneRow ? count : count / kFigureRows;
  for (int i = 0; i < count; ++i) {
    grid.addWidget(cells[static_cast<std::size_t>(i)], i / columns, i % columns);
    grid.setColumnStretch(i, i < columns ? 1 : 0);
  }
  grid.setRowStretch(1, inOneRow ? 0 : 1);
  auto& page = *static_cast<QBoxLayout*>(centralWidget()->layout());
  const int share = page.stretch(0);
  page.setStretch(0, figuresShare_);
  figuresShare_ = share;
}

void RunWindow::resizeEvent(QResizeEvent* event) {
  WorkingForm::resizeEvent(event);
  if (controls_.FigureGrid) ArrangeFigures(height() < kTightHeight);
}

void RunWindow::PressHalt() {
  controls_.Halt->click();
}

void RunWindow::Halt() {
  shell_.delay.RequestHalt();
  Status("Halting...");
}

bool RunWindow::AsksToSave() const {
  return rows_->IsAsking();
}

bool RunWindow::SaveMissed() const {
  return rows_->AreMissed();
}

bool RunWindow::QueryUnload() {
  if (!rows_->MayLeave()) return false;
  if (layoutKey_.empty()) return true;
  RunLayout{*this, *controls_.Split, *controls_.Curves}.Remember(shell_, layoutKey_);
  RememberPlace(shell_, layoutKey_, *this);
  return true;
}

void RunWindow::Hurry() {
  if (!inRun_) return;
  // Also where the button can't be pressed: a run that is being brought up has to see it.
  shell_.delay.RequestHalt();
  PressHalt();
}

void RunWindow::Phase(RunPhase phase) {
  ShowBusy(phase == RunPhase::BringingUp || phase == RunPhase::TakingDown);
  if (phase == RunPhase::BringingUp) SetRunning(true);
  if (phase == RunPhase::Ready) SetRunning(false);
}

void RunWindow::SetRunning(bool running) {
  running_ = running;
  controls_.Halt->setEnabled(running);
  for (QWidget* const control : controls_.Idle) control->setEnabled(!running);
  EnableFile(!running);
  if (running) return StartAfresh();
  ClearCountdown();
  controls_.Curves->SetFrequency(std::nullopt);
  Status({});
  follower_->Follow();
}

void RunWindow::EnableFile(bool enabled) {
  QList<QMenu*> menus = controls_.File->findChildren<QMenu*>();
  for (const QMenu* const menu : menus << controls_.File)
    for (QAction* const action : menu->actions()) action->setEnabled(enabled);
  controls_.File->setEnabled(enabled);
}

void RunWindow::Status(const std::string& text) {
  const QString shown = text.empty() ? QString::fromLatin1(kIdle) : ToQt(text);
  ShowStatus(shown, shown.section(QLatin1Char(':'), 0, 0));  // the reason stands in the status bar
  ClearCountdown();
}

void RunWindow::Note(const std::string& text) {
  ShowText(*notePanel_, ToQt(text));
  notePanel_->setToolTip(notePanel_->text());
  notePanel_->show();
}

void RunWindow::ShowStatus(const QString& statusBar, const QString& state) {
  ShowText(*statusPanel_, statusBar);
  ShowText(*controls_.State, state);
  ShowRf();
}

void RunWindow::ShowPanel(const QString& text) {
  ShowText(*panel_, text);
}

void RunWindow::ShowRf() {
  controls_.Rf->ShowRf(sigGen_.RfIsOn(), sigGen_.RfState() != Rf::Unknown);
  ShowCaption();
}

void RunWindow::ShowBusy(bool busy) {
  if (busy == std::exchange(busy_, busy)) return;
  if (busy)
    QApplication::setOverrideCursor(Qt::WaitCursor);
  else
    QApplication::restoreOverrideCursor();
}

void RunWindow::Plan(const RunPlan& plan) {
  steps_ = plan.Steps;
  ShowText(*controls_.Steps, QString::number(plan.Steps));
  ShowNumber(*controls_.Start, plan.StartMHz, kRange);
  ShowNumber(*controls_.Stop, plan.StopMHz, kRange);
  if (controls_.Dwell) ShowNumber(*controls_.Dwell, plan.DwellSeconds, kDwell);
  byTime_ = false;
  controls_.Progress->setRange(0, std::max(1, steps_));
  ShowProgress(0);
  if (plan.EstimatedMinutes > 0) Show(Readout::Remaining, plan.EstimatedMinutes);
}

void RunWindow::Countdown(double seconds) {
  const QString left = ToQt(Format(std::max(0.0, seconds), "##0.0"));
  ShowText(*controls_.Countdown, left);
  ShowText(*dwellPanel_, QStringLiteral("Dwelling ") + left);
  controls_.Curves->SetTimeLeft(seconds);
}

void RunWindow::Step(int step) {
  step_ = step;
  ShowText(*controls_.Step, StepText(step));
  if (panelTellsStep_) ShowPanel(QStringLiteral("Step Number %1").arg(step));
  ShowCaption();
}

void RunWindow::StepDone(int step) {
  ShowProgress(step);
}

void RunWindow::ShowProgress(int step) {
  stepsDone_ = step;
  if (!byTime_) controls_.Progress->setValue(step);
  ShowTimes();
}

void RunWindow::Ahead(const RunAhead& ahead) {
  ShowText(*timePanel_, ToQt(ahead.Text));
  QProgressBar& bar = *controls_.Progress;
  const bool known = !ahead.Text.empty();
  if (byTime_ != std::exchange(byTime_, known)) bar.setRange(0, known ? kTimeParts : std::max(1, steps_));
  if (byTime_) bar.setValue(static_cast<int>(std::lround(ahead.Share * kTimeParts)));
}

void RunWindow::Show(Readout readout, std::optional<double> value) {
  for (const Figure& figure : controls_.Figures)
    if (figure.Of == readout) ShowNumber(*figure.Label, value.value_or(0), figure.Pattern);
  if (readout == Readout::SigGenLevel) ShowRf();
  if (readout == Readout::Frequency) controls_.Curves->SetFrequency(value);
  if (readout != Readout::Elapsed && readout != Readout::Remaining) return;
  (readout == Readout::Elapsed ? elapsedMinutes_ : remainingMinutes_) = value;
  ShowTimes();
}

/// Beside the minutes: hours, and when the run will be over, unless earlier runs tell it better.
void RunWindow::ShowTimes() {
  QString text = QStringLiteral("%1 of %2").arg(stepsDone_).arg(steps_);
  if (elapsedMinutes_)
    text += QStringLiteral(" - ") + ToQt(DurationText(60 * *elapsedMinutes_)) + QStringLiteral(" elapsed");
  if (!byTime_ && remainingMinutes_ && *remainingMinutes_ > 0)
    text += QStringLiteral(" - ") + ToQt(DurationText(60 * *remainingMinutes_)) + QStringLiteral(" left, ends at ") +
            ToQt(ClockAfter(shell_.clock.SecondsSinceMidnight(), 60 * *remainingMinutes_));
  if (controls_.Progress->format() != text) controls_.Progress->setFormat(text);
}

void RunWindow::RowChanged(int row) {
  table_->RowChanged(row);
  follower_->RowChanged();
  controls_.Curves->RowChanged(row);
}

}  // namespace hylden
