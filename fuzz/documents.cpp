#include "documents/CalInfo.h"
#include "documents/CalSetupRecord.h"
#include "documents/EquipRecord.h"
#include "documents/TestDefinition.h"
#include "fuzz/Fuzzed.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hylden;
  const std::string& file = FileOf(data, size);
  TryRecord<EquipRecord>(file);
  TryRecord<CalSetupRecord>(file);
  TryRecord<TestDefinition>(file);
  TryRecord<CalInfoRec>(file);
  return 0;
}
