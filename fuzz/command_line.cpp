#include "app/StartUp.h"
#include "fuzz/Fuzzed.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hylden;
  const std::string_view text = TextOf(data, size);
  (void)ParseCommandLine(text);
  std::vector<std::string> arguments(1);
  for (const char c : text) c == '\0' ? void(arguments.emplace_back()) : arguments.back().push_back(c);
  (void)ParseCommandLine(JoinArguments(arguments));
  return 0;
}
