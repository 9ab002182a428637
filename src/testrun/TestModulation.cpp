#include "testrun/TestModulation.h"

#include <string>

#include "documents/TestDefinition.h"
#include "instruments/SigGen.h"

namespace hylden {

namespace {

Done Cannot(const std::string& modulation) {
  return Because(Failure("Signal generator can't do " + modulation + " Modulation", MessageIcon::Critical));
}

Done SetModulation(SigGen& sigGen, const TestDefinition& test) {
  switch (test.ModType) {
    case Modulation::Am:
      return sigGen.AmCapable() ? sigGen.SetAM(test.AmModFreq, test.AmDepth, test.UseAMdepth) : Cannot("Amplitude");
    case Modulation::Fm:
      return sigGen.FmCapable() ? sigGen.SetFM(test.FmModFreq, test.FmDev) : Cannot("Frequency");
    case Modulation::Pulse:
      return sigGen.PulseCapable() ? sigGen.SetPulse(1 / test.PulsePeriod, test.PulseWidth) : Cannot("Pulse");
    default:
      return sigGen.ModOff();
  }
}

}  // namespace

Done SetUpModulation(SigGen& sigGen, const TestDefinition& test) {
  return SetModulation(sigGen, test).and_then([&] { return SwitchModulationOn(sigGen, test); });
}

Done SwitchModulationOn(SigGen& sigGen, const TestDefinition& test) {
  switch (test.ModType) {
    case Modulation::Am:
      return sigGen.AmOn();
    case Modulation::Fm:
      return sigGen.FmOn();
    case Modulation::Pulse:
      return sigGen.PulseOn();
    default:
      return {};
  }
}

}  // namespace hylden
