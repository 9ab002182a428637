#include "platform/native/StreamServer.h"

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>

namespace hylden {

namespace {

constexpr int kNone = -1;  // a descriptor that poll passes over
constexpr std::size_t kMostOut = 65536;
/// How often a terminal without a client is looked at: the system tells only when one leaves.
constexpr int kTerminalLookMs = 50;

[[noreturn]] void Fail(const std::string& what, const std::string& why) {
  throw std::runtime_error(what + ": " + why);
}

std::string SystemsWord() {
  return std::strerror(errno);
}

bool MayComeLater(int error) {
  return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

bool IsLoopback(const sockaddr_storage& address) {
  if (address.ss_family == AF_INET)
    return (ntohl(reinterpret_cast<const sockaddr_in&>(address).sin_addr.s_addr) >> 24) == IN_LOOPBACKNET;
  return address.ss_family == AF_INET6 &&
         IN6_IS_ADDR_LOOPBACK(&reinterpret_cast<const sockaddr_in6&>(address).sin6_addr);
}

StreamServer::Place PlaceOf(int socket) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  auto* const plain = reinterpret_cast<sockaddr*>(&address);
  std::array<char, NI_MAXHOST> host{};
  std::array<char, NI_MAXSERV> port{};
  getsockname(socket, plain, &size);
  getnameinfo(plain, size, host.data(), host.size(), port.data(), port.size(), NI_NUMERICHOST | NI_NUMERICSERV);
  return {host.data(), std::atoi(port.data()), IsLoopback(address)};
}

/// A socket that listens, or -1 with errno.
int ListeningSocket(const addrinfo& place) {
  const int fd = socket(place.ai_family, place.ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, place.ai_protocol);
  if (fd < 0) return -1;
  const int on = 1;
  setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  if (bind(fd, place.ai_addr, place.ai_addrlen) == 0 && listen(fd, SOMAXCONN) == 0) return fd;
  const int error = errno;
  close(fd);
  errno = error;
  return -1;
}

/// Neither echo nor line editing, and nothing left of a former client's answers.
bool Prepare(const std::string& terminal) {
  const int fd = open(terminal.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) return false;
  termios raw{};
  const bool known = tcgetattr(fd, &raw) == 0;
  cfmakeraw(&raw);
  const bool done = known && tcsetattr(fd, TCSANOW, &raw) == 0;
  tcflush(fd, TCIFLUSH);
  close(fd);
  return done;
}

}  // namespace

StreamServer::~StreamServer() {
  for (const Listener& listener : listeners_) close(listener.Fd);
  for (const Connection& connection : connections_) close(connection.Fd);
}

StreamServer::Place StreamServer::Listen(const std::string& address, int port, MakeSession make) {
  addrinfo wanted{};
  wanted.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
  wanted.ai_socktype = SOCK_STREAM;
  const std::string what = "can't listen on " + address + ", port " + std::to_string(port);
  addrinfo* places = nullptr;
  const int error = getaddrinfo(address.c_str(), std::to_string(port).c_str(), &wanted, &places);
  if (error != 0) Fail(what, gai_strerror(error));
  int fd = -1;
  for (const addrinfo* place = places; place && fd < 0; place = place->ai_next) fd = ListeningSocket(*place);
  const std::string why = SystemsWord();
  freeaddrinfo(places);
  if (fd < 0) Fail(what, why);
  listeners_.push_back({fd, std::move(make)});
  return PlaceOf(fd);
}

std::string StreamServer::OpenTerminal(MakeSession make) {
  const int fd = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  std::array<char, 128> name{};
  if (fd < 0 || grantpt(fd) != 0 || unlockpt(fd) != 0 || ptsname_r(fd, name.data(), name.size()) != 0 ||
      !Prepare(name.data())) {
    const std::string why = SystemsWord();
    if (fd >= 0) close(fd);
    Fail("can't make a pseudo-terminal", why);
  }
  auto session = make();
  connections_.push_back({.Fd = fd,
                          .Session = std::move(session),
                          .TerminalDevice = name.data(),
                          .Renew = std::move(make),
                          .Awaited = true});
  return name.data();
}

int StreamServer::SleepMs() const {
  std::int64_t sleep = -1;
  const auto atMost = [&sleep](std::int64_t ms) { sleep = sleep < 0 ? ms : std::min(sleep, ms); };
  for (const Connection& connection : connections_) {
    if (connection.Awaited) atMost(kTerminalLookMs);
    const bool full = connection.Writes && connection.Out.size() >= kMostOut;
    if (const auto due = connection.Session->DueInMs(); due && !full) atMost(*due);
  }
  return static_cast<int>(std::min<std::int64_t>(sleep, std::numeric_limits<int>::max()));
}

short StreamServer::EventsOf(const Connection& connection) {
  const bool full = connection.Out.size() >= kMostOut;
  const bool reads = connection.Reads && !full && connection.Session->TakesMore();
  const bool writes = connection.Writes && !connection.Out.empty();
  return static_cast<short>((reads ? POLLIN : 0) | (writes ? POLLOUT : 0));
}

std::vector<pollfd> StreamServer::Waits(int stopDescriptor) const {
  std::vector<pollfd> waits = {{stopDescriptor, POLLIN, 0}};
  const bool hasRoom = connections_.size() < kMostClients;
  for (const Listener& listener : listeners_) waits.push_back({hasRoom ? listener.Fd : kNone, POLLIN, 0});
  for (const Connection& connection : connections_) {
    const bool gone = connection.Awaited || (!connection.Reads && !connection.Writes);
    waits.push_back({gone ? kNone : connection.Fd, EventsOf(connection), 0});
  }
  return waits;
}

void StreamServer::Run(int stopDescriptor) {
  for (;;) {
    std::vector<pollfd> waits = Waits(stopDescriptor);
    if (poll(waits.data(), waits.size(), SleepMs()) < 0 && errno != EINTR)
      Fail("can't wait for clients", SystemsWord());
    if (waits.front().revents != 0) return;
    auto wait = waits.begin() + 1 + static_cast<std::ptrdiff_t>(listeners_.size());
    for (Connection& connection : connections_) {
      if (connection.Awaited) LookForClient(connection);
      if (wait++->revents & (POLLIN | POLLHUP | POLLERR)) Receive(connection);
      Serve(connection);
    }
    ClearAway();
    for (std::size_t i = 0; i < listeners_.size(); ++i)
      if (waits[i + 1].revents != 0) Accept(listeners_[i]);
  }
}

void StreamServer::Accept(const Listener& listener) {
  const int fd = accept4(listener.Fd, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
  if (fd < 0) return;
  const int on = 1;
  setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  connections_.push_back({.Fd = fd, .Session = listener.Make()});
}

void StreamServer::Receive(Connection& connection) {
  const auto gone = [&] { connection.Reads = connection.Writes = false; };
  // Where nothing was to be read, only the end of both directions is told.
  if (!connection.Reads || !connection.Session->TakesMore()) return gone();
  std::array<char, 4096> bytes;
  const ssize_t count = read(connection.Fd, bytes.data(), bytes.size());
  if (count > 0) return connection.Session->Take({bytes.data(), static_cast<std::size_t>(count)});
  if (count == 0)
    connection.Reads = false;  // it may still want its answers
  else if (!MayComeLater(errno))
    gone();
}

void StreamServer::Serve(Connection& connection) {
  if (connection.Awaited) return;
  if (!connection.Writes) connection.Out.clear();
  if (connection.Out.size() < kMostOut) connection.Out += connection.Session->Serve();
  if (connection.Writes && !connection.Out.empty()) Flush(connection);
}

void StreamServer::Flush(Connection& connection) {
  const std::string& out = connection.Out;
  const ssize_t count = connection.TerminalDevice.empty() ? send(connection.Fd, out.data(), out.size(), MSG_NOSIGNAL)
                                                          : write(connection.Fd, out.data(), out.size());
  if (count > 0)
    connection.Out.erase(0, static_cast<std::size_t>(count));
  else if (count < 0 && !MayComeLater(errno))
    connection.Reads = connection.Writes = false;
}

bool StreamServer::IsOver(const Connection& connection) {
  if (connection.Session->Ended()) return true;
  const bool everythingTaken = connection.Out.empty() || !connection.Writes;
  return !connection.Reads && everythingTaken && !connection.Session->DueInMs();
}

void StreamServer::ClearAway() {
  for (Connection& connection : connections_) {
    if (connection.TerminalDevice.empty() || !IsOver(connection)) continue;
    connection.Session = connection.Renew();
    connection.Out.clear();
    connection.Reads = connection.Writes = connection.Awaited = true;
    Prepare(connection.TerminalDevice);
  }
  std::erase_if(connections_, [](const Connection& connection) {
    const bool over = connection.TerminalDevice.empty() && IsOver(connection);
    if (over) close(connection.Fd);
    return over;
  });
}

void StreamServer::LookForClient(Connection& terminal) {
  pollfd look{terminal.Fd, POLLIN, 0};
  poll(&look, 1, 0);
  terminal.Awaited = (look.revents & POLLHUP) != 0 && (look.revents & POLLIN) == 0;
}

}  // namespace hylden
