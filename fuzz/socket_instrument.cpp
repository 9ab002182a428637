#include "platform/native/SocketInstrument.h"

#include "fuzz/Fuzzed.h"
#include "fuzz/FuzzedStream.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hylden;
  DriveFuzzed(SocketInstrument(std::make_unique<FuzzedStream>(TextOf(data, size))));
  return 0;
}
