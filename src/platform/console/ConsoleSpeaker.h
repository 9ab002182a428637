#pragma once

#include "platform/Speaker.h"

namespace hylden {

/// The bell of a terminal; silent where the descriptor is none.
class ConsoleSpeaker : public Speaker {
 public:
  /// @param descriptor  the terminal; standard error by default
  explicit ConsoleSpeaker(int descriptor = 2);
  void Beep(int frequencyHz, int durationMs) override;

 private:
  int descriptor_;
  bool terminal_;
};

}  // namespace hylden
