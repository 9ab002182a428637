#pragma once

#include <initializer_list>
#include <string>

#include "instruments/Gpib.h"

namespace hylden {

class Shell;
class SigGen;

enum class AmpControl : int { Ifi = 1, Generic = 2 };

/// The IFI amplifier pair: addresses 10 and 9, fixed command texts. With a generic amplifier nothing is sent.
class IfiAmp {
 public:
  /// Their addresses.
  static constexpr int kLowUnit = 10, kHighUnit = 9;

  IfiAmp(Shell& shell, Gpib& gpib, SigGen& sigGen) : shell_(shell), gpib_(gpib), sigGen_(sigGen) {}

  /// @param bandSwitchMHz  up to and including it the low band is used, above it the high band
  Done IfiInit(AmpControl mode, double bandSwitchMHz);
  /// Sends its commands also when the generator can't be silenced or one of the units fails: the amplifiers are the
  /// last means left to end the RF.
  Done IfiReset();
  /// Selects the band of a frequency, with the generator's RF off first and left off; 0 is a reset.
  Done IfiSetBand(double frequencyMHz);
  struct Powers {
    float First, Second;
  };
  /// The selected unit's two power figures, 0 where its answer is too short to hold them; -1 for both with a generic
  /// amplifier.
  Result<Powers> IfiReadPower();

 private:
  enum class Band { None, Low, High };
  struct UnitCommand {
    int unit;
    const char* text;
  };

  Done SelectLow();
  Done SelectHigh();
  /// Sends until one fails.
  Done SendAll(std::initializer_list<UnitCommand> commands);
  Done SendTo(const UnitCommand& command);

  Shell& shell_;
  Gpib& gpib_;
  SigGen& sigGen_;
  AmpControl mode_ = AmpControl::Generic;
  double bandSwitchMHz_ = 0;
  Band band_ = Band::None;
};

}  // namespace hylden
