#include "run/qt/RunCurvePanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QTableView>
#include <QToolButton>
#include <algorithm>
#include <utility>

#include "widgets/CurveView.h"

namespace hylden {

namespace {

/// Curves are drawn at most so often.
constexpr int kDrawMs = 50, kTryAgainMs = 10;
/// What a wait has to have left for them to be drawn in it, and how long they wait for one.
constexpr double kRoomSeconds = 0.03;
constexpr int kLongestMs = 300;
/// So many are drawn in a millisecond at the least.
constexpr std::size_t kPointsInAMillisecond = 100000;

bool TakesLong(const RowCurves* curves) {
  std::size_t points = 0;
  if (curves)
    for (const Curve& curve : curves->Curves()) points += curve.Points.size();
  return points > kPointsInAMillisecond;
}

}  // namespace

RunCurvePanel::RunCurvePanel(QWidget* parent)
    : QWidget(parent), view_(*new CurveView(this)), quantity_(*new QComboBox(this)), log_(*new QCheckBox(this)) {
  SetUpBar();
  timer_.setSingleShot(true);
  timer_.setInterval(kDrawMs);
  timer_.setObjectName(QStringLiteral("tmrCurve"));
  connect(&timer_, &QTimer::timeout, this, &RunCurvePanel::DrawWhenThereIsTime);
  connect(&view_, &CurveView::PointChosen, this, [this](int curve, int point) {
    if (curves_) GoToRow(curves_->RowOf(static_cast<std::size_t>(curve), static_cast<std::size_t>(point)));
  });
  sinceDrawn_.start();
  sinceTold_.start();
}

void RunCurvePanel::SetUpBar() {
  view_.setObjectName(QStringLiteral("crvRun"));
  view_.setAccessibleName(QStringLiteral("Curves of the run"));
  view_.setMinimumSize(160, 90);
  quantity_.setObjectName(QStringLiteral("cboCurve"));
  quantity_.setAccessibleName(QStringLiteral("Quantity of the curves"));
  quantity_.setToolTip(QStringLiteral("What the curves show"));
  log_.setObjectName(QStringLiteral("chkLogAxis"));
  log_.setText(QStringLiteral("Log"));
  log_.setToolTip(QStringLiteral("Logarithmic frequency axis"));
  log_.setChecked(true);
  auto* const fit = new QToolButton(this);
  fit->setObjectName(QStringLiteral("cmdFit"));
  fit->setText(QStringLiteral("Fit"));
  fit->setToolTip(QStringLiteral("Show all of the curves (F, or a double click)"));
  // Who uses them with the mouse leaves the keys to the run's buttons.
  for (QWidget* const control :
       {static_cast<QWidget*>(&quantity_), static_cast<QWidget*>(&log_), static_cast<QWidget*>(fit)})
    control->setFocusPolicy(Qt::TabFocus);
  auto* const bar = new QHBoxLayout;
  bar->addWidget(&quantity_);
  bar->addWidget(&log_);
  bar->addStretch();
  bar->addWidget(fit);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  layout->addLayout(bar);
  layout->addWidget(&view_, 1);
  connect(&quantity_, &QComboBox::currentIndexChanged, this, [this] { Renew(); });
  connect(&log_, &QCheckBox::toggled, this,
          [this](bool log) { view_.SetFreqAxis(log ? FreqAxis::Log : FreqAxis::Linear); });
  connect(fit, &QToolButton::clicked, &view_, &CurveView::Fit);
}

void RunCurvePanel::SetSource(CurveSource source, QTableView& table) {
  source_ = std::move(source);
  table_ = &table;
  for (const CurveSource::Quantity& quantity : source_.Quantities)
    quantity_.addItem(QString::fromLatin1(quantity.Name));
  connect(table.selectionModel(), &QItemSelectionModel::currentRowChanged, this, [this] { timer_.start(); });
  Renew();
}

void RunCurvePanel::RowChanged(int row) {
  if (row <= 0) {
    renew_ = true;
    firstRow_ = lastRow_ = 0;
  } else {
    firstRow_ = firstRow_ == 0 ? row : std::min(firstRow_, row);
    lastRow_ = std::max(lastRow_, row);
  }
  if (!timer_.isActive()) timer_.start();
}

void RunCurvePanel::SetFrequency(std::optional<double> frequencyMHz) {
  frequencyMHz_ = frequencyMHz;
  if (!timer_.isActive()) timer_.start();
}

void RunCurvePanel::SetTimeLeft(double seconds) {
  secondsLeft_ = seconds;
  sinceTold_.restart();
}

/// A step that is about to end is not held up by drawing. A run of steps without any wait is shown once in a while, as
/// long as that costs less than anybody notices.
void RunCurvePanel::DrawWhenThereIsTime() {
  const bool running = frequencyMHz_.has_value();
  const double left = secondsLeft_ - static_cast<double>(sinceTold_.elapsed()) / 1000;
  const bool mayWait = sinceDrawn_.elapsed() < kLongestMs || TakesLong(curves_);
  if (running && left < kRoomSeconds && mayWait) return timer_.start(kTryAgainMs);
  try {
    Draw();
  } catch (const std::exception&) {
    view_.hide();  // no run ends for its picture
  }
  sinceDrawn_.restart();
  timer_.setInterval(kDrawMs);
}

void RunCurvePanel::Draw() {
  if (!source_.Make || quantity_.currentIndex() < 0) return;
  if (renew_ || !curves_) {  // the latter behind one that failed
    curves_ = nullptr;
    curves_ = &source_.Make(static_cast<std::size_t>(quantity_.currentIndex()));
    renew_ = false;
    view_.SetCurves(curves_->Curves());
    view_.SetLimits(curves_->Limits());
    view_.SetMarks(curves_->Marks());
    view_.show();
  } else if (firstRow_ > 0) {
    AddRows();
  }
  firstRow_ = lastRow_ = 0;
  view_.SetCursor(frequencyMHz_);
  ShowRing();
}

void RunCurvePanel::AddRows() {
  const std::vector<CurveMark> marks = curves_->Marks();
  for (int row = firstRow_; row <= lastRow_; ++row)
    for (const RowCurves::Added& added : source_.Add(row)) view_.AddPoint(static_cast<int>(added.Curve), added.Point);
  if (curves_->Marks() != marks) view_.SetMarks(curves_->Marks());
}

void RunCurvePanel::ShowRing() {
  if (!curves_) return;
  const QModelIndex current = table_->currentIndex();
  const auto place = current.isValid() ? curves_->PlaceOf(current.row() + 1) : std::nullopt;
  view_.SetCurrent(place ? std::optional(CurvePlace{static_cast<int>(place->first), static_cast<int>(place->second)})
                         : std::nullopt);
}

void RunCurvePanel::GoToRow(int row) {
  if (row <= 0 || !table_) return ShowRing();  // a point of no row keeps no ring
  const QModelIndex index = table_->model()->index(row - 1, 0);
  table_->setCurrentIndex(index);
  table_->scrollTo(index);
}

std::string RunCurvePanel::Quantity() const {
  const auto index = static_cast<std::size_t>(std::max(0, quantity_.currentIndex()));
  return index < source_.Quantities.size() ? source_.Quantities[index].Key : "";
}

void RunCurvePanel::SetQuantity(const std::string& key) {
  for (std::size_t i = 0; i < source_.Quantities.size(); ++i)
    if (source_.Quantities[i].Key == key) quantity_.setCurrentIndex(static_cast<int>(i));
}

bool RunCurvePanel::IsLog() const {
  return log_.isChecked();
}

void RunCurvePanel::SetLog(bool log) {
  log_.setChecked(log);
}

}  // namespace hylden
