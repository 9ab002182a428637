#include "text/Pattern.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace hylden {
namespace {

TEST(Format, WritesDoublesWithThePatternsOfFilesAndCommands) {
  const std::tuple<double, const char*, const char*> cases[] = {{0.15, "0.0#####", "0.15"},
                                                                {80, "#0.0#####", "80.0"},
                                                                {0.1234567, "#0.0#####", "0.123457"},
                                                                {100, "####0.0##### ", "100.0 "},
                                                                {-20, "##0.0 ", "-20.0 "},
                                                                {1.0 / 3, "##0.0## ", "0.333 "},
                                                                {0, "##0.0##", "0.0"},
                                                                {12.3456, "###0.000", "12.346"},
                                                                {1234567.89, "##0.00", "1234567.89"},
                                                                {0.04, "##0.0#", "0.04"},
                                                                {5, "####0.000###", "5.000"},
                                                                {1000, "####0.0######### ", "1000.0 "},
                                                                {7, "000", "007"},
                                                                {0.5, "#.##", ".5"},
                                                                {2.4, "#0 dB", "2 dB"},
                                                                {3, "about ##0.0 MHz.", "about 3.0 MHz."},
                                                                {3, "no digits", "no digits"}};
  for (const auto& [value, pattern, text] : cases) EXPECT_EQ(Format(value, pattern), text) << pattern;
}

TEST(Format, RoundsTheDecimalTextHalfAwayFromZero) {
  const std::tuple<double, const char*, const char*> cases[] = {
      {0.15, "##0.0", "0.2"},     {2.675, "##0.00", "2.68"}, {-0.25, "##0.0", "-0.3"},     {0.5, "#0", "1"},
      {1.005, "#0.00", "1.01"},   {9.95, "##0.0", "10.0"},   {99.9999, "#0.0##", "100.0"}, {0.05, "##0.0", "0.1"},
      {0.049999, "##0.0", "0.0"}, {0.0049, "0.00", "0.00"},  {0.5 - 1e-16, "#0", "1"}};
  for (const auto& [value, pattern, text] : cases) EXPECT_EQ(Format(value, pattern), text) << value;
}

TEST(Format, ASingleCountsWithItsSevenDigits) {
  const std::tuple<float, const char*, const char*> cases[] = {
      {2.675F, "##0.00", "2.68"},        {0.15F, "##0.0", "0.2"},
      {-12.345F, "###0.000", "-12.345"}, {129.545F, "##0.00", "129.55"},
      {0.1F, "#0.0#########", "0.1"},    {-std::numeric_limits<float>::infinity(), "##0.0", "-inf"}};
  for (const auto& [value, pattern, text] : cases) EXPECT_EQ(Format(value, pattern), text) << value;
}

TEST(Format, ZeroHasNoMinusAndTheEndsOfTheRangeAreSurvived) {
  const std::pair<double, std::string> cases[] = {
      {-0.05, "-0.1"}, {-0.04, "0.0"},       {-1e-30, "0.0"}, {-0.0, "0.0"}, {1e22, "1" + std::string(22, '0') + ".0"},
      {5e-324, "0.0"}, {std::nan(""), "nan"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(Format(value, "##0.0"), text) << value;
  EXPECT_EQ(Format(std::numeric_limits<double>::max(), "0").size(), 309U);
}

}  // namespace
}  // namespace hylden
