#include "fuzz/Fuzzed.h"
#include "instruments/ResponseParser.h"

/// The first line is an instrument's answer, the rest the expression.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hylden;
  static TestShell machine;
  const std::string_view text = TextOf(data, size);
  const std::size_t line = std::min(text.find('\n'), text.size());
  const std::string answer(text.substr(0, line)), expression(text.substr(std::min(line + 1, text.size())));
  // Variables stay until the engine ends: an input must not hang on the one before.
  ResponseParser parser(machine.shell);
  const ParseExplanation explained = parser.Explain(answer, expression);
  if (explained.At) Demand(*explained.At <= expression.size());
  return 0;
}
