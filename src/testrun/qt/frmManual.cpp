#include "testrun/qt/frmManual.h"

#include <QCloseEvent>
#include <QKeyEvent>

#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "shell/qt/WorkingForm.h"
#include "testrun/ManualControls.h"
#include "testrun/ManualMode.h"
#include "text/Pattern.h"
#include "ui_frmManual.h"
#include "widgets/WindowPlace.h"

namespace hylden {

namespace {
constexpr std::string_view kFreqPattern = "#0.0#####";
}

frmManual::frmManual(Shell& shell, ManualMode& mode, QWidget* parent)
    : QWidget(parent, Qt::Tool | Qt::WindowStaysOnTopHint | kRunFrame),
      shell_(shell),
      ui_(std::make_unique<Ui::frmManual>()),
      panel_(mode),
      hook_([this](ArrowKey key) {
        panel_.Key(key);
        ShowScroll();
      }) {
  ui_->setupUi(this);
  setAttribute(Qt::WA_ShowWithoutActivating);
  // In a tool window the run window's keys work, too, and a key that two buttons have presses neither: here Alt+H is
  // that window's Halt, and Alt+U its Units.
  ui_->cmdManualHalt->setShortcut({});
  ui_->scrDbOffset->setRange(kLowestOffsetTenths, kHighestOffsetTenths);
  timer1_.setObjectName(QStringLiteral("Timer1"));
  timer1_.setInterval(kManualTimerMs);
  connect(&timer1_, &QTimer::timeout, this, &frmManual::Tick);
  connect(ui_->scrFreqStep, &QScrollBar::valueChanged, this, [this](int step) { panel_.MoveStep(step); });
  connect(ui_->scrDbOffset, &QScrollBar::valueChanged, this, [this](int tenths) {
    panel_.MoveOffset(tenths);
    ShowOffset(tenths);
  });
  connect(ui_->scrDbOffset, &QScrollBar::sliderMoved, this, &frmManual::ShowOffset);
  connect(ui_->chkRfOn, &QCheckBox::clicked, this, &frmManual::manRfOn);
  connect(ui_->chkModOn, &QCheckBox::clicked, this, &frmManual::manModOn);
  connect(ui_->cmdThreshold, &QPushButton::clicked, this, &frmManual::NoteThreshold);
  connect(ui_->cmdManualHalt, &QPushButton::clicked, this, &frmManual::HaltClick);
  connect(ui_->cmdReturn, &QPushButton::clicked, this, &frmManual::close);
}

frmManual::~frmManual() = default;

void frmManual::Open(const ManualStart& start, const std::string& place) {
  panel_.Open(start);
  ui_->scrFreqStep->setRange(1, start.HighestStep);
  ShowScroll();
  SetManualFreq(start.Freq);
  SetRfOn(start.RfOn);
  ui_->chkModOn->setEnabled(start.ModEnabled);
  SetModOn(start.ModOn);
  RestorePlace(place, *this);
  show();
  hook_.Install(shell_.dialogs);
  timer1_.start();
}

std::string frmManual::Unload() {
  hook_.Remove();
  timer1_.stop();
  std::string place = WindowPosition(*this);
  hide();
  return place;
}

void frmManual::SetManualFreq(double frequencyMHz) {
  ui_->lblFreq->setText(ToQt(Format(frequencyMHz, kFreqPattern)));
}

void frmManual::SetRfOn(bool on) {
  ui_->chkRfOn->setChecked(on);
}

void frmManual::SetModOn(bool on) {
  ui_->chkModOn->setChecked(on);
}

void frmManual::SetSimulated() {
  ShowBenchNotice(*ui_->lblBench, shell_.runNotice);
}

void frmManual::Tick() {
  panel_.Tick();
  ShowScroll();
}

void frmManual::NoteThreshold() {
  const std::optional<ManualStanding> standing = panel_.Threshold();
  if (!standing) return;
  ShowScroll();
  const bool hadKeys = isActiveWindow();
  emit manThresholdClick(standing->Freq, standing->Offset);
  // The box for the comment may have left the keys to the run window.
  if (hadKeys && isVisible()) activateWindow();
}

void frmManual::ShowScroll() {
  // A bar that is being dragged stays in the operator's hand.
  if (ui_->scrDbOffset->isSliderDown() || ui_->scrFreqStep->isSliderDown()) return;
  ui_->scrFreqStep->setValue(panel_.Scroll().Step);
  ui_->scrDbOffset->setValue(panel_.Scroll().OffsetTenths);
  ShowOffset(panel_.Scroll().OffsetTenths);
}

void frmManual::ShowOffset(int tenths) {
  ui_->lblOffset->setText(ToQt(Format(tenths / 10.0, "#0.0")));
}

void frmManual::closeEvent(QCloseEvent* event) {
  event->ignore();  // the run takes the form away
  panel_.Leave();
  emit manExitClick();
}

void frmManual::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_F1)
    emit HelpRequested();
  else
    QWidget::keyPressEvent(event);
}

}  // namespace hylden
