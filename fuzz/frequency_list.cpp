#include <algorithm>
#include <cmath>

#include "fuzz/Fuzzed.h"
#include "measure/ReadFreq.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hylden;
  const auto list = ReadFreq::FileTolist(FileOf(data, size));
  if (list) Demand(std::ranges::all_of(*list, [](double frequency) { return std::isfinite(frequency); }));
  return 0;
}
