#include "instruments/ResponseParser.h"

#include "support/TestStation.h"

namespace hylden {
namespace {

TEST(ResponseParser, TellsAnErrorAndEvaluatesTheNextExpressionOnItsAnswer) {
  TestStation s;
  EXPECT_TRUE(FailsWith(s.instruments.parser.ParseAnswer("5", "Mid(x"), "Scripting error\r\nError number "));
  EXPECT_FALSE(s.instruments.parser.ParseAnswer("5", "Nobody(x)"));
  const std::string answer = "VALUE 72.669 DBUV";
  EXPECT_EQ(s.instruments.parser.ParseAnswer(answer, "Mid(x, 7, 6)"), "72.669");
  EXPECT_EQ(s.instruments.parser.ParseAnswer(answer, "X"), answer);
  EXPECT_EQ(s.instruments.parser.ParseAnswer("ab", "MathLib.RetString & RetString"), "abab");
  EXPECT_EQ(s.instruments.parser.ParseAnswer("12 34", "CDbl(Split(RetString)(1)) / 10"), "3.4");
}

}  // namespace
}  // namespace hylden
