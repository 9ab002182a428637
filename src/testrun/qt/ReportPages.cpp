#include "testrun/qt/ReportPages.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPdfWriter>
#include <QTextLayout>
#include <algorithm>
#include <utility>

#include "platform/qt/QtText.h"
#include "widgets/CurveView.h"

namespace hylden {

namespace {

constexpr double kPointsPerInch = 72;
constexpr double kMarginSide = 56, kMarginTop = 62, kMarginBottom = 62, kFrameGap = 16;  // points
constexpr double kCellGap = 5, kRowGap = 2.5;
constexpr double kEntryName = 0.29;  ///< of the width
constexpr double kFigureHeight = 138, kFigureGap = 8, kHandHeight = 26, kWarningPad = 7;
constexpr int kBlack = 0, kDark = 70, kMiddle = 130, kLight = 205;

}  // namespace

ReportPages::ReportPages(const RunReportText& report, QPdfWriter& writer, QPainter* painter, int count)
    : report_(report), writer_(writer), painter_(painter), count_(count) {
  const QRectF page(QPointF(), writer.pageLayout().fullRectPixels(writer.resolution()).size());
  area_ = page.adjusted(Pt(kMarginSide), Pt(kMarginTop), -Pt(kMarginSide), -Pt(kMarginBottom));
  y_ = area_.top();
}

double ReportPages::Pt(double points) const {
  return points * writer_.resolution() / kPointsPerInch;
}

QFont ReportPages::FontOf(Style style) const {
  constexpr std::pair<double, bool> kFonts[] = {{21, true},   {11, false},  {12.5, true}, {10, true}, {10, false},
                                                {9.5, false}, {8.5, false}, {8.5, true},  {8, false}};  // by Style
  const auto [points, bold] = kFonts[static_cast<int>(style)];
  QFont font;
  font.setFamilies({QStringLiteral("Liberation Sans"), QStringLiteral("Arial"), QStringLiteral("DejaVu Sans")});
  font.setStyleHint(QFont::SansSerif);
  font.setHintingPreference(QFont::PreferNoHinting);
  font.setPointSizeF(points);
  font.setBold(bold);
  return {font, &writer_};
}

double ReportPages::LineHeight(Style style) const {
  constexpr double kLeading = 1.12;
  return QFontMetricsF(FontOf(style), &writer_).height() * kLeading;
}

int ReportPages::Compose() {
  Frame();
  Title();
  Warning();
  for (const ReportSection& section : report_.Sections) Section(section);
  return page_;
}

void ReportPages::Title() {
  Paragraph(ToQt(report_.Title), Style::Title);
  Paragraph(ToQt(report_.Subtitle), Style::Subtitle);
  y_ += Pt(4);
  Rule(y_, 1.2, kBlack);
  y_ += Pt(6);
}

void ReportPages::Warning() {
  if (report_.Warning.empty()) return;
  const QString text = ToQt(report_.Warning);
  const double pad = Pt(kWarningPad), width = area_.width() - 2 * pad;
  const Cell cell{text, pad, width, Qt::AlignHCenter};
  const double height = HeightOf({cell}, Style::Strong) + 2 * pad;
  y_ += Pt(6);
  if (painter_) {
    painter_->setPen(QPen(Qt::black, Pt(1)));
    painter_->setBrush(QColor(242, 242, 242));
    painter_->drawRect(QRectF(area_.left(), y_, area_.width(), height));
  }
  y_ += pad;
  Row({cell}, Style::Strong);
  y_ += pad + Pt(4);
}

void ReportPages::Section(const ReportSection& section) {
  constexpr double kBefore = 13, kAfter = 4;
  const double next = section.Sentences.empty() && section.Entries.empty() && !section.Figures.empty()
                          ? Pt(kFigureHeight + kFigureGap) + LineHeight(Style::Strong)
                          : 4 * LineHeight(Style::Body);
  if (!section.Title.empty()) {
    Need(Pt(kBefore + kAfter) + LineHeight(Style::Heading) + next);
    if (y_ > area_.top()) y_ += Pt(kBefore);
    Paragraph(ToQt(section.Title), Style::Heading);
    y_ += Pt(kAfter);
  }
  for (const std::string& sentence : section.Sentences) {
    Paragraph(ToQt(sentence), Style::Body);
    y_ += Pt(2.5);
  }
  for (const auto& [name, value] : section.Entries) Entry(ToQt(name), ToQt(value));
  for (const ReportFigure& figure : section.Figures) Figure(figure);
  Table(section.Table);
  for (const std::string& note : section.Notes) {
    y_ += Pt(2.5);
    Paragraph(ToQt(note), Style::Small);
  }
}

void ReportPages::Entry(const QString& name, const QString& value) {
  const double left = area_.width() * kEntryName;
  const std::vector<Cell> cells = {{name, 0, left - Pt(kCellGap)}, {value, left, area_.width() - left}};
  const double height = value.isEmpty() ? Pt(kHandHeight) : HeightOf(cells, Style::Entry) + Pt(2 * kRowGap);
  Need(height);
  if (value.isEmpty()) {
    const QRectF place(area_.left(), y_, left, height - Pt(kRowGap));
    Text(place, Style::Entry, Qt::AlignBottom, name);
    if (painter_) {
      painter_->setPen(QPen(QColor(kDark, kDark, kDark), Pt(0.6)));
      painter_->drawLine(QLineF(area_.left() + left, y_ + height - Pt(kRowGap), area_.left() + area_.width() * 0.75,
                                y_ + height - Pt(kRowGap)));
    }
    y_ += height;
    return;
  }
  y_ += Pt(kRowGap);
  Row(cells, Style::Entry);
  y_ += Pt(kRowGap);
  Rule(y_, 0.3, kLight);
}

void ReportPages::Figure(const ReportFigure& figure) {
  Need(Pt(kFigureHeight) + LineHeight(Style::Strong));
  Paragraph(ToQt(figure.Title), Style::Strong);
  const QRectF place(area_.left(), y_, area_.width(), Pt(kFigureHeight));
  y_ = place.bottom() + Pt(kFigureGap);
  if (!painter_) return;
  CurveView view;
  view.SetCurves(figure.Curves);
  view.SetMarks(figure.Marks);
  painter_->setFont(FontOf(Style::Cell));
  view.PaintOn(*painter_, place);
}

void ReportPages::Table(const ReportTable& table) {
  if (table.Rows.empty()) return;
  table_ = &table;
  y_ += Pt(8);
  Need(4 * LineHeight(Style::Cell));
  TableHeading();
  for (const std::vector<std::string>& row : table.Rows) {
    std::vector<QString> texts;
    texts.reserve(row.size());
    for (const std::string& cell : row) texts.push_back(ToQt(cell));
    const std::vector<Cell> cells = CellsOf(texts);
    const double height = HeightOf(cells, Style::Cell) + Pt(2 * kRowGap);
    if (height > Rest() && height < area_.height() / 2) {
      NewPage();
      TableHeading();
    }
    y_ += Pt(kRowGap);
    Row(cells, Style::Cell, [this] { TableHeading(); });
    y_ += Pt(kRowGap);
    Rule(y_, 0.3, kLight);
  }
  Rule(y_, 0.8, kDark);
  y_ += Pt(2);
}

void ReportPages::TableHeading() {
  std::vector<QString> texts;
  texts.reserve(table_->Columns.size());
  for (const ReportTable::Column& column : table_->Columns) texts.push_back(ToQt(column.Heading));
  Rule(y_, 0.8, kDark);
  y_ += Pt(kRowGap);
  Row(CellsOf(texts), Style::CellHeading);
  y_ += Pt(kRowGap);
  Rule(y_, 0.8, kDark);
}

/// The cells of a row in their columns; the last one reaches to the right edge.
std::vector<ReportPages::Cell> ReportPages::CellsOf(const std::vector<QString>& texts) const {
  double shares = 0;
  for (const ReportTable::Column& column : table_->Columns) shares += column.Share;
  const double unit = area_.width() / shares;
  std::vector<Cell> cells;
  cells.reserve(texts.size());
  double left = 0;
  for (std::size_t i = 0; i < std::min(texts.size(), table_->Columns.size()); ++i) {
    const ReportTable::Column& column = table_->Columns[i];
    const bool spans = i + 1 == texts.size() && texts.size() < table_->Columns.size();
    const double width = spans ? area_.width() - left : column.Share * unit;
    const bool right = column.IsNumber && !spans;
    cells.push_back(
        {texts[i], left + (right ? 0 : Pt(kCellGap)), width - Pt(kCellGap), right ? Qt::AlignRight : Qt::AlignLeft});
    left += width;
  }
  return cells;
}

void ReportPages::Paragraph(const QString& text, Style style) {
  Row({{text, 0, area_.width()}}, style);
}

std::vector<QString> ReportPages::LinesOf(const QString& text, Style style, double width) const {
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  std::vector<QString> lines;
  for (const QString& piece : text.split(QLatin1Char('\n'))) {
    QTextLayout layout(piece, FontOf(style), &writer_);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
      line.setLineWidth(width);
      lines.push_back(piece.mid(line.textStart(), line.textLength()).trimmed());
    }
    layout.endLayout();
  }
  return lines;
}

double ReportPages::HeightOf(const std::vector<Cell>& cells, Style style) const {
  std::size_t most = 1;
  for (const Cell& cell : cells) most = std::max(most, LinesOf(cell.Text, style, cell.Width).size());
  return static_cast<double>(most) * LineHeight(style);
}

void ReportPages::Row(const std::vector<Cell>& cells, Style style, const std::function<void()>& atBreak) {
  std::vector<std::vector<QString>> lines;
  lines.reserve(cells.size());
  for (const Cell& cell : cells) lines.push_back(LinesOf(cell.Text, style, cell.Width));
  const double height = LineHeight(style);
  std::size_t most = 1;
  for (const auto& ofCell : lines) most = std::max(most, ofCell.size());
  for (std::size_t i = 0; i < most; ++i) {
    if (height > Rest()) {
      NewPage();
      if (atBreak) atBreak();
    }
    for (std::size_t cell = 0; cell < cells.size(); ++cell)
      if (i < lines[cell].size())
        Text({area_.left() + cells[cell].Left, y_, cells[cell].Width, height}, style, cells[cell].Align,
             lines[cell][i]);
    y_ += height;
  }
}

void ReportPages::Need(double height) {
  if (height > Rest() && y_ > area_.top()) NewPage();
}

void ReportPages::NewPage() {
  ++page_;
  y_ = area_.top();
  if (painter_) writer_.newPage();
  Frame();
}

/// Header and footer.
void ReportPages::Frame() {
  const double head = area_.top() - Pt(kFrameGap), foot = area_.bottom() + Pt(kFrameGap);
  const double height = LineHeight(Style::Small);
  const QRectF header(area_.left(), head - height, area_.width(), height),
      footer(area_.left(), foot, area_.width(), height);
  if (page_ > 1) {
    Text(header, Style::Small, Qt::AlignLeft, ToQt(report_.Header));
    Text(header, Style::Small, Qt::AlignRight, ToQt(report_.Warning));
    Rule(head + Pt(2), 0.5, kMiddle);
  }
  Rule(foot - Pt(2), 0.5, kMiddle);
  Text(footer, Style::Small, Qt::AlignLeft, ToQt(report_.Footer));
  Text(footer, Style::Small, Qt::AlignRight, QStringLiteral("page %1 of %2").arg(page_).arg(count_));
}

void ReportPages::Text(const QRectF& place, Style style, Qt::Alignment align, const QString& text) {
  if (!painter_ || text.isEmpty()) return;
  const int grey = style == Style::Small ? kDark : kBlack;
  painter_->setPen(QColor(grey, grey, grey));
  painter_->setFont(FontOf(style));
  painter_->drawText(place, static_cast<int>(align) | Qt::TextSingleLine | Qt::TextDontClip, text);
}

void ReportPages::Rule(double y, double weightPt, int grey) {
  if (!painter_) return;
  painter_->setPen(QPen(QColor(grey, grey, grey), Pt(weightPt)));
  painter_->drawLine(QLineF(area_.left(), y, area_.right(), y));
}

}  // namespace hylden
