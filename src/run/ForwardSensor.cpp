#include "run/ForwardSensor.h"

#include <algorithm>

#include "documents/EquipRecord.h"
#include "instruments/Instruments.h"
#include "measure/Conversions.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

bool ServesBothCouplers(const EquipRecord& equipment) {
  return equipment.HasIfiAmplifier() && !equipment.Is(AmpConfig::DualSplit);
}

}  // namespace

std::string SensorPrompt(double previousMHz, double frequencyMHz, double bandSwitchMHz) {
  const bool high = frequencyMHz > bandSwitchMHz;
  if (previousMHz <= 0) return high ? "Move sensor to high freq coupler" : "Move sensor to low freq coupler";
  const bool wasHigh = previousMHz > bandSwitchMHz;
  if (high == wasHigh) return {};
  return high ? "Move sensor(s) to high freq coupler" : "Move sensor(s) to low freq coupler";
}

bool SensorMoves(const EquipRecord& equipment, const std::vector<double>& frequenciesMHz) {
  const auto isHigh = [&](double frequencyMHz) { return frequencyMHz > equipment.IfiBandSwitch; };
  return ServesBothCouplers(equipment) && std::ranges::any_of(frequenciesMHz, isHigh) &&
         !std::ranges::all_of(frequenciesMHz, isHigh);
}

double LinePower(double readingDbm, double factorDb) {
  return IsMissing(readingDbm) ? kNoValue : readingDbm + factorDb;
}

Done ForwardSensor::Place(double frequencyMHz) {
  if (shell_.delay.HaltRequested()) return Because();
  if (!ServesBothCouplers(equipment_)) return {};
  const std::string prompt = SensorPrompt(previousMHz_, frequencyMHz, equipment_.IfiBandSwitch);
  if (!prompt.empty()) {
    // No connector is unscrewed under power.
    SigGen& sigGen = instruments_.sigGen;
    Done silenced = sigGen.RfIsOn() ? sigGen.SilenceRf() : Done();
    if (!silenced) return silenced;
    shell_.dialogs.Tell(prompt);
  }
  previousMHz_ = frequencyMHz;
  return shell_.delay.HaltRequested() ? Because() : Done();
}

Result<double> ForwardSensor::Read() {
  if (shell_.delay.HaltRequested()) return Because();
  const bool byBand = equipment_.HasIfiAmplifier() && !ServesBothCouplers(equipment_);
  return instruments_.pm.ReadPower(byBand ? PM::kByBand : 1);
}

}  // namespace hylden
