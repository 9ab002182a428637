#include "platform/native/SerialStream.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <system_error>
#include <utility>

namespace hylden {

namespace {

struct Speed {
  int Baud;
  speed_t Code;
};
constexpr Speed kSpeeds[] = {{1200, B1200},     {2400, B2400},     {4800, B4800},     {9600, B9600},
                             {19200, B19200},   {38400, B38400},   {57600, B57600},   {115200, B115200},
                             {230400, B230400}, {460800, B460800}, {921600, B921600}, {1000000, B1000000}};

const Speed* FindSpeed(int baud) {
  const auto* const found = std::ranges::find(kSpeeds, baud, &Speed::Baud);
  return found == std::end(kSpeeds) ? nullptr : found;
}

/// False when the descriptor is no serial line.
bool SetUpLine(int fd, speed_t speed) {
  termios line{};
  if (tcgetattr(fd, &line) != 0) return false;
  cfmakeraw(&line);
  // No line of the plug may stop the program, and closing must not reset an adapter that takes it for a reset.
  line.c_cflag &= ~static_cast<tcflag_t>(CRTSCTS | PARENB | CSTOPB | HUPCL);
  line.c_cflag |= CS8 | CREAD | CLOCAL;
  line.c_cc[VMIN] = 1;
  line.c_cc[VTIME] = 0;
  cfsetispeed(&line, speed);
  cfsetospeed(&line, speed);
  return tcsetattr(fd, TCSANOW, &line) == 0 && ioctl(fd, TIOCEXCL) == 0 && tcflush(fd, TCIOFLUSH) == 0;
}

}  // namespace

std::string SerialStream::BaudFault(int baud) {
  if (FindSpeed(baud)) return {};
  std::string known;
  for (const Speed& speed : kSpeeds) known += (known.empty() ? "" : ", ") + std::to_string(speed.Baud);
  return "A serial line has no speed of " + std::to_string(baud) + " baud; there are " + known + ".";
}

SerialStream::SerialStream(std::string device, int baud) : device_(std::move(device)), baud_(baud) {}

ByteStream::Outcome SerialStream::Open(Deadline) {
  Close();
  const Speed* const speed = FindSpeed(baud_);
  if (!speed) return Lose(BaudFault(baud_));
  const int fd = open(device_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return Lose(CannotOpen(errno));
  Adopt(fd);
  return SetUpLine(fd, speed->Code) ? Outcome::Done : Lose(CannotOpen(ENOTTY));
}

std::string SerialStream::CannotOpen(int error) const {
  switch (error) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
    case EIO:
      return "There is no " + device_ + ": check that the device is plugged in, and its name.";
    case EACCES:
    case EPERM:
      return "This user may not use " + device_ + ": join the group that owns it (often dialout), and log in again.";
    case EBUSY:
      return "Another program uses " + device_ + ": end it.";
    case ENOTTY:
      return device_ + " is no serial line: check its name.";
    default:
      return device_ + " can't be opened: " + std::generic_category().message(error) + ".";
  }
}

ssize_t SerialStream::Put(int fd, std::string_view bytes) const {
  return write(fd, bytes.data(), bytes.size());
}

std::string SerialStream::WhyLost(int) const {
  return "The device at " + device_ + " is gone: check its plug; the next command opens it again.";
}

}  // namespace hylden
