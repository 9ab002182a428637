#pragma once

#include "bench/CommandSet.h"
#include "bench/RfWorld.h"
#include "bench/VirtualInstrument.h"
#include "instruments/SigGenDefinition.h"

namespace hylden {

/// A signal generator that understands its definition's commands and drives the world. A value outside its limits is
/// not taken. Without an RF On command its output is always on, at its minimum level to begin with; without a command
/// that switches AM on, a depth above 0 does.
class VirtualSigGen : public VirtualInstrument {
 public:
  VirtualSigGen(RfWorld& world, const SigGenDefinition& definition);

 protected:
  Heard Listen(std::string_view command) override;

 private:
  void Apply(int code, double value);
  void SwitchOn(BenchModulation kind);
  void Drive();

  RfWorld& world_;
  SigGenDefinition definition_;
  CommandSet commands_;
  GeneratorState state_;                                ///< with the modulation that is chosen, on or off
  BenchModulation chosen_ = BenchModulation::None;      ///< the kind set up last
  BenchModulation modulation_ = BenchModulation::None;  ///< the kind switched on
};

}  // namespace hylden
