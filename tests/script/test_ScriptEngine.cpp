#include <iterator>
#include <random>
#include <vector>

#include "ScriptFixture.h"

namespace hylden {
namespace {

using Engine = ScriptFixture;

TEST_F(Engine, ParsesInstrumentAnswers) {
  Answer("VALUE 72.669 DBUV");
  Expect(R"(
    X -> VALUE 72.669 DBUV | Mid(x, 7, 6) -> 72.669 | RetString -> VALUE 72.669 DBUV
    mathlib.retstring -> VALUE 72.669 DBUV | Split(x, " ")(1) -> 72.669
    CDbl(Mid(x, InStr(x, " ") + 1, 6)) + 0.5 -> 73.169 | [x] -> VALUE 72.669 DBUV | Len(x) ' the length -> 17
    Len(x) Rem the length -> 17 | (x) -> VALUE 72.669 DBUV
  )");
  for (const char* nothing : {"", "  "}) EXPECT_EQ(Result(nothing), "");
  Answer("1.5E-3,0");
  EXPECT_EQ(Result("1000 * Split(x, \",\")(0)"), "1.5");
}

TEST_F(Engine, KeepsVariablesBetweenCalls) {
  EXPECT_EQ(Result("n"), "");
  EXPECT_EQ(StatementError("n = n + 1"), 0);
  EXPECT_EQ(StatementError("N = n + 1 ' again"), 0);
  EXPECT_EQ(StatementError("n = n + 1"), 0);
  EXPECT_EQ(Result("n"), "3");
  EXPECT_EQ(StatementError("Let a = Array(1, 2)"), 0);
  EXPECT_EQ(Result("a(1)"), "2");
  EXPECT_EQ(StatementError("Set o = MathLib"), 0);
  EXPECT_EQ(StatementError("o2 = 1 / 0"), 11);
  EXPECT_EQ(StatementError("RetString = \"new\""), 0);
  EXPECT_EQ(Result("o.RetString"), "new");
  EXPECT_EQ(library.RetString, "new");
  EXPECT_EQ(StatementError("MathLib.RetString = 5"), 0);
  EXPECT_EQ(library.RetString, "5");
  EXPECT_EQ(StatementError(""), 0);
}

TEST_F(Engine, RefusesWrongAssignments) {
  const std::pair<const char*, int> rows[] = {
      {"x =", 1002},           {"x 5", 1011},        {"5 = x", 1024},           {"If x Then", 1024}, {"x = 1 2", 1025},
      {"x = 1 : y = 2", 1025}, {"Len = 5", 501},     {"vbCr = 5", 501},         {"x(1) = 5", 501},   {"Set x = 5", 424},
      {"x = Nothing", 91},     {"x = MathLib", 438}, {"MathLib.Other = 5", 438}};
  for (const auto& [statement, error] : rows) EXPECT_EQ(StatementError(statement), error) << statement;
}

TEST_F(Engine, NamesTheErrorAsTheLanguageDoes) {
  Answer("72");
  Expect(R"(
    Mid(x, 1 -> #1006 Expected ')' | 1 + -> #1002 Syntax error | * 2 -> #1002 Syntax error | () -> #1002 Syntax error
    Left(x,) -> #1002 Syntax error | If -> #1002 Syntax error | 1 2 -> #1025 Expected end of statement
    x x -> #1025 Expected end of statement | 1) -> #1025 Expected end of statement
    5abc -> #1025 Expected end of statement | "abc -> #1033 Unterminated string constant | [abc -> #1007 Expected ']'
    MathLib. -> #1010 Expected identifier | 1 ? 2 -> #1032 Invalid character | 1E+ -> #1031 Invalid number
    &H123456789 -> #1031 Invalid number | #notadate# -> #1002 Syntax error | foo(1) -> #13 Type mismatch: 'foo'
    MsgBox("hi") -> #13 Type mismatch: 'MsgBox'
    CreateObject("Scripting.FileSystemObject") -> #13 Type mismatch: 'CreateObject' | x(1) -> #13 Type mismatch: 'x'
    x.Length -> #424 Object required: 'x'
    MathLib.Length -> #438 Object doesn't support this property or method: 'MathLib.Length'
    MathLib -> #438 Object doesn't support this property or method
    RetString(1) -> #450 Wrong number of arguments or invalid property assignment: 'RetString'
    Len() -> #450 Wrong number of arguments or invalid property assignment: 'Len'
    Now(1) -> #450 Wrong number of arguments or invalid property assignment: 'Now' | Null -> #94 Invalid use of Null
    Array(1) -> #13 Type mismatch | Nothing -> #91 Object variable not set
  )");
  EXPECT_EQ(Result("x"), "72") << "an error must not spoil the next parse";
}

TEST_F(Engine, WorksWithoutALibraryObject) {
  ScriptEngine bare(clock);
  EXPECT_EQ(bare.Eval("RetString & 1"), "1");
  EXPECT_THROW(bare.ExecuteStatement("MathLib.RetString = 1"), ScriptError);
}

std::string Repeat(const std::string& part, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += part;
  return text;
}

TEST_F(Engine, BoundsWhatAnExpressionMayUse) {
  const std::size_t many = 100000;
  EXPECT_EQ(Result(Repeat("(", many) + "1" + Repeat(")", many)), "#28 Out of stack space");
  EXPECT_EQ(Result(Repeat("- ", many) + "1"), "#28 Out of stack space");
  EXPECT_EQ(Result(Repeat("Not ", many) + "1"), "#28 Out of stack space");
  EXPECT_EQ(Result(Repeat("2^", many) + "1"), "#6 Overflow");
  EXPECT_EQ(Result(Repeat("(", 150) + "1" + Repeat(")", 150)), "1");
  EXPECT_EQ(Result("0" + Repeat("+1", many)), std::to_string(many));
  EXPECT_EQ(Result(Repeat(" ", 2000000) + "1"), "#1001 Out of memory");
  Expect(R"(
    String(1000000000, "a") -> #14 Out of string space | Space(2000000) -> #14 Out of string space
    Len(Space(1000000)) -> 1000000 | Space(1000000) & Space(1000000) -> #14 Out of string space
    Replace(Space(1000000), " ", "abc") -> #14 Out of string space
    Replace(Space(1000), " ", Space(100000)) -> #14 Out of string space
    Join(Split(Space(100000)), Space(1000)) -> #14 Out of string space
    UBound(Split(Space(1000000))) -> #7 Out of memory | InStr(Space(500000), Space(250000) & "x") -> #7 Out of memory
    InStrRev(Space(500000), "x" & Space(250000)) -> 0
  )");
  EXPECT_EQ(StatementError("s = Space(1000000)"), 0);
  for (const char* reading : {"IsNumeric(s)", "IsDate(s)", "Len(s)", "Len(Mid(s, 2))", "(s < s)"})
    EXPECT_EQ(Result("0" + Repeat(std::string("+") + reading, 100)), "#7 Out of memory") << reading;
  EXPECT_EQ(Result("IsNumeric(s)"), "False");
  std::string nested = "1";
  for (int i = 0; i < 100; ++i) nested = "Array(" + nested + ")";
  EXPECT_EQ(Result("IsArray(" + nested + ")"), "#28 Out of stack space");
  StatementError("a = Array(1)");
  for (int i = 0; i < 100; ++i) StatementError("a = Array(a)");
  EXPECT_EQ(StatementError("a = Array(a)"), 28);
}

/// Writes expressions by a grammar, well-formed for the most part, with a stray token now and then.
class Scribbler {
  int Below(int bound) { return static_cast<int>(random_() % static_cast<unsigned>(bound)); }
  auto& OneOf(auto& choices) { return choices[random_() % choices.size()]; }

 public:
  std::string Expression(int depth) {
    if (depth <= 0 || Below(4) == 0) return OneOf(kAtoms);
    const std::string inner = Expression(depth - 1);
    switch (Below(6)) {
      case 0:
        return "(" + inner + ")";
      case 1:
        return (Below(2) == 0 ? "Not " : "-") + inner;
      case 2:
        return inner + "(" + Expression(depth - 1) + ")";
      case 3:
        return inner + " " + OneOf(kOperators) + " " + Expression(depth - 1);
      default:
        std::string call = OneOf(kFunctions) + "(" + inner;
        for (int more = Below(4); more > 0; --more) call += Below(12) == 0 ? "," : "," + Expression(depth - 1);
        return call + ")";
    }
  }

  std::string Garbled(std::string text) {
    static const std::string strays = "()\"'#&.,[]^=<>:\\ \n\x80\xE2x1e";
    for (int i = Below(3); i >= 0; --i) OneOf(text) = OneOf(strays);
    return text;
  }

 private:
  static std::vector<std::string> Words(const std::string& text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
  }
  const std::vector<std::string> kOperators = Words("+ - * / \\ ^ & = <> < >= Is Mod And Or Xor Eqv Imp");
  const std::vector<std::string> kAtoms = Words(R"(
      x a unknown RetString MathLib MathLib.RetString 0 -1 32767 2147483647 1E308 &HFFFF "" "72.6" "True" True Null
      Empty Nothing #1/5/2026# vbCrLf Now Rnd Array(1,,"b") CByte(200) CCur(922337203685477) CSng(3E38) "yyyy" "ww"
      1000000)");
  const std::vector<std::string> kFunctions = Words(R"(
      Abs Array Asc AscB AscW Atn CBool CByte CCur CDate CDbl Chr ChrW CInt CLng Cos CSng CStr DateAdd DateDiff
      DatePart DateSerial DateValue Day Escape Exp Filter Fix FormatCurrency FormatDateTime FormatNumber
      FormatPercent Hex Hour InStr InStrRev Int IsArray IsDate IsEmpty IsNull IsNumeric IsObject Join LBound LCase
      Left Len LenB Log LTrim Mid Minute Month MonthName Oct Randomize Replace RGB Right Rnd Round RTrim Second Sgn
      Sin Space Split Sqr StrComp String StrReverse Tan TimeSerial TimeValue Trim TypeName UBound UCase Unescape
      VarType Weekday WeekdayName Year unknown)");
  std::mt19937 random_{20260105};
};

TEST_F(Engine, AnswersAnyTextWithAValueOrAScriptError) {
  Answer("VALUE 72.669 DBUV");
  ASSERT_EQ(StatementError("a = Split(x)"), 0);
  Scribbler scribbler;
  int values = 0, errors = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string text = scribbler.Expression(4);
    if (i % 3 == 0) text = scribbler.Garbled(text);
    try {
      engine.Eval(text);
      ++values;
    } catch (const ScriptError& error) {
      ++errors;
      ASSERT_GT(error.Number(), 0) << text;
      ASSERT_NE(error.Description(), "") << text;
    } catch (const std::exception& other) {
      FAIL() << text << " gave " << other.what();
    }
  }
  EXPECT_GT(values, 1000) << "the texts must reach the functions";
  EXPECT_GT(errors, 1000);
}

}  // namespace
}  // namespace hylden
