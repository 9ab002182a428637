#include "run/UsableReading.h"

#include <cmath>

#include "instruments/Meter.h"
#include "instruments/PM.h"
#include "instruments/ShownAnswer.h"
#include "measure/Conversions.h"

namespace hylden {

namespace {

// Instruments answer 9.9E37, of either sign, for a value beyond their range, and 9.91E37 for none.
constexpr double kNoMeasurement = 9.9e37;

std::string Refusal(const std::string& instrument, const char* what, const std::string& answer) {
  return "The " + instrument + "'s answer " + what + ":\r\n" + ShownAnswer(answer);
}

}  // namespace

std::string WhyNoReading(const Meter& meter, double levelDbuv) {
  const LastReading& last = meter.Last();
  if (last.Failed) return {};
  if (!last.HasNumber) return Refusal("meter", "holds no number", last.Answer);
  // A voltage below 0 has no level either.
  if (std::abs(last.Value) >= kNoMeasurement || IsMissing(levelDbuv))
    return Refusal("meter", "is no level", last.Answer);
  if (IsNoReading(levelDbuv)) return "The level is above the meter's maximum level, check setup";
  return {};
}

std::string WhyNoReading(const PM& powerMeter, double powerDbm) {
  const LastReading& last = powerMeter.Last();
  if (last.Failed) return {};
  if (!last.HasNumber) return Refusal("power meter", "holds no number", last.Answer);
  if (std::abs(last.Value) >= kNoMeasurement || IsNoReading(powerDbm))
    return Refusal("power meter", "is no power", last.Answer);
  return {};
}

}  // namespace hylden
