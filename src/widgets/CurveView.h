#pragma once

#include <QRectF>
#include <QString>
#include <QWidget>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "measure/Curve.h"

class QPagedPaintDevice;
class QPainter;

namespace hylden {

/// The files in which curves can be saved as a picture.
inline constexpr char kCurvePictureFilter[] = "Picture (*.png)|*.png|Drawing (*.svg)|*.svg|PDF (*.pdf)|*.pdf";

/// A point of a curve, both counted from 0.
struct CurvePlace {
  int Curve = 0, Point = 0;
  bool operator==(const CurvePlace&) const = default;
};

/// Shows curves over frequency, in the colours of the theme. The wheel zooms around the pointer, dragging zooms into a
/// rectangle, dragging with Shift moves; a double click or the F key shows all again. The pointer reads the nearest
/// point; a click chooses it, and so do the Left and Right keys. A hundred thousand points are drawn at once. Curves
/// differ in line and markers, too; one without points is in no legend.
class CurveView : public QWidget {
  Q_OBJECT

 public:
  explicit CurveView(QWidget* parent = nullptr);
  ~CurveView() override;

  void SetCurves(std::vector<Curve> curves);
  /// Adds a point to a curve, behind those of its frequency. What is added in one turn is drawn once; it costs the same
  /// however many there are. The highlighted point stays the same one.
  void AddPoint(int curve, const CurvePoint& point);
  const std::vector<Curve>& Curves() const;
  void SetLimits(std::vector<CurveLimit> limits);
  void SetMarks(std::vector<CurveMark> marks);
  void SetFreqAxis(FreqAxis axis);

  /// The point that is highlighted.
  void SetCurrent(std::optional<CurvePlace> place);
  std::optional<CurvePlace> Current() const;
  /// A line at the frequency that is at work, MHz.
  void SetCursor(std::optional<double> frequencyMHz);

  /// Shows all of the curves, and goes on doing so until the operator zooms.
  void Fit();
  bool IsZoomed() const;
  /// Shows these frequencies, MHz, as if the operator had zoomed there; values stay.
  void ShowFrequencies(double lowestMHz, double highestMHz);
  /// The frequencies that are shown, MHz, and the values of an axis.
  CurvePoint LowestShown(ValueAxis axis = ValueAxis::Left) const;
  CurvePoint HighestShown(ValueAxis axis = ValueAxis::Left) const;

  /// Where a point is on this widget.
  QPoint PositionOf(CurvePlace place) const;
  /// The nearest point at hand of a position on this widget.
  std::optional<CurvePlace> PlaceAt(const QPoint& position) const;
  /// "Loss: 10 MHz, 0.28 dB"
  QString ReadoutOf(CurvePlace place) const;

  /// The bytes of a picture of what is shown, in the colours of paper.
  std::string Png() const;
  std::string Pdf() const;
  std::string Svg() const;
  /// The one that a file's name asks for by its ending; PNG where it has none of them.
  std::string PictureFor(const std::string& file) const;

  /// A painter for pages that hold curves among other things, and what is shown in a rectangle of such a page.
  static std::shared_ptr<QPainter> PagePainter(QPagedPaintDevice& pages);
  void PaintOn(QPainter& pagePainter, const QRectF& place);

 signals:
  /// The operator has chosen a point.
  void PointChosen(int curve, int point);
  /// Other frequencies are shown, for the operator has zoomed, moved or fitted.
  void FrequenciesChosen();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  class Plot;

  void Choose(CurvePlace place);
  void StepCurrent(int by);

  std::unique_ptr<Plot> plot_;
};

}  // namespace hylden
