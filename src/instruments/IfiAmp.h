#pragma once

#include <string>

#include "instruments/Gpib.h"

namespace hylden {

class Shell;
class SigGen;

enum class AmpControl : int { Ifi = 1, Generic = 2 };

/// The IFI amplifier pair: addresses 10 and 9, fixed command texts. With a generic amplifier nothing is sent.
class IfiAmp {
 public:
  IfiAmp(Shell& shell, Gpib& gpib, SigGen& sigGen) : shell_(shell), gpib_(gpib), sigGen_(sigGen) {}

  bool IfiInit(AmpControl mode, double bandSwitchMHz);
  bool IfiReset();
  /// Selects the band of a frequency, with the generator's RF off first and left off; 0 resets without selecting.
  bool IfiSetBand(double frequencyMHz);
  /// The selected unit's two power figures; -1 for both with a generic amplifier.
  bool IfiReadPower(float& first, float& second);

 private:
  Shell& shell_;
  Gpib& gpib_;
  SigGen& sigGen_;
};

}  // namespace hylden
