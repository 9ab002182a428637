#pragma once

#include "platform/BellPacer.h"
#include "platform/Speaker.h"
#include "platform/console/ConsoleClock.h"

namespace hylden {

/// The bell of a terminal, once for tones in a row; silent where the descriptor is none.
class ConsoleSpeaker : public Speaker {
 public:
  /// @param descriptor  the terminal; standard error by default
  explicit ConsoleSpeaker(int descriptor = 2);
  void Beep(int frequencyHz, int durationMs) override;

 private:
  int descriptor_;
  bool terminal_;
  ConsoleClock clock_;
  BellPacer pacer_;
};

}  // namespace hylden
