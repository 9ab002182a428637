#include "app/Station.h"

#include "bench/Bench.h"

namespace hylden {

namespace {

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

bool Station::LoadEquipment(const std::string& path) {
  if (!shell.Ok(documents.equip.LoadDef(path))) {
    shell.dialogs.Tell("Error loading equipment file " + path);
    return false;
  }
  documents.equip.EquipFileName = path;
  return true;
}

bool Station::Apply() {
  Equip& equip = documents.equip;
  const bool loaded = LoadDefinitions();
  const auto failure = equip.TakeEntries(equip.Entries());
  if (failure) shell.dialogs.Tell(BadEntryText(*failure, equip.Record, equip.EquipFileName), MessageIcon::Exclamation);
  EquipBench();
  return loaded && !failure;
}

bool Station::LoadDefinitions() {
  // The command that ends RF goes with the definition.
  if (instruments.sigGen.RfIsOn()) (void)instruments.sigGen.SilenceRf();
  bool loaded = true;
  const auto load = [&](auto& driver, const std::string& file) {
    if (file.empty()) return driver.Forget();
    loaded = shell.Ok(driver.LoadFile(file)) && loaded;
  };
  const EquipRecord& equipment = documents.equip.Record;
  load(instruments.sigGen, equipment.SigGenFile);
  load(instruments.meter, equipment.MeterFile);
  load(instruments.pm, equipment.PwrMtrFile);
  TakeAddresses();
  return loaded;
}

void Station::TakeAddresses() {
  const EquipRecord& equipment = documents.equip.Record;
  const auto take = [](auto& driver, const std::string& file, int address) {
    if (!file.empty()) driver.SetAddress(address);
  };
  take(instruments.sigGen, equipment.SigGenFile, equipment.SigGenAddress);
  take(instruments.meter, equipment.MeterFile, equipment.MeterAddress);
  take(instruments.pm, equipment.PwrMtrFile, equipment.PwrMtrAddress);
  if (equipment.HasIfiAmplifier()) instruments.pm.SetBandswitch(equipment.IfiBandSwitch);
}

std::vector<BusUnit> Station::BusUnits() const {
  const EquipRecord& equipment = documents.equip.Record;
  std::vector<BusUnit> units;
  const auto add = [&](const auto& driver, const std::string& file, int address, const std::string& what) {
    if (file.empty()) return;
    const std::string name = driver.HasDefinition() ? driver.InstrumentName() : std::string();
    units.push_back({address, name.empty() ? what : what + ": " + name, LineEndOf(driver.Definition().EndOfString)});
  };
  add(instruments.sigGen, equipment.SigGenFile, equipment.SigGenAddress, "Signal generator");
  add(instruments.meter, equipment.MeterFile, equipment.MeterAddress, "Meter");
  add(instruments.pm, equipment.PwrMtrFile, equipment.PwrMtrAddress, "Power meter");
  if (equipment.HasIfiAmplifier()) {
    units.push_back({IfiAmp::kLowUnit, "IFI amplifier, low band", LineEnd::CrLf});
    units.push_back({IfiAmp::kHighUnit, "IFI amplifier, high band", LineEnd::CrLf});
  }
  return units;
}

void Station::EquipBench() {
  if (bench) bench->Equip(OnTheBench(documents.equip.Record, instruments));
}

}  // namespace hylden
