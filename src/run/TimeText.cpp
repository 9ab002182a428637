#include "run/TimeText.h"

#include <cstdio>

namespace hylden {

std::string TimeText(const LocalTime& time) {
  char text[80];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", time.year, time.month, time.day, time.hour,
                time.minute, time.second);
  return text;
}

}  // namespace hylden
