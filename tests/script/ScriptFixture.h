#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

  struct Row {
    const char* expression;
    const char* result;
  };
  void Expect(const std::vector<Row>& rows) {
    for (const Row& row : rows) EXPECT_EQ(Result(row.expression), row.result) << row.expression;
  }

  VirtualClock clock;
  clsHyLib library;
  ScriptEngine engine{clock};
};

}  // namespace hylden
