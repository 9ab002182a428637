#include "platform/native/StopSignals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <utility>
#include <vector>

#include "text/RuntimeError.h"

namespace hylden {

namespace {

constexpr int kStops[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPWR, SIGXCPU};
// A program that is frozen by Ctrl-Z, or by touching the terminal from the background, would leave RF on unattended.
constexpr int kIgnored[] = {SIGPIPE, SIGTSTP, SIGTTIN, SIGTTOU,   SIGXFSZ, SIGUSR1,
                            SIGUSR2, SIGALRM, SIGIO,   SIGVTALRM, SIGPROF, SIGSTKFLT};

/// The pipe's writing end; a signal handler can reach nothing else.
std::atomic<int> signalPipe{-1};
static_assert(std::atomic<int>::is_always_lock_free);

std::vector<std::pair<int, struct sigaction>> formerActions;

extern "C" void WriteWakeUp(int) {
  const int before = errno;
  const char byte = 1;
  // A full pipe holds a wake-up already.
  [[maybe_unused]] const auto written = write(signalPipe.load(), &byte, 1);
  errno = before;
}

void Install(int number, void (*handler)(int)) {
  struct sigaction action {
  }, former{};
  action.sa_handler = handler;
  sigfillset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  if (sigaction(number, &action, &former) == 0) formerActions.emplace_back(number, former);
}

}  // namespace

StopSignals::StopSignals() {
  if (signalPipe.load() != -1) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
  int ends[2];
  if (pipe2(ends, O_NONBLOCK | O_CLOEXEC) != 0) throw RuntimeError(ErrorNumber::DeviceIoError);
  wakeUp_ = ends[0];
  signalPipe = ends[1];
  for (const int number : kStops) Install(number, WriteWakeUp);
  for (const int number : kIgnored) Install(number, SIG_IGN);
  for (int number = SIGRTMIN; number <= SIGRTMAX; ++number) Install(number, SIG_IGN);
}

StopSignals::~StopSignals() {
  for (const auto& [number, former] : std::exchange(formerActions, {})) sigaction(number, &former, nullptr);
  close(signalPipe.exchange(-1));
  close(wakeUp_);
}

bool StopSignals::Take() {
  char bytes[64];
  bool taken = false;
  while (read(wakeUp_, bytes, sizeof bytes) > 0) taken = true;
  return taken;
}

}  // namespace hylden
