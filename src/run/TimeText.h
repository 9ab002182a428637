#pragma once

#include <string>

#include "platform/Clock.h"

namespace hylden {

/// "2026-11-23 18:35:07"
std::string TimeText(const LocalTime& time);

}  // namespace hylden
