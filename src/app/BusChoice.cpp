#include "app/BusChoice.h"

#include "bench/Bench.h"
#include "platform/native/NativeGpib.h"
#include "shell/INISettings.h"
#include "text/Case.h"

namespace hylden {

namespace {

constexpr const char* kSection = "Gpib";

}  // namespace

BusChoice ChosenBus(INISettings& settings) {
  return {SameIgnoringCase(settings.Get(kSection, "Driver", "native"), "bench"), settings.Get(kSection, "Bench", "")};
}

Bus::Bus() : native_(std::make_unique<NativeGpib>()) {}

Bus::Bus(const Clock& clock, const BenchConfig& config) : bench_(std::make_unique<Bench>(clock, config)) {}

Bus::~Bus() = default;

GpibDriver& Bus::Driver() {
  return bench_ ? bench_->Driver() : *native_;
}

}  // namespace hylden
