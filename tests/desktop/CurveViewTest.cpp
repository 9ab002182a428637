#include "widgets/CurveLine.h"
#include "widgets/CurveView.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>
#include <cmath>

namespace hylden {
namespace {

Curve Loss() {
  return {"Loss", "dB", {{0.15, 0.1}, {1, 0.2}, {10, 0.6}, {100, 1.5}, {230, 2}}};
}

class CurveViewTest : public testing::Test {
 protected:
  CurveViewTest() {
    view.resize(600, 400);
    view.show();
    view.SetCurves({Loss()});
    Settle();
  }
  static void Settle() { QCoreApplication::processEvents(); }
  QWidget& Plot() { return *view.findChild<QWidget*>("plot"); }
  void Wheel(int steps) {
    const QPointF at = view.PositionOf({0, 2});
    QWheelEvent event(at, Plot().mapToGlobal(at), {}, {0, 120 * steps}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                      false);
    QCoreApplication::sendEvent(&Plot(), &event);
    Settle();
  }
  int PixelsOf(const QColor& colour) {
    const QImage shown = view.grab().toImage();
    int count = 0;
    for (int y = 0; y < shown.height(); ++y)
      for (int x = 0; x < shown.width(); ++x) count += shown.pixelColor(x, y) == colour;
    return count;
  }

  CurveView view;
};

TEST_F(CurveViewTest, ShowsAllPointsUntilTheOperatorZooms) {
  EXPECT_LT(view.LowestShown().Freq, 0.15);
  EXPECT_GT(view.HighestShown().Freq, 230);
  EXPECT_GT(view.HighestShown().Value, 2);
  view.AddPoint(0, {400, 3});
  Settle();
  EXPECT_GT(view.HighestShown().Freq, 400);
  Wheel(3);
  EXPECT_TRUE(view.IsZoomed());
  const CurvePoint zoomed = view.HighestShown();
  EXPECT_LT(zoomed.Freq, 400);
  view.AddPoint(0, {900, 4});
  Settle();
  EXPECT_EQ(view.HighestShown(), zoomed) << "what is looked at stays";
  QTest::keyClick(&view, Qt::Key_F);
  EXPECT_GT(view.HighestShown().Freq, 900);
}

TEST_F(CurveViewTest, FillsItsRoomWhetherItsCurvesAreNamedOrNot) {
  const auto width = [&] { return view.PositionOf({0, 4}).x() - view.PositionOf({0, 0}).x(); };
  EXPECT_GT(width(), 400);
  view.SetCurves({Loss(), Loss()});
  Settle();
  EXPECT_GT(width(), 400);
  view.SetCurves({Loss()});
  Settle();
  EXPECT_GT(width(), 400);
}

TEST_F(CurveViewTest, PointThatIsAddedStandsInItsPlaceAndTheChosenOneStaysChosen) {
  view.SetCurrent(CurvePlace{0, 2});
  view.AddPoint(0, {1, 0.3});
  view.AddPoint(0, {50, std::nan("")});
  Settle();
  EXPECT_EQ(view.Curves()[0].Points.at(2), (CurvePoint{1, 0.3}));
  EXPECT_EQ(view.Current(), (CurvePlace{0, 3})) << "10 MHz";
  const QImage added = view.grab().toImage();
  view.SetCurves(std::vector<Curve>(view.Curves()));
  Settle();
  EXPECT_EQ(view.grab().toImage(), added) << "drawn point by point, and all at once";
  QTest::keyClick(&view, Qt::Key_Right);
  EXPECT_EQ(view.Current(), (CurvePlace{0, 5})) << "there is no value at 50 MHz";
}

TEST_F(CurveViewTest, DragZoomsIntoTheRectangleAndADoubleClickShowsAll) {
  const QPoint from = view.PositionOf({0, 1}) + QPoint(5, -60), to = view.PositionOf({0, 3}) + QPoint(-5, 5);
  QTest::mousePress(&Plot(), Qt::LeftButton, {}, from);
  QTest::mouseMove(&Plot(), (from + to) / 2);
  QTest::mouseMove(&Plot(), to);
  QTest::mouseRelease(&Plot(), Qt::LeftButton, {}, to);
  EXPECT_GT(view.LowestShown().Freq, 1);
  EXPECT_LT(view.HighestShown().Freq, 100);
  QTest::mouseDClick(&Plot(), Qt::LeftButton, {}, from);
  EXPECT_FALSE(view.IsZoomed());
  EXPECT_GT(view.HighestShown().Freq, 230);
}

TEST_F(CurveViewTest, ClickAndArrowsChooseAPoint) {
  QSignalSpy chosen(&view, &CurveView::PointChosen);
  QTest::mouseClick(&Plot(), Qt::LeftButton, {}, view.PositionOf({0, 2}) + QPoint(6, 6));
  ASSERT_EQ(chosen.count(), 1);
  EXPECT_EQ(chosen.last().at(1).toInt(), 2);
  EXPECT_EQ(view.Current(), (CurvePlace{0, 2}));
  EXPECT_FALSE(view.IsZoomed());
  QTest::keyClick(&view, Qt::Key_Right);
  EXPECT_EQ(view.Current(), (CurvePlace{0, 3}));
  QTest::mouseClick(&Plot(), Qt::LeftButton, {}, view.PositionOf({0, 0}) + QPoint(20, -200));
  EXPECT_EQ(chosen.count(), 2) << "nothing is near";
}

TEST_F(CurveViewTest, PointerReadsTheNearestPoint) {
  EXPECT_EQ(view.PlaceAt(view.PositionOf({0, 3}) + QPoint(3, 3)), (CurvePlace{0, 3}));
  EXPECT_FALSE(view.PlaceAt({300, 5}));
  QTest::mouseMove(&Plot(), view.PositionOf({0, 3}) + QPoint(3, 3));
  EXPECT_EQ(view.accessibleDescription(), "Loss: 100 MHz, 1.5 dB");
}

TEST_F(CurveViewTest, TwoAxesLimitsAndMarksHaveTheirPlaces) {
  Curve power{"Power", "dBm", {{1, 30}, {100, 40}}, ValueAxis::Right};
  view.SetCurves({Loss(), power});
  view.SetLimits({{"Limit", 60, ValueAxis::Right}});
  view.SetMarks({{{10, 0.6}, "fails"}});
  Settle();
  EXPECT_GT(view.HighestShown(ValueAxis::Right).Value, 60) << "the limit is seen";
  EXPECT_LT(view.HighestShown().Value, 3);
  EXPECT_GT(PixelsOf(QColor(0xc0, 0, 0)), 100);
  view.SetLimits({});
  view.SetMarks({});
  Settle();
  EXPECT_EQ(PixelsOf(QColor(0xc0, 0, 0)), 0);
}

TEST_F(CurveViewTest, IsReadableOnADarkThemeAndPrintsOnWhitePaper) {
  QPalette dark = view.palette();
  dark.setColor(QPalette::Base, QColor(30, 30, 30));
  dark.setColor(QPalette::Window, QColor(40, 40, 40));
  dark.setColor(QPalette::Text, Qt::white);
  dark.setColor(QPalette::WindowText, Qt::white);
  view.setPalette(dark);
  Settle();
  EXPECT_GT(PixelsOf(QColor(30, 30, 30)), 100'000);
  EXPECT_GT(PixelsOf(QColor::fromRgb(0xff66c2f5)), 100) << "the light blue of a curve";
  const QImage paper = QImage::fromData(QByteArray::fromStdString(view.Png()));
  EXPECT_EQ(paper.pixelColor(2, 2), QColor(Qt::white));
  EXPECT_TRUE(view.Pdf().starts_with("%PDF"));
  EXPECT_NE(view.PictureFor("a.SVG").find("Frequency, MHz</text>"), std::string::npos);
  EXPECT_GT(PixelsOf(QColor(30, 30, 30)), 100'000);
}

TEST(CurveViewNumbers, HaveAPointInEveryLanguage) {
  const QLocale before;
  QLocale::setDefault(QLocale(QLocale::German));
  const CurveView view;
  EXPECT_EQ(view.findChild<QWidget*>("plot")->locale().toString(0.5), "0.5");
  QLocale::setDefault(before);
}

TEST(CurveLine, IsStraightWhereTheProgramInterpolatesStraight) {
  const std::vector<CurvePoint> points = {{1, 0}, {100, 99}};
  EXPECT_EQ(LineThrough(points, FreqAxis::Log, FreqAxis::Log), points);
  EXPECT_EQ(LineThrough(points, FreqAxis::Linear, FreqAxis::Linear), points);
  for (const CurvePoint& point : LineThrough(points, FreqAxis::Linear, FreqAxis::Log))
    EXPECT_NEAR(point.Value, point.Freq - 1, 1e-9);
  for (const CurvePoint& point : LineThrough(points, FreqAxis::Log, FreqAxis::Linear))
    EXPECT_NEAR(point.Value, 99 * std::log10(point.Freq) / 2, 1e-9);
  EXPECT_GT(LineThrough(points, FreqAxis::Linear, FreqAxis::Log).size(), 20U);
  EXPECT_EQ(LineThrough({{0, 1}, {1, 2}}, FreqAxis::Linear, FreqAxis::Log).size(), 1U);
  EXPECT_EQ(LineThrough({{30, 1}, {30, 2}}, FreqAxis::Linear, FreqAxis::Log).size(), 2U);
}

}  // namespace
}  // namespace hylden
