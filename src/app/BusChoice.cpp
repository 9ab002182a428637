#include "app/BusChoice.h"

#include <algorithm>

#include "bench/Bench.h"
#include "documents/EquipRecord.h"
#include "instruments/Instruments.h"
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

BenchEquipment OnTheBench(const EquipRecord& equipment, const Instruments& instruments) {
  BenchEquipment bench;
  if (instruments.sigGen.HasDefinition() && !equipment.SigGenFile.empty())
    bench.SigGen = instruments.sigGen.Definition();
  if (instruments.meter.HasDefinition() && !equipment.MeterFile.empty()) bench.Meter = instruments.meter.Definition();
  if (instruments.pm.HasDefinition() && !equipment.PwrMtrFile.empty()) bench.PowerMeter = instruments.pm.Definition();
  bench.SigGenAddress = equipment.SigGenAddress;
  bench.MeterAddress = equipment.MeterAddress;
  bench.PowerMeterAddress = equipment.PwrMtrAddress;
  bench.Sensors = static_cast<PowerSensors>(equipment.AmpConfiguration);
  bench.IfiAmplifier = equipment.HasIfiAmplifier();
  if (bench.IfiAmplifier) bench.SensorBandSwitchMHz = equipment.IfiBandSwitch;
  return bench;
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

void Bus::EquipBench(const EquipRecord& equipment, const Instruments& instruments) {
  if (bench_) bench_->Equip(OnTheBench(equipment, instruments));
}

}  // namespace hylden
