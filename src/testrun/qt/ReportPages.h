#pragma once

#include <QFont>
#include <QRectF>
#include <functional>

#include "testrun/RunReportText.h"

class QPainter;
class QPdfWriter;

namespace hylden {

/// Lays a report out on pages, from top to bottom.
class ReportPages {
 public:
  /// @param painter  CurveView::PagePainter; null: the pages are only counted
  /// @param count    of all pages, for "page 1 of 3"
  ReportPages(const RunReportText& report, QPdfWriter& writer, QPainter* painter, int count);
  /// @return how many pages there are
  int Compose();

 private:
  enum class Style { Title, Subtitle, Heading, Strong, Body, Entry, Cell, CellHeading, Small };
  struct Cell {
    QString Text;
    double Left = 0, Width = 0;  ///< from the left margin
    Qt::Alignment Align = Qt::AlignLeft;
  };

  QFont FontOf(Style style) const;
  double Pt(double points) const;
  double LineHeight(Style style) const;
  double Rest() const { return area_.bottom() - y_; }
  std::vector<QString> LinesOf(const QString& text, Style style, double width) const;

  void Title();
  void Warning();
  void Section(const ReportSection& section);
  void Entry(const QString& name, const QString& value);
  void Figure(const ReportFigure& figure);
  void Table(const ReportTable& table);
  void TableHeading();
  void Paragraph(const QString& text, Style style);
  /// Cells side by side, each with its lines. @param atBreak  at the top of a page that they go on to
  void Row(const std::vector<Cell>& cells, Style style, const std::function<void()>& atBreak = {});
  double HeightOf(const std::vector<Cell>& cells, Style style) const;
  std::vector<Cell> CellsOf(const std::vector<QString>& texts) const;

  void Need(double height);
  void NewPage();
  void Frame();
  void Text(const QRectF& place, Style style, Qt::Alignment align, const QString& text);
  void Rule(double y, double weightPt, int grey);

  const RunReportText& report_;
  QPdfWriter& writer_;
  QPainter* painter_;
  int count_, page_ = 1;
  QRectF area_;  ///< for the text, in the units of the device
  double y_ = 0;
  const ReportTable* table_ = nullptr;  ///< the one at work
};

}  // namespace hylden
