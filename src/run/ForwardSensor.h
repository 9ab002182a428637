#pragma once

#include <string>
#include <vector>

#include "shell/Failure.h"

namespace hylden {

class Shell;
struct EquipRecord;
struct Instruments;

/// What the operator of a station with one power sensor and two couplers (low and high band) is told before a reading;
/// empty when the sensor is where it belongs. The low band ends at the band-switch frequency. Frequencies in MHz.
/// @param previousMHz  frequency of the reading before; 0 before the first
std::string SensorPrompt(double previousMHz, double frequencyMHz, double bandSwitchMHz);

/// Whether somebody has to move the station's power sensor on the way through these frequencies, MHz: it serves both
/// couplers of an IFI amplifier, and they are of both bands. It is then at its first place before they begin.
bool SensorMoves(const EquipRecord& equipment, const std::vector<double>& frequenciesMHz);

/// The power on the line, dBm: the sensor's reading and the coupler's factor. A reading of 0 W is no level (-999), with
/// whatever factor.
double LinePower(double readingDbm, double factorDb);

/// The forward power sensor of the station: which channel it is on, and where the operator has to move it when one
/// sensor serves both couplers of an IFI amplifier.
class ForwardSensor {
 public:
  ForwardSensor(Shell& shell, Instruments& instruments, const EquipRecord& equipment)
      : shell_(shell), instruments_(instruments), equipment_(equipment) {}

  /// The power meter was brought up: where the sensor is has to be asked again.
  void Reset() { previousMHz_ = 0; }
  /// Has the operator move the sensor to where this frequency needs it. Before that RF is switched off, and stays off:
  /// this comes before the generator is set to the frequency. After a halt it fails silently.
  Done Place(double frequencyMHz);
  /// The sensor's power in dBm, without the coupler's factor. There is none, silently, when a halt is requested.
  Result<double> Read();

 private:
  Shell& shell_;
  Instruments& instruments_;
  const EquipRecord& equipment_;
  double previousMHz_ = 0;
};

}  // namespace hylden
