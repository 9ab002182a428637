#include "instruments/RfSilence.h"

#include "instruments/SigGen.h"

namespace hylden {

bool SilenceRf(SigGen& sigGen) {
  if (!sigGen.Definition().RfOff.empty()) return sigGen.RfOff();
  // While RF counts as off a level is only noted; switched on, the generator gets it.
  const bool lowered =
      sigGen.SetFreqLevel(sigGen.MinimumFreq(), sigGen.MinimumLevel()) && (sigGen.RfIsOn() || sigGen.RfOn());
  return sigGen.RfOff() && lowered;
}

}  // namespace hylden
