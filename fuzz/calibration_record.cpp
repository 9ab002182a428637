#include "documents/clsCalFile.h"
#include "fuzz/Fuzzed.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hylden;
  std::string info = FileOf(data, size, "record.cal");
  info.replace(info.size() - 3, 3, "hyinfo");
  clsCalFile record;
  if (!record.LoadFile(info) || record.GetNumSteps() < 0) return 0;
  const double start = record.GetStartFreq(), stop = record.GetStopFreq();
  Demand(start <= stop);
  for (const double frequency : {start, (start + stop) / 2, stop}) {
    (void)record.GetSigGen(frequency);
    (void)record.GetTestLevel(frequency);
    (void)record.GetNetPwr(frequency);
  }
  return 0;
}
