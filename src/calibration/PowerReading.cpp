#include "calibration/PowerReading.h"

#include "documents/EquipRecord.h"
#include "instruments/Instruments.h"
#include "instruments/SensorPrompt.h"
#include "measure/Conversions.h"
#include "shell/Shell.h"

namespace hylden {

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
