#include "ScriptFixture.h"

namespace hylden {
namespace {

using Operators = ScriptFixture;

TEST_F(Operators, BindAsTheLanguageSays) {
  Expect(R"(
    1 + 2 * 3 -> 7 | -2 ^ 2 -> -4 | 2 ^ -1 -> 0.5 | 2 ^ 3 ^ 2 -> 64
    ' * before the whole division, the whole division before Mod
    7 \ 2 * 2 -> 1 | 7 Mod 10 \ 4 -> 1 | 2 + 7 Mod 4 -> 5 | 1 + 2 & 3 + 4 -> 37 | "a" & 1 = "a1" -> True
    Not 1 = 2 -> True | Not False And False -> False | True Or True And False -> True | True Xor True Or True -> False
    False Imp False Eqv False -> True | True Eqv False Imp True -> True | 3 - 2 - 1 -> 0 | 1 < 2 = True -> True
    - - 3 -> 3 | 5 =< 5 -> True | 4 >< 4 -> False | 2 * -3 -> -6 | True = Not False -> True
  )");
}

TEST_F(Operators, WholeNumbersWidenInsteadOfOverflowing) {
  Expect(R"(
    TypeName(32767) -> Integer | TypeName(32768) -> Long | TypeName(2147483648) -> Double | TypeName(1.0) -> Double
    32767 + 1 -> 32768 | TypeName(32767 + 1) -> Long | TypeName(CInt(300) * CInt(300)) -> Long
    2147483647 + 1 -> 2147483648 | TypeName(2147483647 + 1) -> Double | TypeName(CByte(200) + CByte(100)) -> Integer
    TypeName(CByte(1) - CByte(2)) -> Integer | TypeName(CByte(1) + CByte(2)) -> Byte
    TypeName(True + True) -> Integer | TypeName(CSng(1) + 1) -> Single | TypeName(CSng(1) + 100000) -> Double
    TypeName(CCur(1) + 1.5) -> Currency | TypeName(CCur(1) * 1.5) -> Double | CCur("1.5") * CCur("0.0001") -> 0.0002
    TypeName(#1/5/2026# + 1) -> Date | TypeName(#1/5/2026# - #1/1/2026#) -> Double | TypeName(4 / 2) -> Double
    TypeName(CSng(1) / CSng(3)) & (CSng(1) / CSng(3)) -> Single0.3333333 | TypeName(CSng(1) / 3) -> Single
    TypeName(CSng(1) / CLng(3)) & TypeName(CSng(1) / "3") & TypeName(CSng(1) / CDbl(3)) -> DoubleDoubleDouble
    TypeName(CSng(1E30) / CSng(1E-30)) -> Double
    TypeName(-CInt(-32768)) -> Long | TypeName(7.6 \ 2) -> Long | 7.5 \ 2 -> 4 | 2.5 Mod 2 -> 0 | -7 Mod 3 -> -1
    -7 \ 2 -> -3 | TypeName(&HFFFF) -> Integer | &HFFFF -> -1 | &HFFFF& -> 65535 | &H10000 -> 65536 | &O17 -> 15
    1e3 -> 1000 | .5 -> 0.5 | 1.5E-3 -> 0.0015
  )");
}

TEST_F(Operators, TextsNumbersAndEmptyMeet) {
  Expect(R"(
    "3" + 4 -> 7 | "3" + "4" -> 34 | "a" + Empty -> a | "3" * "4" -> 12 | "3" & 4 -> 34 | 1 & Null -> 1
    Empty & "a" -> a | Empty + 1 -> 1 | TypeName(Empty + Empty) -> Integer | -"5" -> -5
    "abc" + 1 -> #13 Type mismatch: '[string: "abc"]' | IsNull(1 + Null) -> True | IsNull(Null & Null) -> True
    IsNull(Null = Null) -> True | Null + 1 -> #94 | Array(1) + 1 -> #13 | Nothing + 1 -> #91
  )");
}

TEST_F(Operators, ComparisonsDependOnWhatIsWrittenInTheExpression) {
  Answer("10");
  Expect(R"(
    "a" < "b" -> True | "A" = "a" -> False | "10" < "9" -> True | 10 < 9 -> False
    ' a literal number asks the text for its number, a literal text the number for its text
    x = 10 -> True | x > 9 -> True | x = "10" -> True | 5 + 5 = "10" -> True
    ' where both are computed, the number is the smaller one
    x = 5 + 5 -> False | x > 5 + 500 -> True | Left(x, 1) = 1 -> True
    Trim(" V ") = 1 -> #13 Type mismatch: '[string: "V"]' | Empty = 0 -> True | Empty = "" -> True
    undefinedName = "" -> True | True = -1 -> True | CStr(True) = True -> True | #1/5/2026# > #1/4/2026# -> True
    1.5 > CCur("1.4") -> True | Nothing = 1 -> #91 | Array(1) = 1 -> #13
  )");
}

TEST_F(Operators, LogicIsBitwiseAndKnowsNull) {
  Expect(R"(
    12 And 10 -> 8 | 12 Or 3 -> 15 | 12 Xor 10 -> 6 | 5 Eqv 3 -> -7 | 5 Imp 3 -> -5 | Not 0 -> -1
    Not CByte(1) -> 254 | Not 2.5 -> -3 | True And 7 -> 7 | TypeName(True And False) -> Boolean | "6" And 3 -> 2
    "True" And True -> True | False And Null -> False | 0 And Null -> 0 | IsNull(True And Null) -> True
    True Or Null -> True | IsNull(False Or Null) -> True | IsNull(True Xor Null) -> True | IsNull(Not Null) -> True
    False Imp Null -> True | Null Imp True -> True | IsNull(True Imp Null) -> True | IsNull(Null Imp False) -> True
    "abc" And 1 -> #13 Type mismatch: '[string: "abc"]' | 3000000000 And 1 -> #6 Overflow: '[number: 3000000000]'
    Nothing Is Nothing -> True | MathLib Is MathLib -> True | MathLib Is Nothing -> False | 1 Is Nothing -> #424
  )");
}

TEST_F(Operators, ImpossibleArithmeticIsAnError) {
  Expect(R"(
    1 / 0 -> #11 | 0 / 0 -> #6 | 1 \ 0.4 -> #11 | 1 Mod 0 -> #11 | CLng(-2147483647 - 1) \ -1 -> #6
    3000000000 \ 2 -> #6 Overflow: '[number: 3000000000]' | 1E308 * 10 -> #6 | 10 ^ 400 -> #6 | (-8) ^ 0.5 -> #5
    0 ^ -1 -> #5 | CCur("900000000000000") * CCur(2) -> #6 | 1E999 -> #6 | 1E-999 -> 0
  )");
  EXPECT_EQ(Result("0." + std::string(400, '0') + "1"), "0") << "a number too small is nothing, not too large";
}

}  // namespace
}  // namespace hylden
