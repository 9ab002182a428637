#include "widgets/CurveView.h"

#include <QBuffer>
#include <QPdfWriter>
#include <QSvgGenerator>
#include <QVBoxLayout>
#include <cmath>
#include <utility>

#include "platform/qt/QtText.h"
#include "text/Numbers.h"
#include "widgets/CurvePlot.h"

namespace hylden {

namespace {
constexpr QSize kPicture(900, 600);
constexpr int kResolution = 96;  // of pictures and drawings, points to the inch
}  // namespace

CurveView::CurveView(QWidget* parent) : QWidget(parent), plot_(std::make_unique<Plot>(*this)) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(&plot_->plot);
  setFocusPolicy(Qt::TabFocus);  // who clicks a point goes on working with the keys where he was
  plot_->plot.setFocusProxy(this);
  plot_->plot.installEventFilter(this);
  plot_->Refresh();
}

CurveView::~CurveView() = default;

void CurveView::SetCurves(std::vector<Curve> curves) {
  plot_->curves = std::move(curves);
  plot_->linesChanged = true;
  plot_->Touch();
}

void CurveView::AddPoint(int curve, const CurvePoint& point) {
  plot_->Add(static_cast<std::size_t>(curve), point);
}

const std::vector<Curve>& CurveView::Curves() const {
  return plot_->curves;
}

void CurveView::SetLimits(std::vector<CurveLimit> limits) {
  plot_->limits = std::move(limits);
  plot_->Touch();
}

void CurveView::SetMarks(std::vector<CurveMark> marks) {
  plot_->marks = std::move(marks);
  plot_->Touch();
}

void CurveView::SetFreqAxis(FreqAxis axis) {
  plot_->freqAxis = axis;
  plot_->Touch();
}

void CurveView::SetCurrent(std::optional<CurvePlace> place) {
  plot_->current = place;
  if (!plot_->refresh.isActive()) plot_->ShowOverlay();
}

void CurveView::SetCursor(std::optional<double> frequencyMHz) {
  plot_->cursor = frequencyMHz;
  if (!plot_->refresh.isActive()) plot_->ShowOverlay();
}

std::optional<CurvePlace> CurveView::Current() const {
  return plot_->current;
}

void CurveView::Fit() {
  plot_->zoomed = false;
  plot_->Refresh();
  emit FrequenciesChosen();
}

void CurveView::ShowFrequencies(double lowestMHz, double highestMHz) {
  plot_->plot.xAxis->setRange(lowestMHz, highestMHz);
  plot_->plot.replot(QCustomPlot::rpQueuedReplot);
}

bool CurveView::IsZoomed() const {
  return plot_->zoomed;
}

CurvePoint CurveView::LowestShown(ValueAxis axis) const {
  return {plot_->plot.xAxis->range().lower, plot_->AxisOf(axis)->range().lower};
}

CurvePoint CurveView::HighestShown(ValueAxis axis) const {
  return {plot_->plot.xAxis->range().upper, plot_->AxisOf(axis)->range().upper};
}

QPoint CurveView::PositionOf(CurvePlace place) const {
  return plot_->plot.mapTo(this, plot_->PixelOf(place).toPoint());
}

std::optional<CurvePlace> CurveView::PlaceAt(const QPoint& position) const {
  return plot_->Nearest(plot_->plot.mapFrom(this, position));
}

QString CurveView::ReadoutOf(CurvePlace place) const {
  const Curve& curve = plot_->curves[static_cast<std::size_t>(place.Curve)];
  const CurvePoint& point = plot_->At(place);
  const std::string unit = curve.Unit.empty() ? "" : " " + curve.Unit;
  return ToQt(curve.Name + ": " + ShortestText(point.Freq) + " MHz, " + ShortestText(static_cast<float>(point.Value)) +
              unit);
}

std::string CurveView::Png() const {
  constexpr double kScale = 2;
  QByteArray bytes;
  plot_->OnPaper([&] {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    plot_->plot.toPixmap(kPicture.width(), kPicture.height(), kScale).save(&buffer, "PNG");
  });
  return bytes.toStdString();
}

std::string CurveView::Pdf() const {
  constexpr double kPointsPerInch = 72;
  QByteArray bytes;
  plot_->OnPaper([&] {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setResolution(kResolution);
    writer.setPageSize(QPageSize(QSizeF(kPicture) * kPointsPerInch / kResolution, QPageSize::Point));
    writer.setPageMargins(QMarginsF());
    QCPPainter painter(&writer);
    painter.setMode(QCPPainter::pmVectorized);
    painter.setMode(QCPPainter::pmNoCaching);
    plot_->plot.toPainter(&painter, kPicture.width(), kPicture.height());
  });
  return bytes.toStdString();
}

std::string CurveView::Svg() const {
  QByteArray bytes;
  plot_->OnPaper([&] {
    const Plot::Margins margins(*plot_);  // a drawing knows no clipping
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QSvgGenerator drawing;
    drawing.setOutputDevice(&buffer);
    drawing.setResolution(kResolution);
    drawing.setSize(kPicture);
    drawing.setViewBox(QRect(QPoint(), kPicture));
    QCPPainter painter(&drawing);
    painter.setMode(QCPPainter::pmVectorized);
    painter.setMode(QCPPainter::pmNoCaching);
    plot_->plot.toPainter(&painter, kPicture.width(), kPicture.height());
  });
  return bytes.toStdString();
}

std::string CurveView::PictureFor(const std::string& file) const {
  const QString ending = QFileInfo(ToQt(file)).suffix().toLower();
  if (ending == QLatin1String("pdf")) return Pdf();
  return ending == QLatin1String("svg") ? Svg() : Png();
}

std::shared_ptr<QPainter> CurveView::PagePainter(QPagedPaintDevice& pages) {
  const auto painter = std::make_shared<QCPPainter>(&pages);
  painter->setMode(QCPPainter::pmVectorized);
  painter->setMode(QCPPainter::pmNoCaching);
  return painter;
}

void CurveView::PaintOn(QPainter& pagePainter, const QRectF& place) {
  constexpr int kTextPixels = 11;
  const double scale = pagePainter.device()->logicalDpiX() / double{kResolution};
  const QFont former = font();
  QFont text = pagePainter.font();
  text.setPixelSize(kTextPixels);  // points would be those of the page's resolution
  setFont(text);
  const QSizeF size = place.size() / scale;
  plot_->plot.setViewport(QRect(QPoint(), size.toSize()));  // how points are marked depends on their room
  plot_->plot.replot();
  plot_->OnPaper([&] {
    pagePainter.save();
    pagePainter.translate(place.topLeft());
    pagePainter.scale(scale, scale);
    plot_->plot.toPainter(static_cast<QCPPainter*>(&pagePainter), qRound(size.width()), qRound(size.height()));
    pagePainter.restore();
  });
  setFont(former);
}

bool CurveView::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Leave) plot_->Read(std::nullopt);
  return QWidget::eventFilter(watched, event);
}

void CurveView::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) plot_->Touch();
}

void CurveView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  plot_->Touch();  // there is room for more marked points, or for fewer
}

void CurveView::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_F:
      return Fit();
    case Qt::Key_Left:
      return StepCurrent(-1);
    case Qt::Key_Right:
      return StepCurrent(1);
    default:
      QWidget::keyPressEvent(event);
  }
}

void CurveView::Choose(CurvePlace place) {
  SetCurrent(place);
  emit PointChosen(place.Curve, place.Point);
}

void CurveView::StepCurrent(int by) {
  CurvePlace place = plot_->current.value_or(CurvePlace{0, by > 0 ? -1 : 1});
  do place.Point += by;
  while (plot_->Has(place) && !std::isfinite(plot_->At(place).Value));  // over gaps
  if (!plot_->Has(place)) return;
  Choose(place);
  setAccessibleDescription(ReadoutOf(place));
}

}  // namespace hylden
