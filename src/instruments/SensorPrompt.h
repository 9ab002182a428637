#pragma once

#include <string>

namespace hylden {

/// What the operator of a station with one power sensor and two couplers (low and high band) is told before a reading;
/// empty when the sensor is where it belongs. The low band ends at the band-switch frequency. Frequencies in MHz.
/// @param previousMHz  frequency of the reading before; 0 before the first
std::string SensorPrompt(double previousMHz, double frequencyMHz, double bandSwitchMHz);

}  // namespace hylden
