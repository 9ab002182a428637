#include "platform/native/TcpStream.h"

#include <linux/sockios.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <system_error>
#include <utility>

namespace hylden {

namespace {

std::string Words(int error) {
  return std::generic_category().message(error);
}

void SetOption(int fd, int level, int option, int value) {
  setsockopt(fd, level, option, &value, sizeof value);
}

/// Commands go out at once. A device that was switched off is noticed though nobody sends, and 3 s after a command that
/// its machine has not acknowledged.
void Tune(int fd) {
  SetOption(fd, IPPROTO_TCP, TCP_NODELAY, 1);
  SetOption(fd, SOL_SOCKET, SO_KEEPALIVE, 1);
  SetOption(fd, IPPROTO_TCP, TCP_KEEPIDLE, 5);
  SetOption(fd, IPPROTO_TCP, TCP_KEEPINTVL, 2);
  SetOption(fd, IPPROTO_TCP, TCP_KEEPCNT, 3);
  SetOption(fd, IPPROTO_TCP, TCP_USER_TIMEOUT, 3000);
}

/// The error of the attempt, 0 when it stands.
int Attempt(int fd, short ready) {
  if (ready == 0) return ETIMEDOUT;
  int error = 0;
  socklen_t size = sizeof error;
  return getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &size) == 0 ? error : errno;
}

}  // namespace

TcpStream::TcpStream(std::string host, int port) : host_(std::move(host)), port_(port) {}

std::string TcpStream::Place() const {
  const bool isLiteral = host_.find(':') != std::string::npos;
  return (isLiteral ? "[" + host_ + "]" : host_) + ":" + std::to_string(port_);
}

ByteStream::Outcome TcpStream::Open(Deadline deadline) {
  Close();
  if (!wasReached_) {
    const std::string fault = LookUp();
    if (!fault.empty()) return Lose(fault);
  }
  std::string fault;
  for (std::size_t n = 0; n < addresses_.size(); ++n) {
    // Each address has its share of the time: a first one that swallows everything must not keep the next from it.
    const auto now = std::chrono::steady_clock::now();
    const auto share = (deadline - now) / static_cast<std::int64_t>(addresses_.size() - n);
    const Address address = addresses_[n];
    fault = Connect(address, now + share);
    if (!fault.empty()) continue;
    addresses_ = {address};
    wasReached_ = true;
    return Outcome::Done;
  }
  return Lose(fault);
}

std::string TcpStream::LookUp() {
  addrinfo wanted{};
  wanted.ai_socktype = SOCK_STREAM;
  wanted.ai_flags = AI_NUMERICSERV;
  addrinfo* list = nullptr;
  const int error = getaddrinfo(host_.c_str(), std::to_string(port_).c_str(), &wanted, &list);
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> found(list, &freeaddrinfo);
  if (error != 0)
    return "The name " + host_ + " is not known (" + gai_strerror(error) +
           "): check how it is written, or give the device's numeric address.";
  addresses_.clear();
  for (const addrinfo* entry = found.get(); entry; entry = entry->ai_next) {
    Address address{{}, entry->ai_addrlen};
    std::memcpy(&address.Bytes, entry->ai_addr, entry->ai_addrlen);
    addresses_.push_back(address);
  }
  return {};
}

std::string TcpStream::Connect(const Address& address, Deadline deadline) {
  const int fd = socket(address.Bytes.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (fd < 0) return Unreachable(errno);
  const auto* const to = reinterpret_cast<const sockaddr*>(&address.Bytes);
  int error = connect(fd, to, address.Size) == 0 ? 0 : errno;
  if (error == EINPROGRESS) error = Attempt(fd, Await(fd, POLLOUT, deadline));
  if (error != 0) {
    close(fd);
    return Unreachable(error);
  }
  Tune(fd);
  Adopt(fd);
  return {};
}

std::string TcpStream::Unreachable(int error) const {
  if (error == ECONNREFUSED)
    return "Nothing answers at " + Place() +
           ": connection refused. Check the port, and whether another program holds the device: many serve only one.";
  if (error == ETIMEDOUT)
    return "Nothing answers at " + Place() + " in time. Check that the device is on and in this network.";
  return Place() + " can't be reached: " + Words(error) + ". Check the address, the cable and the network.";
}

ByteStream::Outcome TcpStream::Flush(Deadline deadline) {
  using std::chrono::steady_clock, std::chrono::milliseconds;
  while (IsOpen()) {
    int unacknowledged = 0;
    const bool isKnown = ioctl(Fd(), SIOCOUTQ, &unacknowledged) == 0;
    if (!isKnown || unacknowledged == 0) return Outcome::Done;
    const auto now = steady_clock::now();
    if (now >= deadline) return Late(" has not taken what was sent last.");
    // No event tells of an acknowledgement; this waits for the next look, or for the end of the connection.
    const short ended = Await(Fd(), 0, std::min(deadline, now + milliseconds(1)));
    if (ended != 0) return Lose(WhyLost(0));
  }
  return Outcome::Lost;
}

ssize_t TcpStream::Put(int fd, std::string_view bytes) const {
  return send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

std::string TcpStream::WhyLost(int error) const {
  return "The connection to " + Place() + " is lost: " + (error == 0 ? "the other end closed it" : Words(error)) +
         ". Check that the device is on, and its cable; the next command connects again.";
}

}  // namespace hylden
