#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bench/BenchConfig.h"
#include "bench/RfWorld.h"
#include "bench/VirtualBus.h"
#include "bench/VirtualIfi.h"
#include "bench/VirtualMeter.h"
#include "bench/VirtualPowerMeter.h"
#include "bench/VirtualSigGen.h"

namespace hylden {

/// The station's instruments as the bench stands in for them; what is not there is not on the bus.
struct BenchEquipment {
  std::optional<SigGenDefinition> SigGen;
  int SigGenAddress = 0;
  std::optional<MeterDefinition> Meter;
  int MeterAddress = 0;
  std::optional<PowerMeterDefinition> PowerMeter;
  int PowerMeterAddress = 0;
  PowerSensors Sensors = PowerSensors::ForwardReverse;
  double SensorBandSwitchMHz = 230;
  bool IfiAmplifier = false;
};

/// The simulated bench: virtual instruments on a virtual bus, and the RF path between them.
class Bench {
 public:
  /// The clock must outlive the bench.
  explicit Bench(const Clock& clock, BenchConfig config = BenchConfig());
  Bench(const Bench&) = delete;
  Bench& operator=(const Bench&) = delete;

  /// The bus that the program talks to.
  GpibDriver& Driver() { return bus_; }
  VirtualBus& Bus() { return bus_; }
  const VirtualBus& Bus() const { return bus_; }

  /// Puts the instruments on the bus, all as after switching on; with RF off.
  void Equip(const BenchEquipment& equipment);
  /// Plugs the meter, as before a run: what happened to the product before is forgotten.
  void Connect(MeterAt place);
  void SetAmplifierProtection(bool on);
  void Inject(const BenchFault& fault) { bus_.Inject(fault); }

  const BenchState& State() const { return world_.State(); }
  /// Called after every change of the generator's output, the amplifier or the cabling; the former ones stay.
  void OnChange(std::function<void(const BenchState&)> listener) { listeners_.push_back(std::move(listener)); }
  bool ProductDisturbed() const { return State().ProductDisturbed; }
  /// Where the product was disturbed last.
  struct Disturbance {
    double FreqMHz = 0;
    double PeakTestLevelDbuv = 0;
  };
  /// Since the bench was equipped or the meter connected; nothing when the product never was.
  const std::optional<Disturbance>& LastDisturbance() const { return lastDisturbance_; }
  /// What stands on the bench, and the instruments as they are now; null for one that is not there.
  const BenchEquipment& Equipment() const { return equipment_; }
  const VirtualMeter* Meter() const { return meter_.get(); }
  const VirtualPowerMeter* PowerMeter() const { return powerMeter_.get(); }
  const RfPath& Path() const { return world_.Path(); }
  const BenchConfig& Config() const { return config_; }

 private:
  void Observe(const BenchState& state);

  BenchConfig config_;
  RfWorld world_;
  VirtualBus bus_;
  BenchEquipment equipment_;
  IfiSwitches ifiSwitches_;
  std::unique_ptr<VirtualSigGen> sigGen_;
  std::unique_ptr<VirtualMeter> meter_;
  std::unique_ptr<VirtualPowerMeter> powerMeter_;
  std::unique_ptr<VirtualIfiLow> ifiLow_;
  std::unique_ptr<VirtualIfiHigh> ifiHigh_;
  std::vector<std::function<void(const BenchState&)>> listeners_;
  std::optional<Disturbance> lastDisturbance_;
};

}  // namespace hylden
