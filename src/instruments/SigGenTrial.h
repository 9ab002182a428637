#pragma once

#include "instruments/InstrumentTrial.h"
#include "instruments/SigGen.h"

namespace hylden {

/// The Test menu of frmSigGen.
class SigGenTrial : public InstrumentTrial {
 public:
  using Driver = SigGen;

  SigGenTrial(Shell& shell, Instruments& instruments);

 private:
  struct Pair {
    double First;
    float Second;
  };
  /// Asks for two numbers, the first question first.
  Result<Pair> AskPair(const std::string& first, const std::string& second);
  Result<Pair> AskFreqAndLevel();
  Done Init();
  Done SetFreqLevel();
  Done EnableAm();
  Done EnableFm();
  Done EnablePulse();

  SigGen& sigGen_;
};

}  // namespace hylden
