#pragma once

#include "bench/CommandSet.h"
#include "bench/RfWorld.h"
#include "bench/VirtualInstrument.h"
#include "instruments/MeterDefinition.h"

namespace hylden {

/// An analyser, oscilloscope or RF voltmeter by its definition. An analyser sees only what it is tuned to; a reading
/// is clipped at the top of the range that the reference level sets, and drowns below its bottom. Without a trigger
/// command it measures when it is read, without a read command it talks when addressed.
class VirtualMeter : public VirtualInstrument {
 public:
  VirtualMeter(RfWorld& world, const MeterDefinition& definition);
  /// Takes a capture that is over, before the world changes.
  void FinishCapture();
  /// MHz; 0 as long as nobody tuned it.
  double TunedMHz() const { return tunedMHz_; }
  /// Whether its definition has a command for the frequency.
  bool IsTunable() const;
  /// Top of the range, dBuV; nothing where no command sets it.
  std::optional<double> RangeTopDbuv() const;
  /// The value of its last answer, in the units of its definition.
  std::optional<double> LastReading() const { return lastReading_; }

 protected:
  Heard Listen(std::string_view command) override;
  std::optional<std::string> Speak() override;

 private:
  double Measure(std::int64_t tickMs);
  double Detected(const Signal& signal) const;
  bool TunedTo(double freqMHz) const;
  double FloorDbuv() const;
  void SetReference(double value);
  std::string Answer();

  RfWorld& world_;
  MeterDefinition definition_;
  CommandSet commands_;
  Capture capture_;
  double tunedMHz_ = 0;
  double topDbuv_ = 0;  ///< top of the range
  std::optional<double> lastReading_;
};

}  // namespace hylden
