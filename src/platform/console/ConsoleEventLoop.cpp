#include "platform/console/ConsoleEventLoop.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <utility>

#include "platform/Clock.h"
#include "text/RuntimeError.h"

namespace hylden {

namespace {

constexpr std::array kStopSignals = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
// Frozen by Ctrl-Z, or by touching the terminal from the background, or ended by a file that may not grow any more, the
// program would leave RF on unattended.
constexpr std::array kIgnoredSignals = {SIGPIPE, SIGTSTP, SIGTTIN, SIGTTOU, SIGXFSZ};

/// The pipe's writing end; a signal handler can reach nothing else.
std::atomic<int> signalPipe{-1};
static_assert(std::atomic<int>::is_always_lock_free);

std::array<struct sigaction, kStopSignals.size() + kIgnoredSignals.size()> formerActions;

extern "C" void WriteWakeUp(int) {
  const int before = errno;
  const char byte = 1;
  // A full pipe holds a wake-up already.
  [[maybe_unused]] const auto written = write(signalPipe.load(), &byte, 1);
  errno = before;
}

void Install(int signalNumber, void (*handler)(int), struct sigaction& former) {
  struct sigaction action {};
  action.sa_handler = handler;
  sigfillset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  sigaction(signalNumber, &action, &former);
}

}  // namespace

ConsoleEventLoop::ConsoleEventLoop(const Clock& clock, std::function<void()> onStop)
    : clock_(clock), onStop_(std::move(onStop)) {
  if (signalPipe.load() != -1) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
  int ends[2];
  if (pipe(ends) != 0) throw RuntimeError(ErrorNumber::DeviceIoError);
  for (const int end : ends) {
    fcntl(end, F_SETFL, O_NONBLOCK);
    fcntl(end, F_SETFD, FD_CLOEXEC);
  }
  wakeUp_ = ends[0];
  signalPipe = ends[1];
  auto former = formerActions.begin();
  for (const int number : kStopSignals) Install(number, WriteWakeUp, *former++);
  for (const int number : kIgnoredSignals) Install(number, SIG_IGN, *former++);
}

ConsoleEventLoop::~ConsoleEventLoop() {
  auto former = formerActions.begin();
  for (const int number : kStopSignals) sigaction(number, &*former++, nullptr);
  for (const int number : kIgnoredSignals) sigaction(number, &*former++, nullptr);
  close(signalPipe.exchange(-1));
  close(wakeUp_);
}

bool ConsoleEventLoop::TakeStop() {
  char bytes[64];
  if (read(wakeUp_, bytes, sizeof bytes) <= 0) return false;
  stopRequested_ = true;
  if (onStop_) onStop_();
  return true;
}

void ConsoleEventLoop::Yield(std::int64_t deadlineMs) {
  const bool mayWait = clock_.TickMs() < deadlineMs;
  pollfd wakeUp{wakeUp_, POLLIN, 0};
  poll(&wakeUp, 1, mayWait ? 1 : 0);
  TakeStop();
}

bool ConsoleEventLoop::AwaitInput(int descriptor) {
  std::array<pollfd, 2> waits = {pollfd{wakeUp_, POLLIN, 0}, pollfd{descriptor, POLLIN, 0}};
  for (;;) {
    const int ready = poll(waits.data(), waits.size(), -1);
    if (TakeStop()) return false;
    if (ready > 0 && waits[1].revents != 0) return true;
    if (ready < 0 && errno != EINTR) return true;
  }
}

}  // namespace hylden
