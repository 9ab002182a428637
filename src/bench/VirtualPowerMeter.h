#pragma once

#include <array>

#include "bench/CommandSet.h"
#include "bench/RfWorld.h"
#include "bench/VirtualInstrument.h"
#include "instruments/PowerMeterDefinition.h"

namespace hylden {

/// Where the sensors of channels 1 and 2 are: the forward port alone; the forward and the reverse port; or the forward
/// ports of a low-band and a high-band coupler. The codes are those of the equipment's amplifier configuration.
enum class PowerSensors : std::int32_t { Forward = 0, ForwardReverse = 1, ByBand = 2 };

/// A power meter by its definition. Its sensors see average power. Commands that are the same for both channels act on
/// the selected one. Without a trigger command it measures when it is read, without a read command it talks when
/// addressed.
class VirtualPowerMeter : public VirtualInstrument {
 public:
  /// @param bandSwitchMHz  at or below it the signal is in the low-band coupler
  VirtualPowerMeter(RfWorld& world, const PowerMeterDefinition& definition, PowerSensors sensors, double bandSwitchMHz);
  /// Takes captures that are over, before the world changes.
  void FinishCaptures();
  /// The value of the last answer of channel 1 or 2, in the units of its definition.
  std::optional<double> LastReading(int channel) const { return lastReadings_[static_cast<std::size_t>(channel - 1)]; }

 protected:
  Heard Listen(std::string_view command) override;
  std::optional<std::string> Speak() override;

 private:
  double Measure(int channel, std::int64_t tickMs);
  double SensorDbm(int channel, const RfWorld::View& view) const;
  std::string Answer(int channel);

  RfWorld& world_;
  PowerMeterDefinition definition_;
  PowerSensors sensors_;
  double bandSwitchMHz_;
  CommandSet commands_;
  std::array<Capture, 2> captures_;
  std::array<std::optional<double>, 2> lastReadings_;
  int selected_ = 1;
  double freqMHz_ = 0;
};

/// A power as a meter with this unit code shows it; dBm for a code that is no unit.
double DbmToPowerUnits(std::int32_t units, double dbm);

}  // namespace hylden
