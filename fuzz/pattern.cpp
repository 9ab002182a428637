#include <algorithm>
#include <cstring>

#include "fuzz/Fuzzed.h"
#include "text/Numbers.h"
#include "text/Pattern.h"

/// The first eight bytes are a number, the rest the pattern.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hylden;
  double value = 0;
  if (size < sizeof value) return 0;
  std::memcpy(&value, data, sizeof value);
  const std::string_view pattern = TextOf(data, size).substr(sizeof value);
  (void)Format(value, pattern);
  (void)Format(static_cast<float>(value), pattern);
  (void)LeadingNumber(std::string(pattern));
  return 0;
}
