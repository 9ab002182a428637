#pragma once

#include <QTimer>

#include "platform/Clock.h"
#include "platform/EventLoop.h"
#include "platform/VirtualTime.h"

namespace hylden {

/// The windows' turn during a wait. With nothing to do it sleeps until the next event, 1 ms at the most.
class QtEventLoop : public EventLoop {
 public:
  explicit QtEventLoop(const Clock& clock);
  void Yield(std::int64_t deadlineMs = kNoDeadline) override;
  void Repaint() override;

 private:
  const Clock& clock_;
  QTimer wake_;
};

/// The windows' turn on a virtual clock: a whole sweep on real windows in seconds.
class QtVirtualEventLoop : public VirtualEventLoop {
 public:
  using VirtualEventLoop::VirtualEventLoop;
  void Yield(std::int64_t deadlineMs = kNoDeadline) override;
};

}  // namespace hylden
