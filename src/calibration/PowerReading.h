#pragma once

namespace hylden {

class Shell;
struct EquipRecord;
struct Instruments;

/// The forward power sensor of the station: which channel it is on, and where the operator has to move it when one
/// sensor serves both couplers of an IFI amplifier.
class ForwardSensor {
 public:
  ForwardSensor(Shell& shell, Instruments& instruments, const EquipRecord& equipment)
      : shell_(shell), instruments_(instruments), equipment_(equipment) {}

  /// The power meter was brought up: where the sensor is has to be asked again.
  void Reset() { previousMHz_ = 0; }
  /// The sensor's power in dBm, without the coupler's factor; 999 after a failed reading or when a halt is requested.
  double Read(double frequencyMHz);

 private:
  Shell& shell_;
  Instruments& instruments_;
  const EquipRecord& equipment_;
  double previousMHz_ = 0;
};

}  // namespace hylden
