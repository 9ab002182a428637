#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "platform/VirtualTime.h"
#include "script/ScriptEngine.h"

namespace hylden {

/// An engine as the program sets it up, on Monday, 5 January 2026, 9:00.
class ScriptFixture : public testing::Test {
 protected:
  ScriptFixture() { engine.AddObject(library); }

  void Answer(const std::string& text) {
    library.RetString = text;
    engine.ExecuteStatement("x= RetString");
  }

  /// The value as text, or the error as "#13 Type mismatch: 'CInt'".
  std::string Result(const std::string& expression) {
    try {
      return engine.Eval(expression);
    } catch (const ScriptError& error) {
      return "#" + std::to_string(error.Number()) + " " + error.Description();
    }
  }

  /// 0 when the statement succeeds, else the error's number.
  int StatementError(const std::string& statement) {
    try {
      engine.ExecuteStatement(statement);
      return 0;
    } catch (const ScriptError& error) {
      return error.Number();
    }
  }

  /// Checks expressions against their results, written as rows "expression -> result | expression -> result". An error
  /// may be given by its number alone; a line that begins with ' is a comment.
  void Expect(const std::string& table) {
    std::istringstream lines(table);
    for (std::string line, row; std::getline(lines, line);) {
      if (Trimmed(line).starts_with("'")) continue;
      std::istringstream rows(line);
      while (std::getline(rows, row, '|')) ExpectRow(row);
    }
  }

  VirtualClock clock;
  clsHyLib library;
  ScriptEngine engine{clock};

 private:
  static std::string Trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
  }
  void ExpectRow(const std::string& row) {
    const auto arrow = row.find("->");
    if (arrow == std::string::npos) {
      EXPECT_EQ(Trimmed(row), "") << "a row without a result";
      return;
    }
    const std::string expression = Trimmed(row.substr(0, arrow)), expected = Trimmed(row.substr(arrow + 2));
    std::string result = Result(expression);
    if (expected.starts_with("#") && expected.find(' ') == std::string::npos)
      result.resize(std::min(result.size(), result.find(' ')));
    EXPECT_EQ(result, expected) << expression;
  }
};

}  // namespace hylden
