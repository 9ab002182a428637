#include "bench/BareBench.h"
#include "bench/ServedAdapter.h"
#include "bench/ServedInstrument.h"
#include "fuzz/Fuzzed.h"

/// What a client sends to the served bench, as its adapter and as an instrument.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hylden;
  static BareBench bench(SmallStation());
  static ServedBus bus(bench.bench.Bus(), bench.clock);
  ServedAdapter adapter(bus);
  ServedInstrument instrument(bus, bench.bench.Equipment().MeterAddress);
  for (StreamSession* const session :
       {static_cast<StreamSession*>(&adapter), static_cast<StreamSession*>(&instrument)}) {
    session->Take(TextOf(data, size));
    while (const auto due = session->DueInMs()) {
      bench.clock.Advance(*due);
      (void)session->Serve();
    }
  }
  return 0;
}
