#include "calibration/WarbleAlarm.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

#include "platform/Speaker.h"

namespace hylden {

void WarbleAlarm(Speaker& speaker, double frequencyHz, int durationMs) {
  constexpr int kToneMs = 50;
  const double f = std::max(100.0, frequencyHz);
  const double tones[] = {f, f / 0.85, f, f / 1.15};
  std::size_t next = 0;
  for (int soundedMs = 0; soundedMs < durationMs; soundedMs += kToneMs)
    speaker.Beep(static_cast<int>(std::lround(tones[next++ % std::size(tones)])), kToneMs);
}

}  // namespace hylden
