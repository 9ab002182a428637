#include "platform/console/ConsoleEventLoop.h"

#include <poll.h>

#include <array>
#include <cerrno>
#include <utility>

#include "platform/Clock.h"

namespace hylden {

ConsoleEventLoop::ConsoleEventLoop(const Clock& clock, std::function<void()> onStop)
    : clock_(clock), onStop_(std::move(onStop)) {}

bool ConsoleEventLoop::TakeStop() {
  if (!signals_.Take()) return false;
  stopRequested_ = true;
  if (onStop_) onStop_();
  return true;
}

void ConsoleEventLoop::Yield(std::int64_t deadlineMs) {
  const bool mayWait = clock_.TickMs() < deadlineMs;
  pollfd wakeUp{signals_.Descriptor(), POLLIN, 0};
  poll(&wakeUp, 1, mayWait ? 1 : 0);
  TakeStop();
}

bool ConsoleEventLoop::AwaitInput(int descriptor) {
  std::array<pollfd, 2> waits = {pollfd{signals_.Descriptor(), POLLIN, 0}, pollfd{descriptor, POLLIN, 0}};
  while (!stopRequested_) {
    const int ready = poll(waits.data(), waits.size(), -1);
    if (TakeStop()) return false;
    if (ready > 0 && waits[1].revents != 0) return true;
    if (ready < 0 && errno != EINTR) return true;
  }
  return false;
}

}  // namespace hylden
