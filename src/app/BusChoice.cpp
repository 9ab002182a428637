#include "app/BusChoice.h"

#include <algorithm>

#include "bench/Bench.h"
#include "platform/native/NativeGpib.h"
#include "shell/INISettings.h"

namespace hylden {

namespace {

constexpr const char* kSection = "Gpib";

bool SaysBench(std::string driver) {
  std::transform(driver.begin(), driver.end(), driver.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return driver == "bench";
}

}  // namespace

BusChoice ChosenBus(INISettings& settings) {
  return {SaysBench(settings.Get(kSection, "Driver", "native")), settings.Get(kSection, "Bench", "")};
}

Bus::Bus() : native_(std::make_unique<NativeGpib>()) {}

Bus::Bus(const Clock& clock, const BenchConfig& config) : bench_(std::make_unique<Bench>(clock, config)) {}

Bus::~Bus() = default;

GpibDriver& Bus::Driver() {
  return bench_ ? bench_->Driver() : *native_;
}

}  // namespace hylden
