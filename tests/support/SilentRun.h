#pragma once

#include "shell/RunAtWork.h"

namespace hylden {

/// A run that has the instruments and does nothing with them.
struct SilentRun : RunAtWork {
  void RfOff() override { rfOff = true; }

  bool rfOff = false;
};

}  // namespace hylden
