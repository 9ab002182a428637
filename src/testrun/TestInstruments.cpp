#include "testrun/TestInstruments.h"

#include "documents/EquipRecord.h"
#include "documents/TestDefinition.h"
#include "instruments/Instruments.h"
#include "run/RunDisplay.h"
#include "run/RunGuard.h"
#include "shell/Shell.h"
#include "testrun/TestModulation.h"

namespace hylden {

namespace {
// A meter that is also the power meter needs a rest between two initialisations.
constexpr double kSharedAddressWait = 5;
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
  return up_.BringUpSigGen() && guard_.Ok(SetUpModulation(instruments_.sigGen, test_)) && BringUpPowerMeter() &&
         BringUpMeter() && up_.BringUpAmplifier(equipment_);
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
