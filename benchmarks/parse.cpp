#include <string>
#include <vector>

#include "benchmarks/Limits.h"
#include "platform/VirtualTime.h"
#include "script/ScriptEngine.h"

namespace hylden {
namespace {

using std::chrono::microseconds;

/// An engine as the program sets it up, with an answer bound to x.
struct Parser {
  Parser() : engine(clock) {
    library.RetString = "VALUE 72.669 DBUV";
    engine.AddObject(library);
    engine.ExecuteStatement("x= RetString");
  }

  VirtualClock clock;
  clsHyLib library;
  ScriptEngine engine;
};

void EvaluateCached(benchmark::State& state) {
  Parser parser;
  for (auto _ : state)
    if (parser.engine.Eval("Mid(x, 7, 6)") != "72.669") state.SkipWithError("a wrong value");
  LimitTime(state, microseconds(1));
}
BENCHMARK(EvaluateCached);

/// What one reading of a meter costs: the answer is bound anew, too.
void ParseAnswerCached(benchmark::State& state) {
  Parser parser;
  for (auto _ : state) {
    parser.library.RetString = "VALUE 72.669 DBUV";
    parser.engine.ExecuteStatement("x= RetString");
    if (parser.engine.Eval("Mid(x, 7, 6)") != "72.669") state.SkipWithError("a wrong value");
  }
}
BENCHMARK(ParseAnswerCached);

/// More expressions of one length than the engine remembers, so that each is parsed every time.
std::vector<std::string> ManyExpressions() {
  std::vector<std::string> expressions;
  for (int i = 1000; i < 5000; ++i) expressions.push_back("Mid(x, 7, " + std::to_string(i) + ")");
  return expressions;
}

void EvaluateUncached(benchmark::State& state) {
  Parser parser;
  const std::vector<std::string> expressions = ManyExpressions();
  std::size_t next = 0;
  for (auto _ : state) {
    if (parser.engine.Eval(expressions[next]) != "72.669 DBUV") state.SkipWithError("a wrong value");
    next = (next + 1) % expressions.size();
  }
  LimitTime(state, microseconds(10));
}
BENCHMARK(EvaluateUncached);

}  // namespace
}  // namespace hylden
