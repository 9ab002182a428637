#include "testrun/frmManual.h"

#include <QCloseEvent>

#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "shell/qt/WorkingForm.h"
#include "testrun/RunControls.h"
#include "testrun/qt/RunWindowPlace.h"
#include "text/Pattern.h"
#include "ui_frmManual.h"

namespace hylden {

frmManual::frmManual(Shell& shell, ManualMode& mode, QWidget* parent)
    : QWidget(parent, Qt::Tool | Qt::WindowStaysOnTopHint),
      shell_(shell),
      ui_(std::make_unique<Ui::frmManual>()),
      panel_(mode),
      hook_([this](ArrowKey key) {
        panel_.Key(key);
        ShowScroll();
      }) {
  ui_->setupUi(this);
  setAttribute(Qt::WA_ShowWithoutActivating);
  ui_->scrDbOffset->setRange(kLowestOffsetTenths, kHighestOffsetTenths);
  timer1_.setObjectName(QStringLiteral("Timer1"));
  timer1_.setInterval(kManualTimerMs);
  connect(&timer1_, &QTimer::timeout, this, [this] { panel_.Tick(); });
  connect(ui_->scrFreqStep, &QScrollBar::valueChanged, this, [this](int step) { panel_.MoveStep(step); });
  connect(ui_->scrDbOffset, &QScrollBar::valueChanged, this, [this](int tenths) {
    panel_.MoveOffset(tenths);
    ShowOffset(tenths);
  });
  connect(ui_->scrDbOffset, &QScrollBar::sliderMoved, this, &frmManual::ShowOffset);
  connect(ui_->chkRfOn, &QCheckBox::clicked, this, &frmManual::manRfOn);
  connect(ui_->chkModOn, &QCheckBox::clicked, this, &frmManual::manModOn);
  connect(ui_->cmdThreshold, &QPushButton::clicked, this, [this] {
    panel_.Tick();  // what is noted is what stands at the product
    emit manThresholdClick(ui_->lblFreq->text(), panel_.OffsetDb());
  });
  connect(ui_->cmdReturn, &QPushButton::clicked, this, &frmManual::close);
}

frmManual::~frmManual() = default;

void frmManual::Open(const ManualStart& start) {
  panel_.Open(start);
  ui_->scrFreqStep->setRange(1, start.HighestStep);
  ShowScroll();
  SetManualFreq(start.Freq);
  SetRfOn(start.RfOn);
  ui_->chkModOn->setEnabled(start.ModEnabled);
  ui_->chkModOn->setChecked(start.ModEnabled);
  RestorePlace(shell_, windowkey::kManualForm, *this);
  show();
  hook_.Install(shell_.dialogs);
  timer1_.start();
}

void frmManual::Unload() {
  hook_.Remove();
  timer1_.stop();
  RememberPlace(shell_, windowkey::kManualForm, *this);
  hide();
}

void frmManual::SetManualFreq(double frequencyMHz) {
  ui_->lblFreq->setText(ToQt(Format(frequencyMHz, "#0.0#####")));
}

void frmManual::SetRfOn(bool on) {
  ui_->chkRfOn->setChecked(on);
}

void frmManual::SetSimulated() {
  ShowBenchNotice(*ui_->lblBench);
}

void frmManual::ShowScroll() {
  ui_->scrFreqStep->setValue(panel_.Scroll().Step);
  ui_->scrDbOffset->setValue(panel_.Scroll().OffsetTenths);
  ShowOffset(panel_.Scroll().OffsetTenths);
}

void frmManual::ShowOffset(int tenths) {
  ui_->lblOffset->setText(ToQt(Format(tenths / 10.0, "#0.0")));
}

void frmManual::closeEvent(QCloseEvent* event) {
  event->ignore();  // the run takes the form away
  panel_.Tick();
  emit manExitClick();
}

}  // namespace hylden
