#include "run/ForwardSensor.h"

#include "documents/EquipRecord.h"
#include "instruments/Instruments.h"
#include "measure/Conversions.h"
#include "shell/Shell.h"

namespace hylden {

std::string SensorPrompt(double previousMHz, double frequencyMHz, double bandSwitchMHz) {
  const bool high = frequencyMHz > bandSwitchMHz;
  if (previousMHz <= 0) return high ? "Move sensor to high freq coupler" : "Move sensor to low freq coupler";
  const bool wasHigh = previousMHz > bandSwitchMHz;
  if (high == wasHigh) return {};
  return high ? "Move sensor(s) to high freq coupler" : "Move sensor(s) to low freq coupler";
}

double LinePower(double readingDbm, double factorDb) {
  return IsMissing(readingDbm) ? kNoValue : readingDbm + factorDb;
}

double ForwardSensor::Read(double frequencyMHz) {
  if (shell_.delay.HaltRequested()) return kNoReading;
  if (!equipment_.HasIfiAmplifier()) return instruments_.pm.ReadPower(1);
  if (equipment_.Is(AmpConfig::DualSplit)) return instruments_.pm.ReadPower(PM::kByBand);

  const std::string prompt = SensorPrompt(previousMHz_, frequencyMHz, equipment_.IfiBandSwitch);
  if (!prompt.empty()) shell_.dialogs.Tell(prompt);
  previousMHz_ = frequencyMHz;
  if (shell_.delay.HaltRequested()) return kNoReading;
  return instruments_.pm.ReadPower(1);
}

}  // namespace hylden
