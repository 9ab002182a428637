#pragma once

#include <string>

namespace hylden {

class Meter;
class PM;

/// Why a run can't go on with what an instrument gave: the text for the operator, which shows the answer. Empty for a
/// reading, and after a failure that the driver has told. Not for a reading that a halt cut short.
/// @param levelDbuv  what MeterRead returned
std::string WhyNoReading(const Meter& meter, double levelDbuv);
/// @param powerDbm  what ReadPower returned
std::string WhyNoReading(const PM& powerMeter, double powerDbm);

}  // namespace hylden
