#include "platform/console/ConsoleSpeaker.h"

#include <poll.h>
#include <unistd.h>

namespace hylden {

ConsoleSpeaker::ConsoleSpeaker(int descriptor) : descriptor_(descriptor), terminal_(isatty(descriptor) == 1) {}

void ConsoleSpeaker::Beep(int, int durationMs) {
  if (!terminal_ || !pacer_.Rings(clock_.TickMs(), durationMs)) return;
  // A terminal held by Ctrl-S takes nothing; the bell is then left out.
  pollfd terminal{descriptor_, POLLOUT, 0};
  if (poll(&terminal, 1, 0) != 1 || !(terminal.revents & POLLOUT)) return;
  const char bell = '\a';
  [[maybe_unused]] const auto written = write(descriptor_, &bell, 1);
}

}  // namespace hylden
