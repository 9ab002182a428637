#include "ScriptFixture.h"

namespace hylden {
namespace {

using Functions = ScriptFixture;

TEST_F(Functions, CutAndTurnTexts) {
  Expect(R"(
    Mid("VALUE 72.669 DBUV", 7, 6) -> 72.669 | Mid("abc", 2) -> bc | Mid("abc", 4) -> | Mid("abc", 2, 99) -> bc
    Mid(12345, 2, 2) -> 23 | Mid("abc", 0) -> #5 | Mid("abc", 1, -1) -> #5 | Mid("abc") -> #450
    IsNull(Mid(Null, 1)) -> True | Mid("abc", Null) -> #94 | Mid("abc", , 2) -> #13
    Left("abc", 2) & Right("abc", 2) -> abbc | Left("abc", 9) & Right("abc", 9) -> abcabc | Right("abc", 0) ->
    "[" & Trim("  a b ") & "]" -> [a b] | "[" & LTrim("  a ") & "]" -> [a ] | "[" & RTrim("  a ") & "]" -> [  a]
    "[" & Trim("   ") & "]" -> [] | Len("abc") & Len(Empty) & Len(1234) -> 304 | LenB("abc") -> 6
    UCase("aé") & LCase("AÉ") -> AÉaé | StrReverse("abc") -> cba
    String(3, "xy") & String(2, 65) & Space(1) & "." -> xxxAA . | String(3, "") -> #5 | Space(-1) -> #5
    StrComp("a", "B") & StrComp("a", "B", 1) & StrComp("a", "A", vbTextCompare) -> 1-10
    Asc("A") & " " & Asc("€") & " " & AscW("€") -> 65 128 8364 | Asc("") -> #5 | Chr(65) & Chr(128) & ChrW(937) -> A€Ω
    Chr(256) -> #5 | Escape("a b/é€") -> a%20b/%E9%u20AC | Unescape("a%20b%u20AC%zz%") -> a b€%zz%
  )");
}

TEST_F(Functions, CountCharactersNotBytes) {
  Answer("Pegel 72 dBµV Ω");
  Expect(R"(
    Len(x) -> 15 | Mid(x, 12, 2) -> µV | InStr(x, "Ω") -> 15 | Right(x, 1) -> Ω | x -> Pegel 72 dBµV Ω
  )");
}

TEST_F(Functions, ReadBytesThatAreNoUtf8AsWindows1252) {
  Answer("72 dB\xB5V \x80");
  Expect(R"(
    Mid(x, 6, 2) -> µV | Right(x, 1) -> € | Asc(Right(x, 1)) -> 128 | Len(x) -> 9
  )");
  Answer("\xF0\x9F\x98\x80!");
  Expect(R"(
    x -> 😀! | Len(x) -> 3 | Left(x, 1) -> �
  )");
}

TEST_F(Functions, FindAndReplace) {
  Expect(R"(
    InStr("abcabc", "c") -> 3 | InStr(4, "abcabc", "c") -> 6 | InStr("abc", "C") -> 0
    InStr(1, "abc", "C", vbTextCompare) -> 3 | InStr(, "abc", "c") -> 3
    InStr("", "a") & InStr("abc", "") & InStr(2, "abc", "") & InStr(9, "abc", "a") -> 0120
    InStr(0, "abc", "a") -> #5 | IsNull(InStr("abc", Null)) -> True
    InStrRev("abcabc", "c") & InStrRev("abcabc", "c", 5) & InStrRev("abcabc", "B", -1, 1) -> 635
    InStrRev("abc", "abcd") & InStrRev("abc", "") & InStrRev("abc", "a", 9) -> 030
    Replace("1,5,5", ",", ".") -> 1.5.5 | Replace("aaaa", "a", "b", 2, 1) -> baa
    Replace("aAa", "A", "", 1, -1, 1) & "." -> . | Replace("abc", "", "x") -> abc | Replace(Null, "a", "b") -> #94
  )");
}

TEST_F(Functions, SplitIndexAndJoin) {
  Expect(R"(
    Split("VALUE 72.669 DBUV", " ")(1) -> 72.669 | Split("a b c")(2) -> c | Split("a b c", , 2)(1) -> b c
    Split("aXbxc", "x", -1, 1)(1) -> b | UBound(Split("")) -> -1 | UBound(Split("a,b,,c", ",")) -> 3
    Split("abc", "")(0) -> abc | Split("a b")(2) -> #9 Subscript out of range: '[number: 2]'
    Split("a b")(-1) -> #9 Subscript out of range: '[number: -1]' | Split(Null) -> #94 | Split("a b") -> #13
    Join(Array(1, True, "a"), "-") -> 1-True-a | Join(Filter(Array("ab", "cd", "AB"), "b", True, 1)) -> ab AB
    Join(Filter(Array("ab", "cd"), "b", False)) -> cd | Join(5) -> #13 | Array(1, Array(2, 3))(1)(0) -> 2
    LBound(Array(1)) & UBound(Array(1, 2, 3)) -> 02 | UBound(Array(1), 2) -> #9 | UBound("a") -> #13
    TypeName(Array()) & IsArray(Array()) -> Variant()True
  )");
}

TEST_F(Functions, ConvertBetweenKinds) {
  Expect(R"~(
    CInt(2.5) & CInt(3.5) & CLng("-0.5") -> 240 | CInt(" 12 ") -> 12 | CDbl("72.669" & vbCrLf) -> 72.669
    CDbl("1,234.5") -> 1234.5 | CDbl("&HFF") -> 255 | CDbl("-$5.25") -> -5.25 | CDbl("") -> #13
    CDbl("72.669 DBUV") -> #13 | CInt(32768) -> #6 | CByte(-1) -> #6 | CByte(True) -> 255
    CDbl("(5)") & CDbl("5-") & CDbl("5 -") & CDbl("( $5.5 )") & CDbl("5+") -> -5-5-5-5.55
    IsNumeric("(5)") & IsNumeric("5-") & IsNumeric("1,234.5-") -> TrueTrueTrue
    IsNumeric("(-5)") & IsNumeric("-5-") & IsNumeric("((5))") & IsNumeric("()") & IsNumeric("-") -> FalseFalseFalseFalseFalse
    IsNumeric("&H5-") & IsNumeric("(5") & IsNumeric("5)") & IsNumeric("(5)-") -> FalseFalseFalseFalse
    CBool("true") & CBool(0) & CBool("2") -> TrueFalseTrue | CSng("0.1") -> 0.1 | CSng(1E300) -> #6
    CCur(1.23456) & " " & CCur(-2) -> 1.2346 -2 | CStr(1/3) -> 0.333333333333333
    CStr(1E15) & " " & CStr(1E-5) -> 1E+15 0.00001 | CStr(Null) -> #94 | CDbl(#1/5/2026 12:00 PM#) -> 46027.5
    CDate(46027.5) -> 1/5/2026 12:00:00 PM | CDate("abc") -> #13 | CDate(1E9) -> #6
    IsNumeric("1e3") & IsNumeric("1 2") & IsNumeric("") & IsNumeric(Empty) & IsNumeric(Now) -> TrueFalseFalseTrueFalse
    IsDate("1/5") & IsDate("13/13/2020") & IsDate(5) & IsDate(Now) -> TrueFalseFalseTrue
    IsEmpty(q) & IsNull(Null) & IsObject(MathLib) & IsObject(1) -> TrueTrueTrueFalse
    TypeName(Null) & TypeName(Nothing) & TypeName(MathLib) & TypeName(q) -> NullNothingclsHyLibEmpty
    VarType(Array()) & VarType("") & VarType(True) & VarType(CByte(1)) -> 820481117
    vbArray + vbVariant = VarType(Array()) -> True
  )~");
}

TEST_F(Functions, Calculate) {
  Expect(R"(
    Round(2.5) & Round(3.5) & Round(-2.5) -> 24-2 | Round(0.125, 2) -> 0.12 | Round(72.6694, 3) -> 72.669
    Round(1E300, 20) -> 1E+300 | Round(1, -1) -> #5 | Int(-1.5) & Fix(-1.5) & Int(1.5) -> -2-11
    TypeName(Int("1.5")) & TypeName(Int(1)) & TypeName(Int(CSng(1.5))) -> DoubleIntegerSingle
    Abs(-3) & Abs("-1.5") & Abs(True) & Abs(CInt(-32768)) -> 31.5132768 | Sgn(-2) & Sgn(0) & Sgn("3") -> -101
    Sqr(16) & Log(1) & Exp(0) -> 401 | Sqr(-1) -> #5 | Log(0) -> #5 | Exp(1000) -> #6
    Round(4 * Atn(1), 6) & " " & Sin(0) & Cos(0) & Tan(0) -> 3.141593 010 | 20 * Log(1000000) / Log(10) -> 120
    Hex(255) & " " & Hex(-1) & " " & Hex(-65537) & " " & Oct(8) -> FF FFFF FFFEFFFF 10 | RGB(1, 2, 999) -> 16712193
    IsNull(Abs(Null)) & IsNull(Round(Null)) & IsNull(Hex(Null)) -> TrueTrueTrue
  )");
}

TEST_F(Functions, GiveTheKnownRandomSequence) {
  EXPECT_EQ(Result("Rnd"), "0.7055475");
  EXPECT_EQ(Result("Rnd()"), "0.533424");
  EXPECT_EQ(Result("Rnd(0)"), "0.533424");
  EXPECT_EQ(Result("Rnd(-1) = Rnd(-1)"), "True");
}

TEST_F(Functions, KnowTheCalendar) {
  Expect(R"(
    Now -> 1/5/2026 9:00:00 AM | Date & " " & Time & " " & Timer -> 1/5/2026 9:00:00 AM 32400
    #2/29/2024# -> 2/29/2024 | #14:30# -> 2:30:00 PM | CDate("2026-01-05 14:30:15") -> 1/5/2026 2:30:15 PM
    CDate("Jan 5, 2026") -> 1/5/2026 | CDate("5 January") -> 1/5/2026 | CDate("25/12/99") -> 12/25/1999
    CDate("12 AM") & CDate("12:05 pm") -> 12:00:00 AM12:05:00 PM | CDate(-1.25) -> 12/29/1899 6:00:00 AM
    CDate(0.9999999) -> 12/31/1899 | CDate("2/29/2025") -> #13
    Year(Now) & Month(Now) & Day(Now) & Hour(Now) & Minute(Now) & Second(Now) -> 202615900
    Year(#1/1/100#) & Year(#12/31/9999#) -> 1009999 | Weekday(#1/5/2026#) & Weekday(#1/5/2026#, vbMonday) -> 21
    WeekdayName(1) & WeekdayName(1, True, 2) & MonthName(12, True) -> SundayMonDec | MonthName(13) -> #5
    DateSerial(2026, 13, 0) -> 12/31/2026 | DateSerial(26, 1, 1) & DateSerial(99, 1, 1) -> 1/1/20261/1/1999
    DateSerial(32767, 1, 1) -> #5 | TimeSerial(12, 90, -1) -> 1:29:59 PM
    DateValue("1/5/2026 9:00") & TimeValue("1/5/2026 9:00") -> 1/5/20269:00:00 AM
    DateAdd("m", 1, #1/31/2024#) -> 2/29/2024 | DateAdd("yyyy", -1, #2/29/2024#) -> 2/28/2023
    DateAdd("h", -1, #1/1/2026#) -> 12/31/2025 11:00:00 PM | DateAdd("x", 1, Now) -> #5
    DateAdd("yyyy", 9000, Now) -> #5 | DateDiff("d", #12/31/2025 23:59#, #1/1/2026#) -> 1
    DateDiff("yyyy", #12/31/2025#, #1/1/2026#) -> 1 | DateDiff("n", #9:00:59#, #9:01:00#) -> 1
    DateDiff("ww", #1/3/2026#, #1/4/2026#) & DateDiff("w", #1/3/2026#, #1/4/2026#) -> 10
    DateDiff("s", #1/1/100#, #1/1/9999#) -> #6 | DatePart("q", #5/1/2026#) & DatePart("y", #2/1/2026#) -> 232
    DatePart("ww", #1/1/2027#, vbMonday, vbFirstFourDays) -> 53
    DatePart("ww", #12/31/2025#, vbMonday, vbFirstFourDays) -> 1
  )");
}

TEST_F(Functions, FormatNumbersAndDates) {
  Expect(R"(
    FormatNumber(1234567.891) -> 1,234,567.89 | FormatNumber(0.125, 2) & FormatNumber(-0.5, 1, 0) -> 0.13-.5
    FormatNumber(-1234.5, 0, -1, -1, 0) -> (1235) | FormatNumber(-0.001) -> 0.00
    FormatCurrency(-1234.5) & FormatCurrency(2) -> ($1,234.50)$2.00 | FormatPercent(0.1234) -> 12.34%
    FormatNumber("abc") -> #13 | FormatNumber(1, 100) -> #5
    FormatDateTime(Now) & FormatDateTime(Now, vbShortDate) -> 1/5/2026 9:00:00 AM1/5/2026
    FormatDateTime(Now, 1) & " " & FormatDateTime(Now, 3) & " " & FormatDateTime(#16:05#, 4) -> Monday, January 5, 2026 9:00:00 AM 16:05
  )");
}

}  // namespace
}  // namespace hylden
