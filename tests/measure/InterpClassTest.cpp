#include "measure/InterpClass.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "support/TestShell.h"
#include "support/Told.h"

namespace hylden {
namespace {

class InterpClassTest : public testing::Test {
 protected:
  Done Load(std::string_view bytes) { return table.InitInterp(t.directory.Write("table.los", bytes)); }

  float At(double frequency, FreqScale scale = FreqScale::Linear, DuplicateRule rule = DuplicateRule::Larger) {
    return table.InterpVal(frequency, scale, rule).value_or(std::numeric_limits<float>::quiet_NaN());
  }

  std::vector<double> Frequencies() {
    std::vector<double> frequencies;
    std::vector<float> values;
    table.GetTable(frequencies, values);
    EXPECT_EQ(values.size(), frequencies.size());
    frequencies.pop_back();
    return frequencies;
  }

  TestShell t;
  InterpClass table{t.shell};
};

TEST_F(InterpClassTest, LooksUpBetweenItsPointsAndAtThem) {
  ASSERT_TRUE(Load("Cable loss\r\nC:\\cables\\one\r\nFreq, Loss\r\n1, .5\r\n 10\t0.7\r\n100,1.2\r\n"));
  EXPECT_EQ(table.MinFreq(), 1);
  EXPECT_EQ(table.MaxFreq(), 100);
  EXPECT_FLOAT_EQ(At(5.5), 0.6F);
  EXPECT_EQ(At(10), 0.7F);
  EXPECT_FLOAT_EQ(At(31.6227766, FreqScale::Log), 0.95F);
  EXPECT_EQ(At(1), 0.5F);
  EXPECT_EQ(At(100), 1.2F);
  EXPECT_TRUE(FailsSilently(table.InterpVal(0.5, FreqScale::Linear)));
  for (double outside : {0.5, 150.0, std::nextafter(1.0, 0.0), std::numeric_limits<double>::quiet_NaN(),
                         std::numeric_limits<double>::infinity()})
    EXPECT_TRUE(std::isnan(At(outside))) << outside;
}

TEST_F(InterpClassTest, HasNoValueOnALogScaleNearZero) {
  ASSERT_TRUE(Load("0,1\r\n1,2\r\n"));
  EXPECT_EQ(At(0.5, FreqScale::Log), -999);
  EXPECT_EQ(At(0.5), 1.5F);
}

TEST_F(InterpClassTest, KeepsTheEndsOfARunOfEqualValues) {
  const std::pair<const char*, std::vector<double>> rows[] = {
      {"1,2\r\n2,2\r\n3,2\r\n4,2\r\n5,3\r\n", {1, 4, 5}},
      {"1,1\r\n5,1\r\n", {1, 5}},
      {"1,1\r\n2,2\r\n3,2\r\n4,2\r\n5,3\r\n6,3\r\n7,3\r\n8,4\r\n", {1, 2, 4, 5, 7, 8}},
      {"1,1\r\n2,2\r\n3,1\r\n", {1, 2, 3}},
      {"10 2\r\n1000 2\r\n100 2\r\n50 3\r\n", {10, 50, 100, 1000}},
      {"9 1\r\n5 1\r\n7 1\r\n1 1\r\n", {1, 9}},
  };
  for (const auto& [text, kept] : rows) {
    ASSERT_TRUE(Load(text)) << text;
    EXPECT_EQ(Frequencies(), kept) << text;
    // From the end of one table the look-up goes to the next one.
    for (const double frequency : kept) EXPECT_FALSE(std::isnan(At(frequency))) << text;
  }
}

TEST_F(InterpClassTest, GivesTheNeighbourThatTheRuleNamesAtABandChange) {
  ASSERT_TRUE(Load("50,4\r\n30,1\r\n30,1.5\r\n30,9\r\n1,3\r\n"));
  EXPECT_EQ(Frequencies(), (std::vector<double>{1, 30, 30, 30, 50}));
  // Equal frequencies keep their file order, so the pair at 30 MHz is 1 and 1.5 from whatever side the lookup comes.
  for (double from : {1.0, 50.0}) {
    At(from);
    EXPECT_EQ(At(30), 1.5F);
    At(from);
    EXPECT_EQ(At(30, FreqScale::Log, DuplicateRule::Smaller), 1.0F);
    EXPECT_EQ(At(30, FreqScale::Linear, static_cast<DuplicateRule>(2)), 0.0F);
  }
  EXPECT_FLOAT_EQ(At(40), 6.5F);
  EXPECT_FLOAT_EQ(At(15.5), 2.0F);
}

TEST_F(InterpClassTest, HoldsALargeTableAndAnswersAlikeInWhateverOrderItIsAsked) {
  std::string text;
  for (int i = 0; i < 40000; ++i) text += std::to_string(1 + i / 2 * 2) + "," + std::to_string(i % 7 * i) + "\r\n";
  ASSERT_TRUE(Load(text));
  EXPECT_EQ(table.MaxFreq(), 39999);
  std::mt19937 random(1);
  std::uniform_real_distribution<double> anywhere(1, 39999);
  for (int i = 0; i < 3000; ++i) {
    const double frequency = i % 3 == 0 ? std::round(anywhere(random)) : anywhere(random);
    InterpClass fresh(t.shell);
    if (i % 100 == 0) {
      ASSERT_TRUE(fresh.InitInterp(t.directory.File("table.los")));
      EXPECT_EQ(fresh.InterpVal(frequency, FreqScale::Linear), At(frequency)) << frequency;
    } else {
      At(frequency);
    }
  }
}

TEST_F(InterpClassTest, RefusesABadFileAndNamesItsFault) {
  const std::string path = t.directory.File("table.los");
  const std::string atEnd = "Unexpected end of file in " + path,
                    badData = "Bad data in calibration file\r\n" + path + ", line ";
  const std::tuple<const char*, std::string, std::string> rows[] = {
      {"empty", "", atEnd},
      {"header only", "Freq, Loss\r\nnothing\r\n", atEnd},
      {"one data line", "Freq\r\n1,2\r\n", atEnd},
      {"one data line without an end", "1,2", atEnd},
      {"blank line behind the data", "1,2\r\n2,3\r\n\r\n", badData},
      {"exponent within the data", "1,2\r\n2,3\r\n1E1,4\r\n", badData},
      {"letters within a run", "1,2\r\n2,2\r\n3,x\r\n", badData},
      {"one number", "1,2\r\n2\r\n", badData + "2: \"2\""},
      {"foreign character", "1,2\r\n2,3\r\n3,4\xB5\r\n", badData},
      {"decimal commas", "10,5 2,3\r\n20,5 2,4\r\n", badData + "1"},
      {"decimal commas behind a header", "Freq Loss\r\n10 2\r\n20,5 2.4\r\n", badData},
      {"decimal comma in the value", "10 2,3\r\n20 2,4\r\n", badData},
      {"decimal commas as columns", "10,5,2,3\r\n20,5,2,4\r\n", badData},
      {"grouped thousands", "1,000 2\r\n2,000 3\r\n", badData},
      {"value too large", "1,2\r\n2,9" + std::string(60, '9') + "\r\n", badData},
      {"binary",
       std::string("\x7F"
                   "ELF\0\0\1\2\3\xFF\xFE",
                   11),
       atEnd},
  };
  for (const auto& [name, bytes, message] : rows) {
    SCOPED_TRACE(name);
    EXPECT_TRUE(FailsWith(Load(bytes), message));
    EXPECT_EQ(table.MaxFreq(), -1);
    EXPECT_EQ(table.MinFreq(), -1);
    EXPECT_EQ(Told(table.InterpVal(1, FreqScale::Linear)),
              std::vector<std::string>{"No calibration points in interp file"});
    EXPECT_TRUE(Frequencies().empty());
  }
}

TEST_F(InterpClassTest, ReportsAFileThatCannotBeRead) {
  EXPECT_TRUE(FailsSilently(table.InitInterp("")));
  const std::string missing = t.directory.File("missing.fac");
  EXPECT_EQ(Told(table.InitInterp(missing)),
            std::vector<std::string>{"Error # 53\rFile not found\rInterpClass.FileToTable\r" + missing});
  EXPECT_TRUE(FailsWith(table.InitInterp(t.directory.Path()), "Error # 75\r"));
}

TEST_F(InterpClassTest, TakesEveryFileThatIsOddButValid) {
  ASSERT_TRUE(Load("0.15,0.5,7\n30,1\n100,1.5\t60,60.5\n"));
  EXPECT_EQ(At(0.15), 0.5F);
  EXPECT_EQ(At(30), 1);
  EXPECT_EQ(At(100), 1.5F);
  ASSERT_TRUE(Load("_Freq_ 1E3\n----- -----\n\n5\n,,1\t ,0.5,7\n+2 -.5 9\n"));
  EXPECT_EQ(table.MinFreq(), 1);
  EXPECT_EQ(At(1), 0.5F);
  EXPECT_EQ(At(2), -0.5F);
  t.directory.Write("Cables/One.LOS", "1,2\r3,4");
  EXPECT_TRUE(table.InitInterp(t.directory.File("cables\\one.los")));
  EXPECT_FLOAT_EQ(At(2), 3);
}

TEST_F(InterpClassTest, ReadsBackTheTableItSaved) {
  ASSERT_TRUE(Load("0.033333333333333,1.23456\r\n80,-2\r\n"));
  ASSERT_TRUE(table.SaveFile(t.directory.File("copy.los")));
  EXPECT_EQ(t.directory.Read("copy.los"), "0.033333333333333, 1.235\r\n80, -2.0\r\n");

  ASSERT_TRUE(Load("0.0333333333333333,1\r\n80,2\r\n"));
  ASSERT_TRUE(table.SaveFile(t.directory.File("copy.los")));
  ASSERT_TRUE(table.InitInterp(t.directory.File("copy.los")));
  EXPECT_EQ(table.MinFreq(), 0.0333333333333333);

  EXPECT_TRUE(
      FailsWith(table.SaveFile(t.directory.Path()), "Error # 75\rPath/File access error\rInterpClass.SaveFile\r"));
  InterpClass empty(t.shell);
  EXPECT_FALSE(empty.SaveFile(t.directory.File("copy.los")));
  EXPECT_TRUE(table.InitInterp(t.directory.File("copy.los"))) << "a table that was there is lost";
}

}  // namespace
}  // namespace hylden
