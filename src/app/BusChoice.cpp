#include "app/BusChoice.h"

#include <algorithm>

#include "bench/Bench.h"
#include "platform/native/NativeGpib.h"
#include "shell/INISettings.h"
#include "text/Case.h"
#include "text/Numbers.h"

namespace hylden {

namespace {

constexpr const char* kSection = "Gpib";
constexpr double kMostBoards = 16;

}  // namespace

BusChoice ChosenBus(INISettings& settings) {
  return {SameIgnoringCase(settings.Get(kSection, "Driver", "native"), "bench"), settings.Get(kSection, "Bench", ""),
          settings.Get(kSection, "Library", ""),
          static_cast<int>(std::clamp(LeadingNumber(settings.Get(kSection, "Board", "0")), 0.0, kMostBoards - 1))};
}

Bus::Bus(const BusChoice& choice)
    : native_(std::make_unique<NativeGpib>(OpenGpibLibrary(choice.Library), choice.Board)) {}

Bus::Bus(const Clock& clock, const BenchConfig& config) : bench_(std::make_unique<Bench>(clock, config)) {}

Bus::~Bus() = default;

GpibDriver& Bus::Driver() {
  return bench_ ? bench_->Driver() : *native_;
}

}  // namespace hylden
