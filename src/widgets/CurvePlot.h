#pragma once

#include <qcustomplot.h>

#include <QPalette>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <vector>

#include "widgets/CurveView.h"

namespace hylden {

/// The lowest and the highest of what was put in.
struct CurveBounds {
  double Lowest = std::numeric_limits<double>::infinity(), Highest = -Lowest;

  void Add(double value) {
    if (!std::isfinite(value)) return;
    Lowest = std::min(Lowest, value);
    Highest = std::max(Highest, value);
  }
  bool IsEmpty() const { return Lowest > Highest; }
};

/// The plot of a CurveView and what stands on it: the half that knows the plotting library.
class CurveView::Plot {
 public:
  explicit Plot(CurveView& view);

  void Touch() { refresh.start(); }
  void Refresh();
  void Add(std::size_t curve, const CurvePoint& point);
  void Colour(const QPalette& palette);
  void ShowOverlay();
  void Read(std::optional<CurvePlace> place);
  QCPAxis* AxisOf(ValueAxis axis) const { return axis == ValueAxis::Left ? plot.yAxis : plot.yAxis2; }
  const CurvePoint& At(CurvePlace place) const {
    return curves[static_cast<std::size_t>(place.Curve)].Points[static_cast<std::size_t>(place.Point)];
  }
  bool Has(const CurvePlace& place) const;
  QPointF PixelOf(CurvePlace place) const;
  std::optional<CurvePlace> Nearest(const QPointF& pixel) const;
  /// Draws with the colours of paper, and puts back those of the screen.
  void OnPaper(const std::function<void()>& draw);
  /// As long as it lives, nothing but axes, their texts and the legend stands outside the axes.
  class Margins {
   public:
    explicit Margins(Plot& plot);
    ~Margins();
    Margins(const Margins&) = delete;
    Margins& operator=(const Margins&) = delete;

   private:
    QCustomPlot& plot_;
  };

  CurveView& view;
  QCustomPlot& plot;
  QTimer refresh;
  std::vector<Curve> curves;
  std::vector<CurveLimit> limits;
  std::vector<CurveMark> marks;
  FreqAxis freqAxis = FreqAxis::Log;
  std::optional<CurvePlace> current, read;
  std::optional<double> cursor;
  QPoint pressed;
  bool linesChanged = true, zoomed = false, fitting = false;

 private:
  void SetUpMouse();
  void DrawLines();
  bool DrawAdded(std::size_t curve, bool last, const CurvePoint& point);
  void FindBounds();
  void AddBounds(ValueAxis axis, const CurvePoint& point);
  void ShowLegend();
  void DrawLimitsAndMarks();
  void SetAxes();
  void FitRanges();
  void ShowMarkers();
  QString TitleOf(ValueAxis axis) const;
  QColor ColourOf(std::size_t curve) const;

  QObject listener_;  ///< to the plot, which goes later
  QPalette colours_;
  std::vector<QCPGraph*> lines_, points_;
  std::vector<std::size_t> named_;  ///< the curves in the legend
  CurveBounds frequencies_, values_[2];
  QCPItemStraightLine* cursor_;
  QCPItemTracer *ring_, *readRing_;
  QCPItemText* readout_;
};

}  // namespace hylden
