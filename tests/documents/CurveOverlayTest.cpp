#include "documents/CurveOverlay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "documents/CalCurves.h"
#include "documents/SaveCal.h"
#include "support/TestShell.h"
#include "support/Told.h"
#include "text/Case.h"

namespace hylden {
namespace {

using Texts = std::vector<std::string>;

constexpr char kInfo[] = "10 V\r\n\r\n\r\n10v\r\n1 - 100\r\n 0 \r\n";
const CalRows kRecord = {{1, -10, 120, 35, 20}, {10, -8, 120, 36, {}}, {10, -5, 120, 37, 21}, {100, -2, 120, {}, 22}};

/// The record after its amplifier has lost 3 dB: the generator makes up for it. It has frequencies of its own.
CalRows Weaker() {
  CalRows rows = {{1, -10, 120, 35, 20}, {5.5, -9, 120}, {10, -8, 120}, {10, -5, 120}, {100, -2, 120}, {200, 0, 120}};
  for (CalRow& row : rows) row.SigGenLevel += 3;
  return rows;
}

class CurveOverlayTest : public testing::Test {
 protected:
  std::string Save(const std::string& name, const CalRows& rows) {
    t.directory.Write(name + ".cal", CalDataText(rows));
    return t.directory.Write(name + ".hyinfo", kInfo);
  }
  /// Gaps as -999.
  static std::vector<double> Values(const Curve& curve) {
    std::vector<double> values;
    values.reserve(curve.Points.size());
    for (const CurvePoint& point : curve.Points) values.push_back(std::isnan(point.Value) ? -999 : point.Value);
    return values;
  }
  std::vector<double> Shown(CalQuantity quantity, bool difference = false, std::size_t file = 0) {
    return Values(records.Curves({static_cast<std::size_t>(quantity), difference}).at(file));
  }

  TestShell t;
  CurveOverlay records{t.shell, CurveKind::Calibration}, losses{t.shell, CurveKind::InsertionLoss};
};

TEST_F(CurveOverlayTest, CurvesAreTheRecordAndWhatItLacksIsAGap) {
  ASSERT_TRUE(records.Add(Save("now", kRecord)));
  const std::tuple<CalQuantity, std::vector<double>> rows[] = {
      {CalQuantity::GeneratorLevel, {-10, -8, -5, -2}},
      {CalQuantity::TestLevel, {120, 120, 120, 120}},
      {CalQuantity::ForwardPower, {35, 36, 37, -999}},
      {CalQuantity::ReversePower, {20, -999, 21, 22}},
      {CalQuantity::NetPower, {34.860, -999, 36.890, -999}},  // 3.062 W and 4.886 W
      {CalQuantity::TestLevelGain, {23.010, 21.010, 18.010, 15.010}},
      {CalQuantity::ForwardGain, {45, 44, 42, -999}},
  };
  for (const auto& [quantity, values] : rows)
    EXPECT_THAT(Shown(quantity), testing::Pointwise(testing::DoubleNear(6e-4), values)) << static_cast<int>(quantity);
}

TEST_F(CurveOverlayTest, LossOfThreeDecibelsIsThreeDecibelsAtEveryCommonFrequency) {
  ASSERT_TRUE(records.Add(Save("now", kRecord)) && records.Add(Save("weak", Weaker())));
  EXPECT_EQ(Shown(CalQuantity::TestLevelGain, true, 1), (std::vector<double>{-3, -3, -3}));
  EXPECT_EQ(Shown(CalQuantity::TestLevelGain, true, 0), (std::vector<double>{0, 0, 0}));
  EXPECT_EQ(Shown(CalQuantity::ForwardPower, true, 1), (std::vector<double>{0, -999, -999}));
  EXPECT_EQ(records.SummaryOf(1, {static_cast<std::size_t>(CalQuantity::TestLevelGain), true}), "-3 dB at 1 MHz");

  // The other way round: a frequency between two of the other record's has what a run looks up, one above them nothing.
  records.MakeFirst(1);
  EXPECT_EQ(Shown(CalQuantity::GeneratorLevel, true, 1), (std::vector<double>{-3, -3, -3, -3}));
  records.Remove(0);
  EXPECT_EQ(records.NameOf(0), "now");
}

TEST_F(CurveOverlayTest, WhatCanNotBeLaidOverIsRefusedAndCostsNothing) {
  const std::string first = Save("now", kRecord), other = Save("high", {{230, 0, 120}, {400, 0, 120}});
  ASSERT_TRUE(records.Add(first));
  const std::pair<std::string, Texts> rows[] = {
      {first, {first + "\r\nis shown already."}},
      {other, {other + "\r\n(230 - 400 MHz) has no frequency in common with\r\n" + first + "\r\n(1 - 100 MHz)."}},
      {t.directory.Write("text.txt", "1, 2"),
       {"Bad filename for calibration file: " + LowerCase(t.directory.File("text.txt"))}},
  };
  for (const auto& [path, told] : rows) EXPECT_EQ(Told(records.Add(path)), told);
  t.directory.Write("torn.hyinfo", "a\r\n");
  t.directory.Write("torn.cal", "1,2,3,4,5,\r\n2,2,3,4,5,\r\n");
  EXPECT_FALSE(records.Add(t.directory.File("torn.hyinfo")) || records.Add(t.directory.File("missing.hyinfo")));
  EXPECT_EQ(records.Size(), 1U);
  EXPECT_EQ(Shown(CalQuantity::GeneratorLevel).size(), 4U);

  for (const char* name : {"a", "b", "c", "d", "e"}) EXPECT_TRUE(records.Add(Save(name, kRecord)));
  EXPECT_TRUE(FailsWith(records.Add(Save("f", kRecord)), "5 files are laid over the first one"));
  EXPECT_EQ(records.Size(), 6U);
}

TEST_F(CurveOverlayTest, FilesOfOneNameAreToldApartByTheirFolders) {
  for (const char* folder : {"", "2024/", "2025/"}) {
    t.directory.Write(std::string(folder) + "x.cal", "1,-10,120,35,20,\r\n2,-10,120,35,20,\r\n");
    ASSERT_TRUE(records.Add(t.directory.Write(std::string(folder) + "x.hyinfo", kInfo)));
  }
  EXPECT_EQ(records.NameOf(1) + " " + records.NameOf(2), "2024/x 2025/x");
  EXPECT_EQ(records.Curves({}).at(2).Name, "2025/x");
}

TEST_F(CurveOverlayTest, LossFileHasItsReadingsAndPlainTableHasNone) {
  ASSERT_TRUE(losses.Add(t.directory.Write("w17.los",
                                           "name.los\r\n\r\nFrequency,    InsLoss,  Direct,   Insert\r\n"
                                           "230.0,        1.4,      96.97,    95.57\r\n"
                                           "0.150,        0.05,     96.98,    96.93\r\n")));
  const std::vector<Curve> curves = losses.Curves({std::nullopt});
  ASSERT_EQ(curves.size(), 3U);
  EXPECT_EQ(curves[0].Axis, ValueAxis::Right);
  const std::vector<double> expected[] = {{0.05, 1.4}, {96.98, 96.97}, {96.93, 95.57}};
  for (std::size_t i = 0; i < curves.size(); ++i)
    EXPECT_THAT(Values(curves[i]), testing::Pointwise(testing::DoubleNear(1e-5), expected[i])) << i;

  ASSERT_TRUE(losses.Add(t.directory.Write("plain.los", "0.1, 1, 2, 3\r\n300, 3, 2, 3\r\n")));
  EXPECT_EQ(losses.Curves({1}).at(1).Name, "plain (none)");
  EXPECT_EQ(losses.SummaryOf(1, {0}), "1 to 3 dB");
  EXPECT_TRUE(FailsWith(losses.Add(t.directory.Write("text.los", "no table")), "Unexpected end of file"));
}

}  // namespace
}  // namespace hylden
