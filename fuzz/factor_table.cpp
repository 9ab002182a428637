#include "fuzz/Fuzzed.h"
#include "measure/InterpClass.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hylden;
  static TestShell machine;
  InterpClass table(machine.shell);
  if (!table.InitInterp(FileOf(data, size))) return 0;
  Demand(table.MinFreq() <= table.MaxFreq());
  for (const double frequency : {table.MinFreq(), table.MaxFreq(), (table.MinFreq() + table.MaxFreq()) / 2, 0.0, 80.0})
    for (const FreqScale scale : {FreqScale::Linear, FreqScale::Log}) (void)table.InterpVal(frequency, scale);
  return 0;
}
