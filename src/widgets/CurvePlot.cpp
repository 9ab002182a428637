#include "widgets/CurvePlot.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "platform/qt/QtText.h"
#include "widgets/CurveLine.h"
#include "widgets/FrequencyTicker.h"
#include "widgets/ThemeColors.h"

namespace hylden {

namespace {

constexpr int kReachPixels = 24, kClickPixels = 4;
constexpr int kMarginPercent = 4;
/// Above the highest value, for the text of a mark; a share of what is shown.
constexpr double kRoomForText = 0.3;
constexpr int kWiderThanAnyScreen = 100000;
constexpr int kLegendColumns = 5;
/// Points are marked as long as they stand apart.
constexpr int kPixelsForMarker = 3;
const auto kMainLayer = QStringLiteral("main"), kReadoutLayer = QStringLiteral("readout"),
           kMarginLayer = QStringLiteral("margins");
/// Colours that can be told apart also by those who see fewer of them.
constexpr QRgb kOnLight[] = {0xff0072b2, 0xffd55e00, 0xff007a59, 0xffa8508a, 0xff806000, 0xff444444};
constexpr QRgb kOnDark[] = {0xff66c2f5, 0xffffb347, 0xff4fd6ab, 0xfff0a6d2, 0xfff0e442, 0xffcccccc};

/// What tells them apart on paper without colours.
constexpr Qt::PenStyle kLines[] = {Qt::SolidLine, Qt::DashLine, Qt::DotLine, Qt::DashDotLine, Qt::DashDotDotLine};
constexpr QCPScatterStyle::ScatterShape kMarkers[] = {QCPScatterStyle::ssDisc,     QCPScatterStyle::ssSquare,
                                                      QCPScatterStyle::ssTriangle, QCPScatterStyle::ssDiamond,
                                                      QCPScatterStyle::ssCross,    QCPScatterStyle::ssTriangleInverted};
/// The points of a line to each pixel from which on it is drawn solid: broken, it would take long and tell nothing.
constexpr int kPointsForSolid = 2;

QColor Mixed(const QColor& a, const QColor& b, double shareOfB) {
  const auto mix = [&](int x, int y) { return static_cast<int>(std::lround(x + shareOfB * (y - x))); };
  return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

/// What is printed, whatever the theme.
QPalette PaperColours() {
  QPalette paper;
  for (const auto role : {QPalette::Base, QPalette::Window, QPalette::ToolTipBase}) paper.setColor(role, Qt::white);
  for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ToolTipText}) paper.setColor(role, Qt::black);
  return paper;
}

QCPRange Roomy(const CurveBounds& bounds) {
  if (bounds.IsEmpty()) return {0, 1};
  double span = bounds.Highest - bounds.Lowest;
  if (span <= 0) span = std::max(std::abs(bounds.Highest) / 5, 1e-3);
  const double margin = span * 2 * kMarginPercent / 100;
  return {bounds.Lowest - margin, bounds.Highest + margin};
}

QCPRange RoomyFrequencies(const CurveBounds& bounds, FreqAxis axis) {
  constexpr double kUsualStart = 0.1, kUsualStop = 1000;
  if (bounds.IsEmpty()) return {kUsualStart, kUsualStop};
  if (axis == FreqAxis::Linear) return Roomy(bounds);
  const double factor = std::max(std::pow(bounds.Highest / bounds.Lowest, kMarginPercent / 100.0), 1.01);
  return {bounds.Lowest / factor, bounds.Highest * factor};
}

}  // namespace

CurveView::Plot::Plot(CurveView& theView) : view(theView), plot(*new QCustomPlot(&theView)) {
  plot.setObjectName(QStringLiteral("plot"));
  refresh.setSingleShot(true);
  refresh.setInterval(0);
  QObject::connect(&refresh, &QTimer::timeout, &listener_, [this] { Refresh(); });
  plot.setAutoAddPlottableToLegend(false);
  plot.setPlottingHint(QCP::phFastPolylines);  // a dense curve takes ten times longer as one line
  QLocale numbers = QLocale::c();              // the decimal sign is the point, whatever the language
  numbers.setNumberOptions(QLocale::OmitGroupSeparator);
  plot.setLocale(numbers);
  plot.xAxis->setNumberFormat(QStringLiteral("g"));
  plot.xAxis->setLabel(QStringLiteral("Frequency, MHz"));
  for (QCPAxis* const axis : {plot.yAxis, plot.yAxis2}) axis->setNumberFormat(QStringLiteral("g"));
  // Rings and readout have a layer of their own: the pointer redraws no curve.
  plot.addLayer(kReadoutLayer);
  plot.layer(kReadoutLayer)->setMode(QCPLayer::lmBuffered);
  plot.setCurrentLayer(kReadoutLayer);
  cursor_ = new QCPItemStraightLine(&plot);
  cursor_->setVisible(false);
  ring_ = new QCPItemTracer(&plot);
  readRing_ = new QCPItemTracer(&plot);
  readout_ = new QCPItemText(&plot);
  plot.setCurrentLayer(kMainLayer);
  for (QCPItemTracer* const ring : {ring_, readRing_}) {
    ring->setStyle(QCPItemTracer::tsCircle);
    ring->position->setType(QCPItemPosition::ptAbsolute);
    ring->setVisible(false);
  }
  ring_->setSize(13);
  readRing_->setSize(9);
  readout_->position->setType(QCPItemPosition::ptAbsolute);
  readout_->setPadding(QMargins(4, 2, 4, 2));
  readout_->setVisible(false);
  // Above the curves, which it would hide.
  plot.plotLayout()->insertRow(0);
  plot.plotLayout()->addElement(0, 0, plot.legend);
  plot.plotLayout()->setRowStretchFactor(0, 0.001);
  plot.legend->setFillOrder(QCPLayoutGrid::foColumnsFirst);
  plot.legend->setWrap(kLegendColumns);
  plot.legend->setBorderPen(Qt::NoPen);
  plot.legend->setMargins(QMargins(4, 2, 4, 0));
  plot.legend->setRowSpacing(0);
  plot.legend->setVisible(false);
  // One without names, unseen as it is, would leave no more width to the curves than it takes itself.
  plot.legend->setMaximumSize(kWiderThanAnyScreen, QWIDGETSIZE_MAX);
  SetUpMouse();
}

void CurveView::Plot::SetUpMouse() {
  plot.setInteractions(QCP::iRangeDrag | QCP::iRangeZoom);
  plot.setSelectionRectMode(QCP::srmZoom);
  plot.axisRect()->setRangeZoomAxes({plot.xAxis}, {plot.yAxis, plot.yAxis2});
  plot.axisRect()->setRangeDragAxes({plot.xAxis}, {plot.yAxis, plot.yAxis2});
  for (QCPAxis* const axis : {plot.xAxis, plot.yAxis})
    QObject::connect(axis, qOverload<const QCPRange&>(&QCPAxis::rangeChanged), &listener_, [this] {
      if (!fitting) zoomed = true;
      ShowMarkers();
    });
  QObject::connect(plot.xAxis, qOverload<const QCPRange&>(&QCPAxis::rangeChanged), &listener_, [this] {
    if (!fitting) emit view.FrequenciesChosen();
  });
  QObject::connect(&plot, &QCustomPlot::mousePress, &listener_, [this](const QMouseEvent* event) {
    pressed = event->pos();
    plot.setSelectionRectMode(event->modifiers() & Qt::ShiftModifier ? QCP::srmNone : QCP::srmZoom);
  });
  QObject::connect(&plot, &QCustomPlot::mouseRelease, &listener_, [this](const QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || (event->pos() - pressed).manhattanLength() > kClickPixels) return;
    if (const auto place = Nearest(event->pos())) view.Choose(*place);
  });
  QObject::connect(&plot, &QCustomPlot::mouseDoubleClick, &listener_, [this] { view.Fit(); });
  QObject::connect(&plot, &QCustomPlot::mouseMove, &listener_, [this](const QMouseEvent* event) {
    Read(event->buttons() == Qt::NoButton ? Nearest(event->pos()) : std::nullopt);
  });
  QObject::connect(&plot, &QCustomPlot::afterReplot, &listener_, [this] { ShowOverlay(); });
}

bool CurveView::Plot::Has(const CurvePlace& place) const {
  return place.Curve >= 0 && static_cast<std::size_t>(place.Curve) < curves.size() && place.Point >= 0 &&
         static_cast<std::size_t>(place.Point) < curves[static_cast<std::size_t>(place.Curve)].Points.size();
}

QPointF CurveView::Plot::PixelOf(CurvePlace place) const {
  const CurvePoint& point = At(place);
  return {plot.xAxis->coordToPixel(point.Freq),
          AxisOf(curves[static_cast<std::size_t>(place.Curve)].Axis)->coordToPixel(point.Value)};
}

std::optional<CurvePlace> CurveView::Plot::Nearest(const QPointF& pixel) const {
  std::optional<CurvePlace> nearest;
  double best = kReachPixels;
  const double from = plot.xAxis->pixelToCoord(pixel.x() - kReachPixels);
  const double to = plot.xAxis->pixelToCoord(pixel.x() + kReachPixels);
  for (std::size_t curve = 0; curve < curves.size(); ++curve) {
    const std::vector<CurvePoint>& points = curves[curve].Points;
    const auto below = [](const CurvePoint& point, double freq) { return point.Freq < freq; };
    auto at = std::lower_bound(points.begin(), points.end(), from, below);
    for (; at != points.end() && at->Freq <= to; ++at) {
      const CurvePlace place{static_cast<int>(curve), static_cast<int>(at - points.begin())};
      const QPointF away = PixelOf(place) - pixel;
      const double distance = std::hypot(away.x(), away.y());
      if (distance < best) best = distance, nearest = place;
    }
  }
  return nearest;
}

QColor CurveView::Plot::ColourOf(std::size_t curve) const {
  const QRgb* const colours = IsDark(colours_) ? kOnDark : kOnLight;
  return QColor::fromRgb(colours[curve % std::size(kOnLight)]);
}

void CurveView::Plot::DrawLines() {
  linesChanged = false;
  plot.clearGraphs();
  plot.legend->clearItems();
  named_.clear();
  lines_.assign(curves.size(), nullptr);
  points_.assign(curves.size(), nullptr);
  for (std::size_t i = curves.size(); i-- > 0;) {  // the first one is drawn above the others
    const Curve& curve = curves[i];
    QVector<QCPGraphData> line, points;
    for (const CurvePoint& point : LineThrough(curve.Points, curve.StraightOn, freqAxis))
      line << QCPGraphData(point.Freq, point.Value);
    for (const CurvePoint& point : curve.Points)
      if (point.Freq > 0 || freqAxis == FreqAxis::Linear) points << QCPGraphData(point.Freq, point.Value);
    lines_[i] = plot.addGraph(plot.xAxis, AxisOf(curve.Axis));
    lines_[i]->data()->set(line, true);
    lines_[i]->setName(ToQt(curve.Name));
    points_[i] = plot.addGraph(plot.xAxis, AxisOf(curve.Axis));
    points_[i]->data()->set(points, true);
    points_[i]->setLineStyle(QCPGraph::lsNone);
  }
  FindBounds();
}

void CurveView::Plot::Add(std::size_t curve, const CurvePoint& point) {
  std::vector<CurvePoint>& points = curves.at(curve).Points;
  const auto above = [](double freq, const CurvePoint& other) { return freq < other.Freq; };
  const auto at = std::upper_bound(points.begin(), points.end(), point.Freq, above);
  const auto index = static_cast<int>(at - points.begin());
  const bool last = at == points.end();
  // The library would put it before the others of its frequency.
  const bool repeats = !last && index > 0 && std::prev(at)->Freq == point.Freq;
  points.insert(at, point);
  for (auto* const place : {&current, &read})
    if (*place && (*place)->Curve == static_cast<int>(curve) && (*place)->Point >= index) ++(*place)->Point;
  if (!linesChanged) linesChanged = repeats || !DrawAdded(curve, last, point);
  AddBounds(curves[curve].Axis, point);
  Touch();
}

/// Puts a point into what is drawn, which costs the same however many there are. False: all has to be drawn anew.
bool CurveView::Plot::DrawAdded(std::size_t curve, bool last, const CurvePoint& point) {
  const Curve& shown = curves[curve];
  if (point.Freq <= 0 && freqAxis == FreqAxis::Log) return true;
  const std::size_t count = shown.Points.size();
  if (shown.StraightOn == freqAxis || count == 1) {
    lines_[curve]->data()->add(QCPGraphData(point.Freq, point.Value));
  } else {
    if (!last) return false;
    const std::vector<CurvePoint> ends(shown.Points.end() - 2, shown.Points.end());
    const std::vector<CurvePoint> piece = LineThrough(ends, shown.StraightOn, freqAxis);
    for (std::size_t i = 1; i < piece.size(); ++i)
      lines_[curve]->data()->add(QCPGraphData(piece[i].Freq, piece[i].Value));
  }
  points_[curve]->data()->add(QCPGraphData(point.Freq, point.Value));
  return true;
}

void CurveView::Plot::FindBounds() {
  frequencies_ = values_[0] = values_[1] = {};
  for (const Curve& curve : curves)
    for (const CurvePoint& point : curve.Points) AddBounds(curve.Axis, point);
}

void CurveView::Plot::AddBounds(ValueAxis axis, const CurvePoint& point) {
  if (point.Freq <= 0 && freqAxis == FreqAxis::Log) return;
  frequencies_.Add(point.Freq);
  values_[axis == ValueAxis::Right].Add(point.Value);
}

void CurveView::Plot::DrawLimitsAndMarks() {
  for (int i = plot.itemCount() - 1; i >= 0; --i)
    if (plot.item(i)->layer() == plot.layer(kMainLayer)) plot.removeItem(i);
  const QColor red = HighlightRed(colours_);
  const auto text = [&](const std::string& shown, const QColor& colour) {
    auto* const item = new QCPItemText(&plot);
    item->setText(ToQt(shown));
    item->setColor(colour);
    item->setFont(view.font());
    return item;
  };
  for (const CurveLimit& limit : limits) {
    auto* const line = new QCPItemStraightLine(&plot);
    line->setPen(QPen(red, 1.5, Qt::DashLine));
    for (QCPItemPosition* const end : {line->point1, line->point2}) {
      end->setAxes(plot.xAxis, AxisOf(limit.Axis));
      end->setTypeX(QCPItemPosition::ptAxisRectRatio);
      end->setTypeY(QCPItemPosition::ptPlotCoords);
      end->setCoords(end == line->point1 ? 0 : 1, limit.Value);
    }
    QCPItemText* const name = text(limit.Name, red);
    name->setPositionAlignment(Qt::AlignLeft | Qt::AlignBottom);  // the legend is on the right
    name->position->setAxes(plot.xAxis, AxisOf(limit.Axis));
    name->position->setTypeX(QCPItemPosition::ptAxisRectRatio);
    name->position->setTypeY(QCPItemPosition::ptPlotCoords);
    name->position->setCoords(0.01, limit.Value);
  }
  for (const CurveMark& mark : marks) {
    QCPItemText* const item = text(mark.Text + "\n\u25bc", red);
    item->setPositionAlignment(Qt::AlignHCenter | Qt::AlignBottom);
    item->position->setAxes(plot.xAxis, AxisOf(mark.Axis));
    item->position->setCoords(mark.At.Freq, mark.At.Value);
  }
}

/// What an axis shows: its curve, or the unit that its curves share.
QString CurveView::Plot::TitleOf(ValueAxis axis) const {
  QStringList names, units;
  for (const Curve& curve : curves) {
    if (curve.Axis != axis || curve.Points.empty()) continue;
    names << ToQt(curve.Name);
    if (!curve.Unit.empty()) units << ToQt(curve.Unit);
  }
  units.removeDuplicates();
  QString unit = units.join(QStringLiteral(" / "));
  if (names.size() != 1) return unit;
  return unit.isEmpty() ? names.first() : names.first() + QStringLiteral(", ") + unit;
}

void CurveView::Plot::SetAxes() {
  const bool isLog = freqAxis == FreqAxis::Log;
  plot.xAxis->setScaleType(isLog ? QCPAxis::stLogarithmic : QCPAxis::stLinear);
  plot.xAxis->setTicker(isLog ? QSharedPointer<QCPAxisTicker>(new FrequencyTicker)
                              : QSharedPointer<QCPAxisTicker>(new QCPAxisTicker));
  // About as many numbers as there is room for: in a low plot they would stand in each other.
  const int lines = plot.height() / (4 * plot.fontMetrics().height());
  for (const QCPAxis* const axis : {plot.yAxis, plot.yAxis2}) axis->ticker()->setTickCount(std::clamp(lines, 2, 5));
  plot.yAxis->setLabel(TitleOf(ValueAxis::Left));
  plot.yAxis2->setLabel(TitleOf(ValueAxis::Right));
  const auto isRight = [](const auto& shown) { return shown.Axis == ValueAxis::Right; };
  plot.yAxis2->setVisible(std::any_of(curves.begin(), curves.end(), isRight) ||
                          std::any_of(limits.begin(), limits.end(), isRight));
}

void CurveView::Plot::ShowLegend() {
  std::vector<std::size_t> named;
  for (std::size_t i = 0; i < curves.size(); ++i)
    if (!curves[i].Points.empty()) named.push_back(i);
  if (named.size() < 2) named.clear();  // the axis names a single one
  plot.legend->setVisible(!named.empty());
  if (named == named_) return;
  plot.legend->clearItems();
  for (const std::size_t i : named) lines_[i]->addToLegend();
  named_ = std::move(named);
}

void CurveView::Plot::FitRanges() {
  CurveBounds values[] = {values_[0], values_[1]};
  for (const CurveLimit& limit : limits) values[limit.Axis == ValueAxis::Right].Add(limit.Value);
  for (const CurveMark& mark : marks) values[mark.Axis == ValueAxis::Right].Add(mark.At.Value);
  fitting = true;
  plot.xAxis->setRange(RoomyFrequencies(frequencies_, freqAxis));
  for (const ValueAxis axis : {ValueAxis::Left, ValueAxis::Right}) {
    QCPRange range = Roomy(values[axis == ValueAxis::Right]);
    const auto isOn = [&](const CurveMark& mark) { return mark.Axis == axis; };
    if (std::any_of(marks.begin(), marks.end(), isOn)) range.upper += range.size() * kRoomForText;
    AxisOf(axis)->setRange(range);
  }
  fitting = false;
}

/// Where they stand close, the line alone says more.
void CurveView::Plot::ShowMarkers() {
  const QCPRange shown = plot.xAxis->range();
  const int width = plot.axisRect()->width();
  for (std::size_t i = 0; i < points_.size(); ++i) {
    const auto& data = *points_[i]->data();
    const auto count = data.findEnd(shown.upper, false) - data.findBegin(shown.lower, false);
    const bool apart = count * kPixelsForMarker <= width || count < 3;
    points_[i]->setScatterStyle(apart ? QCPScatterStyle(kMarkers[i % std::size(kMarkers)], ColourOf(i), 5)
                                      : QCPScatterStyle(QCPScatterStyle::ssNone));
    const bool broken = count <= static_cast<std::ptrdiff_t>(kPointsForSolid) * width;
    lines_[i]->setPen(QPen(ColourOf(i), 1.5, broken ? kLines[i % std::size(kLines)] : Qt::SolidLine));
  }
}

void CurveView::Plot::Refresh() {
  refresh.stop();
  const bool scaleChanges = (plot.xAxis->scaleType() == QCPAxis::stLogarithmic) != (freqAxis == FreqAxis::Log);
  if (scaleChanges) zoomed = false;
  fitting = true;
  SetAxes();
  if (linesChanged || scaleChanges) DrawLines();
  ShowLegend();
  fitting = false;
  if (!zoomed) FitRanges();
  Colour(view.palette());
  plot.replot(QCustomPlot::rpQueuedRefresh);
}

void CurveView::Plot::Colour(const QPalette& palette) {
  colours_ = palette;
  const QColor ground = palette.color(QPalette::Base), ink = palette.color(QPalette::Text);
  plot.setBackground(QBrush(ground));
  for (QCPAxis* const axis : {plot.xAxis, plot.yAxis, plot.yAxis2}) {
    const QPen pen(Mixed(ground, ink, 0.7));
    axis->setBasePen(pen);
    axis->setTickPen(pen);
    axis->setSubTickPen(pen);
    axis->setTickLabelColor(ink);
    axis->setLabelColor(ink);
    axis->setTickLabelFont(view.font());
    axis->setLabelFont(view.font());
    axis->grid()->setPen(QPen(Mixed(ground, ink, 0.2)));
    axis->grid()->setZeroLinePen(QPen(Mixed(ground, ink, 0.4)));
    axis->grid()->setSubGridPen(QPen(Mixed(ground, ink, 0.08)));
  }
  plot.xAxis->grid()->setSubGridVisible(true);
  plot.legend->setBrush(Qt::NoBrush);
  plot.legend->setTextColor(ink);
  plot.legend->setFont(view.font());
  ShowMarkers();
  DrawLimitsAndMarks();
  cursor_->setPen(QPen(Mixed(ground, ink, 0.6), 1, Qt::DashLine));
  ring_->setPen(QPen(ink, 2));
  readRing_->setPen(QPen(HighlightRed(palette), 1.5));
  readout_->setFont(view.font());
  readout_->setColor(palette.color(QPalette::ToolTipText));
  readout_->setBrush(palette.color(QPalette::ToolTipBase));
  readout_->setPen(QPen(Mixed(ground, ink, 0.5)));
}

void CurveView::Plot::Read(std::optional<CurvePlace> place) {
  if (place == read) return;
  read = place;
  view.setAccessibleDescription(place ? view.ReadoutOf(*place) : QString());
  ShowOverlay();
}

void CurveView::Plot::ShowOverlay() {
  for (auto* const place : {&current, &read})
    if (*place && !(Has(**place) && std::isfinite(At(**place).Value))) place->reset();
  ring_->setVisible(current.has_value());
  readRing_->setVisible(read.has_value());
  readout_->setVisible(read.has_value());
  const QRect area = plot.axisRect()->rect();
  cursor_->setVisible(cursor.has_value());
  if (cursor) {
    cursor_->point1->setCoords(*cursor, plot.yAxis->range().lower);
    cursor_->point2->setCoords(*cursor, plot.yAxis->range().upper);
  }
  if (current) {
    const QPointF at = PixelOf(*current);
    ring_->position->setCoords(at);
    ring_->setVisible(area.contains(at.toPoint()));
  }
  if (read) {
    const QPointF at = PixelOf(*read);
    const bool toTheLeft = at.x() > area.center().x(), below = at.y() < area.center().y();
    readRing_->position->setCoords(at);
    readout_->setText(view.ReadoutOf(*read));
    readout_->setPositionAlignment((toTheLeft ? Qt::AlignRight : Qt::AlignLeft) |
                                   (below ? Qt::AlignTop : Qt::AlignBottom));
    readout_->position->setCoords(at + QPointF(toTheLeft ? -10 : 10, below ? 10 : -10));
  }
  plot.layer(kReadoutLayer)->replot();
}

void CurveView::Plot::OnPaper(const std::function<void()>& draw) {
  Read(std::nullopt);
  Refresh();
  Colour(PaperColours());
  draw();
  Colour(view.palette());
  plot.replot(QCustomPlot::rpQueuedRefresh);
}

CurveView::Plot::Margins::Margins(Plot& plot) : plot_(plot.plot) {
  plot_.addLayer(kMarginLayer, plot_.layer(kMainLayer));
  constexpr double kFar = 9;  // widths of the axes away
  const QRectF sides[] = {{-kFar, -kFar, kFar, 2 * kFar},
                          {1, -kFar, kFar, 2 * kFar},
                          {-kFar, -kFar, 2 * kFar, kFar},
                          {-kFar, 1, 2 * kFar, kFar}};
  for (const QRectF& side : sides) {
    auto* const cover = new QCPItemRect(&plot_);
    cover->setLayer(kMarginLayer);
    cover->setClipToAxisRect(false);
    cover->setPen(Qt::NoPen);
    cover->setBrush(Qt::white);
    for (QCPItemPosition* const corner : {cover->topLeft, cover->bottomRight}) {
      corner->setType(QCPItemPosition::ptAxisRectRatio);
      corner->setCoords(corner == cover->topLeft ? side.topLeft() : side.bottomRight());
    }
  }
}

CurveView::Plot::Margins::~Margins() {
  for (int i = plot_.itemCount() - 1; i >= 0; --i)
    if (plot_.item(i)->layer() == plot_.layer(kMarginLayer)) plot_.removeItem(i);
  plot_.removeLayer(plot_.layer(kMarginLayer));
}

}  // namespace hylden
