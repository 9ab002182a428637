#include "bench/Bench.h"

namespace hylden {

Bench::Bench(const Clock& clock, BenchConfig config) : config_(std::move(config)), world_(clock, config_), bus_(clock) {
  for (const BenchFault& fault : config_.Faults) bus_.Inject(fault);
  bus_.protectAmplifier = [this] { SetAmplifierProtection(true); };
  world_.beforeChange = [this] {
    if (meter_) meter_->FinishCapture();
    if (powerMeter_) powerMeter_->FinishCaptures();
  };
  world_.afterChange = [this](const BenchState& state) { Observe(state); };
}

void Bench::Equip(const BenchEquipment& equipment) {
  bus_.Clear();
  meter_.reset(), powerMeter_.reset(), sigGen_.reset(), ifiLow_.reset(), ifiHigh_.reset();
  ifiSwitches_ = {};
  equipment_ = equipment;
  world_.SetGenerator({});
  Cabling cabling = world_.Cabling();
  cabling.Amplifier = equipment.IfiAmplifier ? Amplifier::None : Amplifier::Generic;
  world_.SetCabling(cabling);
  lastDisturbance_.reset();

  if (equipment.SigGen) {
    sigGen_ = std::make_unique<VirtualSigGen>(world_, *equipment.SigGen);
    bus_.Attach(equipment.SigGenAddress, *sigGen_);
  }
  if (equipment.Meter) {
    meter_ = std::make_unique<VirtualMeter>(world_, *equipment.Meter);
    bus_.Attach(equipment.MeterAddress, *meter_);
  }
  if (equipment.PowerMeter) {
    powerMeter_ = std::make_unique<VirtualPowerMeter>(world_, *equipment.PowerMeter, equipment.Sensors,
                                                      equipment.SensorBandSwitchMHz);
    bus_.Attach(equipment.PowerMeterAddress, *powerMeter_);
  }
  if (!equipment.IfiAmplifier) return;
  ifiLow_ = std::make_unique<VirtualIfiLow>(world_, ifiSwitches_);
  ifiHigh_ = std::make_unique<VirtualIfiHigh>(world_, ifiSwitches_);
  bus_.Attach(kIfiLowAddress, *ifiLow_);
  bus_.Attach(kIfiHighAddress, *ifiHigh_);
}

void Bench::Connect(MeterAt place) {
  lastDisturbance_.reset();
  Cabling cabling = world_.Cabling();
  cabling.Meter = place;
  world_.SetCabling(cabling);
}

void Bench::SetAmplifierProtection(bool on) {
  Cabling cabling = world_.Cabling();
  cabling.Protection = on;
  world_.SetCabling(cabling);
}

void Bench::Observe(const BenchState& state) {
  if (state.ProductDisturbed) lastDisturbance_ = {state.Generator.FreqMHz, state.PeakTestLevelDbuv};
  for (const auto& listener : listeners_) listener(state);
}

}  // namespace hylden
