#include "fuzz/Fuzzed.h"
#include "instruments/MeterDefinition.h"
#include "instruments/PowerMeterDefinition.h"
#include "instruments/SigGenDefinition.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hylden;
  const std::string& file = FileOf(data, size);
  TryRecord<SigGenDefinition>(file);
  TryRecord<MeterDefinition>(file);
  TryRecord<PowerMeterDefinition>(file);
  return 0;
}
