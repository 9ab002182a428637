#pragma once

#include <QSocketNotifier>
#include <functional>

#include "platform/native/StopSignals.h"

namespace hylden {

/// Turns the signals that ask a process to end into a call from the event loop, where windows may be closed; no other
/// signal ends or freezes the program. One object at a time.
class EndSignals {
 public:
  explicit EndSignals(std::function<void()> onEnd);

 private:
  StopSignals signals_;
  QSocketNotifier notifier_;
};

}  // namespace hylden
