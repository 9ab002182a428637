#pragma once

#include <algorithm>
#include <cstdint>

namespace hylden {

/// Where there is only a bell for tones: one bell stands for all of them that would sound one after the other, so that
/// an alarm of forty short tones is not forty bells at once.
class BellPacer {
 public:
  /// Whether the bell has to ring for a tone that is asked for now.
  bool Rings(std::int64_t nowMs, int durationMs) {
    const bool silent = nowMs >= soundingUntilMs_;
    soundingUntilMs_ = std::max(nowMs, soundingUntilMs_) + durationMs;
    return silent;
  }

 private:
  std::int64_t soundingUntilMs_ = 0;
};

}  // namespace hylden
