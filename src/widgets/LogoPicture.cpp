#include "widgets/LogoPicture.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace hylden {

namespace {

constexpr double kDepth = 0.8;
constexpr int kCarrierCycles = 9;
constexpr double kHeight = 0.36;

double Envelope(double x) {
  return (1 - kDepth * std::cos(2 * std::numbers::pi * x)) / (1 + kDepth);
}

/// The curve y(x) for x from 0 to 1 across the middle of a square of size 1.
template <class Curve>
QPainterPath Trace(Curve curve) {
  constexpr int kPoints = 220;
  QPainterPath path;
  for (int i = 0; i <= kPoints; ++i) {
    const double x = double(i) / kPoints;
    const QPointF point(0.08 + 0.84 * x, 0.5 - kHeight * curve(x));
    if (i == 0)
      path.moveTo(point);
    else
      path.lineTo(point);
  }
  return path;
}

void DrawLogo(QPainter& painter, double size) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(size, size);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0x16, 0x32, 0x4f));
  painter.drawRoundedRect(QRectF(0, 0, 1, 1), 0.14, 0.14);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(QColor(0x7f, 0xd1, 0xff), 0.022, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(Trace([](double x) { return Envelope(x) * std::sin(2 * std::numbers::pi * kCarrierCycles * x); }));
  painter.setPen(QPen(QColor(0xff, 0xb3, 0x00), 0.028, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(Trace(Envelope));
  painter.drawPath(Trace([](double x) { return -Envelope(x); }));
}

}  // namespace

QPixmap LogoPixmap(int size) {
  QPixmap picture(size, size);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  DrawLogo(painter, size);
  return picture;
}

LogoPicture::LogoPicture(QWidget* parent) : QWidget(parent) {
  setAccessibleName(QStringLiteral("Hylden"));
}

void LogoPicture::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const double size = std::min(width(), height());
  painter.translate((width() - size) / 2, (height() - size) / 2);
  DrawLogo(painter, size);
}

}  // namespace hylden
