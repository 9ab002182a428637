#pragma once

namespace hylden {

/// Tones for an operator who is not looking at the screen.
class Speaker {
 public:
  virtual ~Speaker() = default;
  /// Sounds a tone; never blocks and never fails.
  virtual void Beep(int frequencyHz, int durationMs) = 0;
};

}  // namespace hylden
