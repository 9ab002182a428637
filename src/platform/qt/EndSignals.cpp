#include "platform/qt/EndSignals.h"

#include <QSocketNotifier>
#include <QtGlobal>
#include <utility>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#endif

namespace hylden {

#ifdef Q_OS_UNIX

namespace {

constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP};
int pipeEnds[2] = {-1, -1};

/// Only a write is allowed here; a full pipe already holds what matters.
void OnSignal(int) {
  const char mark = 1;
  [[maybe_unused]] const ssize_t written = write(pipeEnds[1], &mark, 1);
}

void Handle(void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  for (const int signal : kSignals) sigaction(signal, &action, nullptr);
}

}  // namespace

EndSignals::EndSignals(std::function<void()> onEnd) : onEnd_(std::move(onEnd)) {
  if (pipe2(pipeEnds, O_NONBLOCK | O_CLOEXEC) != 0) return;
  notifier_ = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
  connect(notifier_, &QSocketNotifier::activated, this, [this] {
    char marks[16];
    while (read(pipeEnds[0], marks, sizeof marks) > 0) {
    }
    onEnd_();
  });
  Handle(OnSignal);
}

EndSignals::~EndSignals() {
  if (!notifier_) return;
  Handle(SIG_DFL);
  delete notifier_;
  close(pipeEnds[0]);
  close(pipeEnds[1]);
}

#else

EndSignals::EndSignals(std::function<void()> onEnd) : onEnd_(std::move(onEnd)) {}
EndSignals::~EndSignals() = default;

#endif

}  // namespace hylden
