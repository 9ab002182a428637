#include "platform/native/FdStream.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace hylden {

namespace {

constexpr short kGone = POLLHUP | POLLRDHUP | POLLERR | POLLNVAL;

bool IsPassing(int error) {
  return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

int MsUntil(ByteStream::Deadline deadline) {
  using std::chrono::ceil, std::chrono::milliseconds;
  const auto left = ceil<milliseconds>(deadline - std::chrono::steady_clock::now()).count();
  return static_cast<int>(std::clamp<std::int64_t>(left, 0, 1'000'000'000));
}

}  // namespace

FdStream::~FdStream() {
  Close();
}

void FdStream::Adopt(int fd) {
  Close();
  fd_ = fd;
  fault_.clear();
}

void FdStream::Close() {
  if (fd_ < 0) return;
  // Closed with bytes unread a connection is reset, and with it goes what the device has not taken yet, as an RF off.
  shutdown(fd_, SHUT_WR);
  char unread[4096];
  for (int n = 0; n < 64 && read(fd_, unread, sizeof unread) > 0; ++n) continue;
  // A pseudo-terminal would stay exclusive for as long as its other end lives.
  ioctl(fd_, TIOCNXCL);
  close(fd_);
  fd_ = -1;
}

ByteStream::Outcome FdStream::Lose(const std::string& fault) {
  Close();
  fault_ = fault;
  return Outcome::Lost;
}

ByteStream::Outcome FdStream::Late(const char* what) {
  fault_ = Name() + what;
  return Outcome::TimedOut;
}

short FdStream::Await(int fd, short events, Deadline deadline) {
  pollfd waited{fd, static_cast<short>(events | POLLRDHUP), 0};
  while (true) {
    const int found = poll(&waited, 1, MsUntil(deadline));
    if (found > 0) return waited.revents;
    if (found == 0 || errno != EINTR) return 0;
  }
}

ByteStream::Outcome FdStream::Write(std::string_view bytes, Deadline deadline) {
  if (!IsOpen()) return Outcome::Lost;
  while (!bytes.empty()) {
    const short ready = Await(fd_, POLLOUT, deadline);
    // The system would take the bytes for a device that has closed, and they would be lost without a word.
    if ((ready & kGone) != 0) return Lose(WhyLost(0));
    if (ready == 0) return Late(" takes no data.");
    const ssize_t written = Put(fd_, bytes);
    if (written < 0 && !IsPassing(errno)) return Lose(WhyLost(errno));
    if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return Outcome::Done;
}

ByteStream::Outcome FdStream::Read(std::string& bytes, std::size_t most, Deadline deadline) {
  char piece[4096];
  while (IsOpen()) {
    if (Await(fd_, POLLIN, deadline) == 0) return Late(" does not answer in time.");
    const ssize_t got = read(fd_, piece, std::min(most, sizeof piece));
    if (got == 0) return Lose(WhyLost(0));
    if (got < 0 && !IsPassing(errno)) return Lose(WhyLost(errno));
    if (got < 0) continue;
    bytes.append(piece, static_cast<std::size_t>(got));
    return Outcome::Done;
  }
  return Outcome::Lost;
}

}  // namespace hylden
