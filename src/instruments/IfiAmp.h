#pragma once

#include <initializer_list>
#include <string>

#include "instruments/Gpib.h"

namespace hylden {

class Shell;
class SigGen;

enum class AmpControl : int { Ifi = 1, Generic = 2 };

/// The IFI amplifier pair: addresses 10 and 9, fixed command texts. With a generic amplifier nothing is sent. Failures
/// are reported here; callers add nothing.
class IfiAmp {
 public:
  IfiAmp(Shell& shell, Gpib& gpib, SigGen& sigGen) : shell_(shell), gpib_(gpib), sigGen_(sigGen) {}

  /// @param bandSwitchMHz  up to and including it the low band is used, above it the high band
  bool IfiInit(AmpControl mode, double bandSwitchMHz);
  /// Sends its commands also when the generator can't be silenced or one of the units fails: the amplifiers are the
  /// last means left to end the RF.
  bool IfiReset();
  /// Selects the band of a frequency, with the generator's RF off first and left off; 0 is a reset.
  bool IfiSetBand(double frequencyMHz);
  /// The selected unit's two power figures, 0 where its answer is too short to hold them; -1 for both with a generic
  /// amplifier. A failure leaves them as they were.
  bool IfiReadPower(float& first, float& second);

 private:
  enum class Band { None, Low, High };
  struct UnitCommand {
    int unit;
    const char* text;
  };

  bool SelectLow();
  bool SelectHigh();
  /// Sends until one fails, which is reported.
  bool SendAll(std::initializer_list<UnitCommand> commands);
  bool SendTo(const UnitCommand& command);
  bool ReportFailure();

  Shell& shell_;
  Gpib& gpib_;
  SigGen& sigGen_;
  AmpControl mode_ = AmpControl::Generic;
  double bandSwitchMHz_ = 0;
  Band band_ = Band::None;
};

}  // namespace hylden
