#pragma once

#include <vector>

#include "platform/Speaker.h"

namespace hylden {

/// Keeps the tones in the order in which they were asked for.
class FakeSpeaker : public Speaker {
 public:
  struct Tone {
    int frequencyHz, durationMs;
    bool operator==(const Tone&) const = default;
  };

  void Beep(int frequencyHz, int durationMs) override { tones.push_back({frequencyHz, durationMs}); }

  std::vector<Tone> tones;
};

}  // namespace hylden
