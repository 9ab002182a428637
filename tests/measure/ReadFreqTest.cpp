#include "measure/ReadFreq.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/TempDir.h"
#include "support/Told.h"

namespace hylden {
namespace {

using List = std::vector<double>;

class ReadFreqTest : public testing::Test {
 protected:
  List Plan(StepType type, double start, double stop, double step, BandSwitch band = {}) {
    return ReadFreq::BuildFreqPlan(type, start, stop, step, directory.File("f.lst"), band).value_or(List{-1});
  }

  TempDir directory;
};

TEST_F(ReadFreqTest, ReadsAListsFrequencies) {
  EXPECT_EQ(*ReadFreq::FileTolist(directory.Write("a.lst", "10\r\n20\r\n30\r\n")), (List{10, 20, 30}));
  // What follows the first number is ignored, and a blank line is no second visit to a frequency.
  EXPECT_EQ(*ReadFreq::FileTolist(directory.Write("b.lst", " ,0.15, 7\n\n+80\t.5\n\n")), (List{0.15, 80}));
  EXPECT_EQ(*ReadFreq::FileTolist(""), List{});
}

TEST_F(ReadFreqTest, RefusesABadListAndNamesItsFault) {
  const std::string path = directory.File("f.lst");
  const std::string atEnd = "Unexpected end of file in " + path,
                    badData = "Bad data in frequency list file\r\n" + path + ", line ";
  const std::pair<std::string, std::string> rows[] = {
      {"", atEnd},
      {"\r\n10\r\n", atEnd},
      {"Freq\r\n10\r\n", badData},
      {" ,\r\n10\r\n", badData},
      {"10\r\n1E1", badData},
      {"10\r\n \r\n20", badData},
      {"10\r\n20;\r\n", badData + "2: \"20;\""},
      {"-----\r\n20\r\n", badData},
      {"10,5\r\n20,5\r\n", badData},
      {"10\r\n20, 30,5\r\n", badData},
      {"10\r\n" + std::string(400, '9'), badData},
  };
  for (const auto& [bytes, message] : rows)
    EXPECT_TRUE(FailsWith(ReadFreq::FileTolist(directory.Write("f.lst", bytes)), message)) << bytes;
  const std::string missing = directory.File("missing.lst");
  EXPECT_EQ(Told(ReadFreq::FileTolist(missing)),
            std::vector<std::string>{"Error # 53\rFile not found\rReadFreq.FileTolist\r" + missing});
}

TEST_F(ReadFreqTest, PlansASweepOnTheDecimalsThatARecordHolds) {
  const std::tuple<StepType, double, double, double, List> rows[] = {
      {StepType::Linear, 1, 10, 2, {1, 3, 5, 7, 9, 11}},
      {StepType::Linear, 1, 2.4, 1, {1, 2}},
      {StepType::Linear, 5, 5, 1, {5}},
      {StepType::Linear, 0.65, 0.85, 0.1, {0.65, 0.75, 0.85}},
      {StepType::Log, 1, 2, 50, {1, 1.5, 2}},
      {StepType::Log, 1, 3, 100, {1, 2, 3}},
      {StepType::Log, 10, 14.4, 20, {10, 12, 14.4}},  // the last point stands there once
  };
  for (const auto& [type, start, stop, step, plan] : rows) EXPECT_EQ(Plan(type, start, stop, step), plan);
  EXPECT_EQ(Plan(StepType::Linear, 0.15, 0.85, 0.1).back(), 0.85);
  EXPECT_EQ(Plan(StepType::Linear, 0.15, 230, 1).back(), 230.15);
  EXPECT_EQ(Plan(StepType::Linear, 1, 10.4, 0.7).back(), 10.1);
  EXPECT_EQ(Plan(StepType::Log, 0.15, 80, 1).size(), 633U);
  EXPECT_EQ(Plan(StepType::Log, 0.15, 230, 1).size(), 739U);
}

TEST_F(ReadFreqTest, PlansAListWithinItsRange) {
  directory.Write("f.lst", "5\r\n10\r\n50\r\n150\r\n20\r\n");
  EXPECT_EQ(Plan(StepType::List, 10, 100, 0, {true, 80}), (List{10, 50}));
  directory.Write("f.lst", "none");
  EXPECT_EQ(Plan(StepType::List, 10, 100, 0), List{-1}) << "that it can't be read is no empty plan";
}

TEST_F(ReadFreqTest, PutsTheBandSwitchPairWhereThePlanCrossesIt) {
  constexpr double kAbove80 = 80 + 0.000001;
  const std::tuple<StepType, double, double, double, double, List> rows[] = {
      {StepType::Linear, 10, 200, 50, 80, {10, 60, 80, kAbove80, 110, 160, 210}},
      {StepType::Linear, 80, 100, 10, 80, {80, kAbove80, 90, 100}},
      {StepType::Linear, 90, 110, 10, 80, {90, 100, 110}},
      {StepType::Linear, 60, 80, 10, 80, {60, 70, 80}},
      {StepType::Linear, 10, 100, 60, 80, {10, 70, 80, kAbove80}},
      {StepType::Linear, 10, 100, 70, 80, {10, 80, kAbove80}},
      {StepType::Log, 100, 150, 20, 80, {100, 120, 144, 150}},
      {StepType::Log, 80, 150, 50, 80, {80, kAbove80, 120, 150}},
      {StepType::Log, 50, 150, 100, 80, {50, 80, kAbove80, 100, 150}},
      {StepType::Log, 50, 90, 50, 80, {50, 75, 90}},
      {StepType::Log, 200, 245, 10, 220, {200, 220, 220 + 0.000001, 242, 245}},
  };
  for (const auto& [type, start, stop, step, band, plan] : rows) {
    EXPECT_EQ(Plan(type, start, stop, step, {true, band}), plan);
    EXPECT_EQ(Plan(type, start, stop, step, {false, band}).front(), start);
  }
}

TEST_F(ReadFreqTest, GivesAnEmptyPlanForAnImpossibleStep) {
  const double kNan = std::numeric_limits<double>::quiet_NaN(), kInfinity = std::numeric_limits<double>::infinity();
  for (double step : {0.0, -1.0, 1e-12, 1e-300, kNan}) {
    EXPECT_EQ(Plan(StepType::Linear, 1, 100, step), List{}) << step;
    EXPECT_EQ(Plan(StepType::Log, 1, 100, step), List{}) << step;
  }
  for (double start : {0.0, -1.0, kNan}) EXPECT_EQ(Plan(StepType::Log, start, 100, 1), List{}) << start;
  for (double stop : {kInfinity, kNan}) {
    EXPECT_EQ(Plan(StepType::Linear, 1, stop, 1), List{}) << stop;
    EXPECT_EQ(Plan(StepType::Log, 1, stop, 1), List{}) << stop;
  }
  EXPECT_EQ(Plan(static_cast<StepType>(3), 1, 100, 1), List{});
}

TEST_F(ReadFreqTest, SortsAList) {
  List list{30, 1, 20, 1, 0.15};
  ReadFreq::SortFreqList(list);
  EXPECT_EQ(list, (List{0.15, 1, 1, 20, 30}));
}

}  // namespace
}  // namespace hylden
