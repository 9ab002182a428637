#include "widgets/FigureLabel.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>

namespace hylden {

namespace {

/// Labels side by side have figures of one size, unless one has more characters than this.
constexpr char kUsualFigure[] = "-000.00";
constexpr double kShareOfHeight = 0.8;

}  // namespace

FigureLabel::FigureLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
}

QSize FigureLabel::sizeHint() const {
  const QFontMetrics metrics(font());
  return {metrics.horizontalAdvance(QLatin1String(kUsualFigure)), metrics.height()};
}

QSize FigureLabel::minimumSizeHint() const {
  return sizeHint() / 2;
}

void FigureLabel::paintEvent(QPaintEvent*) {
  const QRect place = contentsRect();
  QFont figure = font();
  figure.setPixelSize(std::max(1, static_cast<int>(place.height() * kShareOfHeight)));
  const QFontMetricsF metrics(figure);
  const double width =
      std::max(metrics.horizontalAdvance(QLatin1String(kUsualFigure)), metrics.horizontalAdvance(text()));
  if (width > place.width())
    figure.setPixelSize(std::max(1, static_cast<int>(figure.pixelSize() * place.width() / width)));
  QPainter painter(this);
  painter.setFont(figure);
  painter.setPen(palette().color(foregroundRole()));
  painter.drawText(place, static_cast<int>(alignment()), text());
}

}  // namespace hylden
