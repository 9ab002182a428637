#pragma once

#include "bench/CommandSet.h"
#include "bench/RfWorld.h"
#include "bench/VirtualInstrument.h"

namespace hylden {

/// The switches of an IFI amplifier pair: what the two units have been told.
struct IfiSwitches {
  bool LowOperates = false, HighOperates = false;
  bool FullAttenuation = false;
  int Band = 0;
  /// The unit that amplifies; None until a band is selected and its unit operates.
  hylden::Amplifier Amplifier() const;
};

constexpr int kIfiLowAddress = 10, kIfiHighAddress = 9;

/// The low-band unit at address 10: "8" standby, "9" operate, "RP" its power in whole watts, reflected in columns 1 to
/// 4 and forward in 6 to 9 ("0100 0200").
class VirtualIfiLow : public VirtualInstrument {
 public:
  VirtualIfiLow(RfWorld& world, IfiSwitches& switches);

 protected:
  Heard Listen(std::string_view command) override;

 private:
  RfWorld& world_;
  IfiSwitches& switches_;
  CommandSet commands_;
};

/// The high-band unit at address 9, which also switches the bands: "FA" full and "ZA" no attenuation, "L3" and "M1"
/// modes, "ON" operate, "B1" low and "B2" high band, "RP" its power in watts, forward and reflected ("50.00 10.01").
class VirtualIfiHigh : public VirtualInstrument {
 public:
  VirtualIfiHigh(RfWorld& world, IfiSwitches& switches);

 protected:
  Heard Listen(std::string_view command) override;

 private:
  RfWorld& world_;
  IfiSwitches& switches_;
  CommandSet commands_;
};

}  // namespace hylden
