#include "text/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/ErrorOf.h"
#include "text/Duration.h"

namespace hylden {
namespace {

TEST(ShortestText, DoublesKeepFifteenDigitsAndTurnToExponentsBeyondThem) {
  const std::pair<double, const char*> cases[] = {{0, "0"},
                                                  {-0.0, "0"},
                                                  {0.15, "0.15"},
                                                  {-0.5, "-0.5"},
                                                  {80, "80"},
                                                  {0.1 + 0.2, "0.3"},
                                                  {1.0 / 3, "0.333333333333333"},
                                                  {1.0 / 30, "3.33333333333333E-02"},
                                                  {0.00001, "0.00001"},
                                                  {1e-15, "0.000000000000001"},
                                                  {1e-16, "1E-16"},
                                                  {123456789012345, "123456789012345"},
                                                  {999999999999999.9, "1E+15"},
                                                  {1e15, "1E+15"},
                                                  {-1.5e300, "-1.5E+300"},
                                                  {12345.678901234567, "12345.6789012346"},
                                                  {5e-324, "4.94065645841247E-324"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(ShortestText(value), text);
}

TEST(ShortestText, SinglesKeepSevenDigits) {
  const std::pair<float, const char*> cases[] = {
      {0.15F, "0.15"},         {1.0F / 3, "0.3333333"}, {1.0F / 30, "3.333334E-02"},
      {1234567.0F, "1234567"}, {1e7F, "1E+07"},         {-3.4028235e38F, "-3.402823E+38"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(ShortestText(value), text);
}

TEST(PrintText, HasASignPositionAndNoLeadingZero) {
  EXPECT_EQ(PrintText(0.15), " .15");
  EXPECT_EQ(PrintText(-0.5), "-.5");
  EXPECT_EQ(PrintText(0.0), " 0");
  EXPECT_EQ(PrintText(10.5F), " 10.5");
  EXPECT_EQ(PrintText(1.0 / 30), " 3.33333333333333E-02");
  EXPECT_EQ(PrintText(std::numeric_limits<std::int32_t>::min()), "-2147483648");
}

TEST(LeadingNumber, StopsAtTheFirstCharacterThatCannotContinueANumber) {
  const std::pair<const char*, double> cases[] = {{"72.669 DBUV", 72.669},
                                                  {"\r\n  -20.5dBm", -20.5},
                                                  {"- 12.5", -12.5},
                                                  {"+7.26690E+01,3", 72.669},
                                                  {"1.5D-3", 0.0015},
                                                  {"13DBM", 13},
                                                  {"5E", 5},
                                                  {"5E+", 5},
                                                  {"1.2.3", 1.2},
                                                  {"1,234", 1},
                                                  {".5", 0.5},
                                                  {"-.5", -0.5},
                                                  {"VALUE 72.669", 0},
                                                  {"", 0},
                                                  {"-", 0},
                                                  {".", 0},
                                                  {"inf", 0},
                                                  {"nan", 0},
                                                  {"1e-400", 0}};
  for (const auto& [text, value] : cases) EXPECT_DOUBLE_EQ(LeadingNumber(text), value) << text;
  EXPECT_EQ(LeadingNumber("-1e400"), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(LeadingNumber("1e99999999999999999999"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(LeadingNumber("1" + std::string(400, '0')), std::numeric_limits<double>::infinity());
  EXPECT_EQ(LeadingNumber("0." + std::string(400, '0') + "1"), 0);
}

TEST(IsNumeric, TakesWholeTextsOnly) {
  for (const char* text : {"0", " 5 ", "\t-5.", "+.5", "1E5", "1d-5", "&H1F", "- 3", "1e-400"})
    EXPECT_TRUE(IsNumeric(text)) << text;
  for (const char* text : {"",      " ",    ".",  "-",   "--5", "5 6",  "5 MHz", "E5",  "1E", ",5",    "5,",
                           "1.5,5", "1,,2", "na", "inf", "nan", "True", "&H",    "&HG", "&",  "1e400", "0x10"})
    EXPECT_FALSE(IsNumeric(text)) << text;
}

TEST(IsNumeric, TakesACommaForSomebodysDecimalSignOutsideScripts) {
  for (const char* text : {"10,5", "0,15", "1,234.5", "1,234,567"}) {
    EXPECT_FALSE(IsNumeric(text)) << text;
    EXPECT_EQ(ErrorOf([&] { ToSingle(text); }), 13) << text;
    EXPECT_EQ(ErrorOf([&] { ToInt32(text); }), 13) << text;
    EXPECT_EQ(ErrorOf([&] { ToFlag(text); }), 13) << text;
  }
  EXPECT_TRUE(IsNumeric("1,234.5", Commas::Grouping));
  EXPECT_EQ(ToDouble("1,234.5", Commas::Grouping), 1234.5);
}

TEST(Conversions, RoundWholeNumbersToTheEvenNeighbour) {
  EXPECT_EQ(ToInt16(" 2.5 "), 2);
  EXPECT_EQ(ToInt16("3.5"), 4);
  EXPECT_EQ(ToInt16("-2.5"), -2);
  EXPECT_EQ(ToInt32("2147483647.4"), 2147483647);
  EXPECT_EQ(NearestWhole(0.5), 0);
  EXPECT_EQ(NearestWhole(-1.5), -2);
}

TEST(Conversions, HexadecimalAndOctalNumbersFillTheBitsOfTheirType) {
  EXPECT_EQ(ToInt16("&H1F"), 31);
  EXPECT_EQ(ToInt16("&hFFFF"), -1);
  EXPECT_EQ(ToInt32("&HFFFF"), 65535);
  EXPECT_EQ(ToInt32(" &O17"), 15);
  EXPECT_EQ(ToDouble("&H10"), 16);
  EXPECT_EQ(ErrorOf([] { ToInt16("&H10000"); }), 6);
}

TEST(Conversions, TellWhatIsNoNumberFromWhatIsTooLarge) {
  EXPECT_EQ(ErrorOf([] { ToDouble(""); }), 13);
  EXPECT_EQ(ErrorOf([] { ToSingle("12 dB"); }), 13);
  EXPECT_EQ(ErrorOf([] { ToInt32("True"); }), 13);
  EXPECT_EQ(ErrorOf([] { ToDouble("1e400"); }), 6);
  EXPECT_EQ(ErrorOf([] { ToSingle("3.5e38"); }), 6);
  EXPECT_EQ(ErrorOf([] { ToInt16("32767.5"); }), 6);
  EXPECT_EQ(ErrorOf([] { ToInt32("-2147483649"); }), 6);
  EXPECT_EQ(ToInt16("-32768.5"), -32768);
  EXPECT_EQ(ToSingle("3.40282356e38"), std::numeric_limits<float>::max());
}

TEST(ToFlag, TakesWordsInAnyCaseAndNumbers) {
  for (const char* text : {"True", " TRUE ", "1", "-1", "0.1"}) EXPECT_TRUE(ToFlag(text)) << text;
  for (const char* text : {"False", "false", "0", " .0 "}) EXPECT_FALSE(ToFlag(text)) << text;
  EXPECT_EQ(ErrorOf([] { ToFlag(""); }), 13);
  EXPECT_EQ(ErrorOf([] { ToFlag("yes"); }), 13);
}

TEST(Duration, IsHoursMinutesSecondsAndEndsByTheClock) {
  EXPECT_EQ(DurationText(754.4), "0:12:34");
  EXPECT_EQ(DurationText(3599.6), "1:00:00");
  EXPECT_EQ(DurationText(-1), "0:00:00");
  EXPECT_EQ(ClockAfter(14 * 3600, 754), "14:12");
  EXPECT_EQ(ClockAfter(23 * 3600, 3 * 3600), "02:00 (+1 day)");
}

}  // namespace
}  // namespace hylden
