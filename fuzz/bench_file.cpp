#include "bench/BenchConfig.h"
#include "fuzz/Fuzzed.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hylden;
  const BenchFile bench = ParseBenchFile(TextOf(data, size));
  if (!bench.Ok()) return 0;
  const std::string text = BenchFileText(bench.Config);
  const BenchFile again = ParseBenchFile(text);
  Demand(again.Ok() && BenchFileText(again.Config) == text);
  return 0;
}
