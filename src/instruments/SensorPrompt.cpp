#include "instruments/SensorPrompt.h"

namespace hylden {

std::string SensorPrompt(double previousMHz, double frequencyMHz, double bandSwitchMHz) {
  const bool high = frequencyMHz > bandSwitchMHz;
  if (previousMHz <= 0) return high ? "Move sensor to high freq coupler" : "Move sensor to low freq coupler";
  const bool wasHigh = previousMHz > bandSwitchMHz;
  if (high == wasHigh) return {};
  return high ? "Move sensor(s) to high freq coupler" : "Move sensor(s) to low freq coupler";
}

}  // namespace hylden
