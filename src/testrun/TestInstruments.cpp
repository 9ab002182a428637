#include "testrun/TestInstruments.h"

#include "documents/EquipRecord.h"
#include "documents/TestDefinition.h"
#include "instruments/Instruments.h"
#include "run/RunDisplay.h"
#include "run/RunGuard.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

// A meter that is also the power meter needs a rest between two initialisations.
constexpr double kSharedAddressWait = 5;

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

TestInstruments::TestInstruments(Shell& shell, Instruments& instruments, const TestDefinition& test,
                                 const EquipRecord& equipment, RunDisplay& display, RunGuard& guard)
    : shell_(shell),
      instruments_(instruments),
      test_(test),
      equipment_(equipment),
      display_(display),
      guard_(guard),
      up_(shell, instruments, guard) {}

bool TestInstruments::BringUp() {
  display_.Status("Initializing instruments...");
  if (!BringUpAll()) return false;
  display_.Status("");
  return true;
}

bool TestInstruments::BringUpAll() {
  return up_.BringUpSigGen() && SetUpModulation() && BringUpPowerMeter() && BringUpMeter() &&
         up_.BringUpAmplifier(equipment_);
}

bool TestInstruments::SetUpModulation() {
  SigGen& sigGen = instruments_.sigGen;
  return guard_.Ok(SetModulation(sigGen, test_)) && guard_.Ok(sigGen.ModOn(test_.ModType));
}

bool TestInstruments::BringUpPowerMeter() {
  if (!test_.LevelsByPower()) return true;
  return (!test_.MonitorProbe || WaitForSharedAddress()) && up_.BringUpPowerMeter();
}

bool TestInstruments::BringUpMeter() {
  return !test_.MonitorProbe || (WaitForSharedAddress() && up_.BringUpMeter());
}

bool TestInstruments::WaitForSharedAddress() {
  if (instruments_.pm.Address() != instruments_.meter.Address()) return true;
  return shell_.delay.Delay(kSharedAddressWait, true);
}

void TestInstruments::TakeDown() {
  RunAll({
      [&] { display_.Status("Shutting down instruments..."); },
      [&] { up_.TakeDown(); },
      [&] { display_.Status(""); },
  });
}

}  // namespace hylden
