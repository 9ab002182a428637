#include "bench/qt/frmBench.h"

#include <QApplication>
#include <QKeyEvent>
#include <cmath>
#include <utility>

#include "bench/BenchTexts.h"
#include "ui_frmBench.h"
#include "widgets/LabelText.h"
#include "widgets/ThemeColors.h"

namespace hylden {

namespace {

constexpr int kWatchMs = 100;
constexpr std::string_view kFrequency = "#0.0##### MHz";

void Show(QLabel& label, const std::string& text) {
  ShowText(label, ToQt(text));
}

/// A text that may be longer than its place; the tool tip has the whole of it.
void ShowElided(QLabel& label, const std::string& text) {
  ShowText(label, label.fontMetrics().elidedText(ToQt(text), Qt::ElideRight, label.width()));
  if (label.toolTip() != ToQt(text)) label.setToolTip(ToQt(text));
}

void ShowLevel(QLabel& label, double level, std::string_view pattern) {
  Show(label, IsMissing(level) ? kNoFigure : Format(level, pattern));
}

/// A level in dB and the same in its linear unit.
void ShowPair(QLabel& decibels, QLabel& linear, double level, std::string_view pattern, std::string_view linearPattern,
              double (*toLinear)(double)) {
  ShowLevel(decibels, level, pattern);
  ShowLevel(linear, IsMissing(level) ? level : toLinear(level), linearPattern);
}

double DbuaToMilliamps(double dbua) {
  return std::pow(10, (dbua - 60) / 20);
}

QPalette ColoursOf(ProductState state) {
  QPalette colours;
  if (state != ProductState::Passes && state != ProductState::Disturbed) return colours;
  const QPalette theme = QApplication::palette();
  const QColor green = IsDark(theme) ? QColor(0x7b, 0xd8, 0x8f) : QColor(0x1b, 0x7a, 0x32);
  colours.setColor(QPalette::Window, state == ProductState::Passes ? green : HighlightRed(theme));
  colours.setColor(QPalette::WindowText, IsDark(theme) ? Qt::black : Qt::white);
  return colours;
}

QPalette ColoursOfWarning(bool warns) {
  QPalette colours;
  if (warns) colours.setColor(QPalette::WindowText, HighlightRed(QApplication::palette()));
  return colours;
}

void ShowColours(QLabel& label, const QPalette& colours) {
  if (colours != label.palette()) label.setPalette(colours);
}

}  // namespace

frmBench::frmBench(Bench& bench, QWidget* parent)
    : QMainWindow(parent), bench_(bench), ui_(std::make_unique<Ui::frmBench>()) {
  ui_->setupUi(this);
  ConnectCabling();
  connect(ui_->cmdHelp, &QPushButton::clicked, this, &frmBench::AskForHelp);
  watch_.setInterval(kWatchMs);
  connect(&watch_, &QTimer::timeout, this, &frmBench::Refresh);
  Refresh();
}

frmBench::~frmBench() = default;

void frmBench::ConnectCabling() {
  const std::pair<QRadioButton*, MeterAt> places[] = {{ui_->optPort, MeterAt::Port},
                                                      {ui_->optProbe, MeterAt::Probe},
                                                      {ui_->optGenerator, MeterAt::Generator},
                                                      {ui_->optCable, MeterAt::Cable}};
  for (const auto& [button, place] : places)
    connect(button, &QRadioButton::clicked, this, [this, place = place] {
      bench_.Connect(place);
      Refresh();
    });
}

bool frmBench::CablesByItself() const {
  return ui_->chkCables->isChecked();
}

void frmBench::Refresh() {
  const BenchReadout bench = ReadBench(bench_);
  ShowGenerator(bench);
  ShowMeters(bench);
  ShowProduct(bench.Product);
  ShowCabling(bench.Cabling);
}

void frmBench::ShowGenerator(const BenchReadout& bench) {
  const bool there = bench.Generator.Present;
  ShowElided(*ui_->lblGenerator, InstrumentText(bench.Generator));
  ui_->lblRf->ShowRf(bench.Output.RfOn);
  ShowLevel(*ui_->lblFreq, there ? bench.Output.FreqMHz : kNoValue, kFrequency);
  ShowLevel(*ui_->lblLevel, there ? bench.Output.LevelDbm : kNoValue, "##0.0# dBm");
  Show(*ui_->lblModulation, there ? ModulationText(bench.Output) : kNoFigure);
  ShowElided(*ui_->lblAmplifier, AmplifierText(bench));
  ShowColours(*ui_->lblAmplifier, ColoursOfWarning(bench.Protection));
}

void frmBench::ShowMeters(const BenchReadout& bench) {
  ShowElided(*ui_->lblMeter, InstrumentText(bench.Meter));
  Show(*ui_->lblMeterSetting, bench.Meter.Present ? MeterSettingText(bench) : kNoFigure);
  Show(*ui_->lblMeterReading, bench.Meter.Present ? ReadingText(bench.MeterReading) : kNoFigure);
  ShowElided(*ui_->lblPowerMeter, InstrumentText(bench.PowerMeter));
  const std::pair<QLabel*, QLabel*> channels[] = {{ui_->lblChannel1Cap, ui_->lblChannel1},
                                                  {ui_->lblChannel2Cap, ui_->lblChannel2}};
  int channel = 0;
  for (const auto& [caption, value] : channels) {
    const auto& reading = bench.PowerReadings[static_cast<std::size_t>(channel++)];
    Show(*caption, "Channel " + std::to_string(channel) + ", " + SensorText(bench.Sensors, channel));
    Show(*value, bench.PowerMeter.Present ? ReadingText(reading) : kNoFigure);
  }
}

void frmBench::ShowProduct(const ProductReadout& product) {
  Show(*ui_->lblProduct, ProductStateText(product.State));
  ShowColours(*ui_->lblProduct, ColoursOf(product.State));
  Show(*ui_->lblMargin, MarginText(product));
  ShowPair(*ui_->lblTestLevel, *ui_->lblTestLevelVolts, product.TestLevelDbuv, "##0.0 dBuV", "##0.00# V",
           Conversions::DbuvToVolts);
  ShowPair(*ui_->lblPeak, *ui_->lblPeakVolts, product.PeakTestLevelDbuv, "##0.0 dBuV", "##0.00# V",
           Conversions::DbuvToVolts);
  ShowLevel(*ui_->lblThreshold, product.ThresholdDbuv, "##0.0 dBuV peak");
  ShowPair(*ui_->lblCurrent, *ui_->lblCurrentMilliamps, product.InducedDbua, "##0.0 dBuA", "##0.00# mA",
           DbuaToMilliamps);
  ShowPair(*ui_->lblForward, *ui_->lblForwardWatts, product.ForwardDbm, "##0.0 dBm", "##0.00# W",
           Conversions::DbmToWatts);
  ShowPair(*ui_->lblReverse, *ui_->lblReverseWatts, product.ReverseDbm, "##0.0 dBm", "##0.00# W",
           Conversions::DbmToWatts);
  const auto& last = product.LastDisturbance;
  Show(*ui_->lblLastDisturbance,
       last ? Format(last->FreqMHz, kFrequency) + " at " + Format(last->PeakTestLevelDbuv, "##0.0") + " dBuV peak"
            : "never so far");
}

void frmBench::ShowCabling(MeterAt place) {
  QRadioButton* const buttons[] = {ui_->optPort, ui_->optProbe, ui_->optGenerator, ui_->optCable};
  buttons[static_cast<std::size_t>(place)]->setChecked(true);
  Show(*ui_->lblCabling, CablingText(place));
}

void frmBench::AskForHelp() {
  emit HelpRequested(QStringLiteral("The bench panel"));
}

void frmBench::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  Refresh();
  watch_.start();
}

void frmBench::hideEvent(QHideEvent* event) {
  watch_.stop();
  QMainWindow::hideEvent(event);
}

void frmBench::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_F1:
      return AskForHelp();
    case Qt::Key_Escape:
      emit EscapePressed();
      return;
    default:
      QMainWindow::keyPressEvent(event);
  }
}

}  // namespace hylden
