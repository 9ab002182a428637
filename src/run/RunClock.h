#pragma once

#include <string>

#include "platform/Clock.h"

namespace hylden {

/// "1:02:03" of minutes; "--" for what no run takes.
std::string HoursText(double minutes);
/// The time of day at which so many minutes from now are over, "14:32", with the days until then: "14:32 +1 d".
std::string EndText(const LocalTime& now, double minutes);

}  // namespace hylden
