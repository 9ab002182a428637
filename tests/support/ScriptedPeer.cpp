#include "support/ScriptedPeer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <pty.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <utility>

namespace hylden {

namespace {

/// A socket bound to a port of this computer.
int Bound(int& port) {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  socklen_t size = sizeof address;
  getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size);
  port = ntohs(address.sin_port);
  return fd;
}

void CloseIfOpen(int& fd) {
  if (fd >= 0) close(std::exchange(fd, -1));
}

/// Waits 2 s at most for something to be so.
template <class Condition>
bool Await(Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::yield();
  }
  return true;
}

}  // namespace

ScriptedPeer::ScriptedPeer(Script script, On on) : script_(std::move(script)) {
  on == On::Terminal ? OpenTerminal() : Listen();
  if (on != On::DeafPort && pipe2(wake_, O_CLOEXEC) == 0) thread_ = std::thread([this] { Serve(); });
}

ScriptedPeer::~ScriptedPeer() {
  CloseIfOpen(wake_[1]);
  if (thread_.joinable()) thread_.join();
  Hang();
  CloseIfOpen(listener_);
  CloseIfOpen(wake_[0]);
}

void ScriptedPeer::Listen() {
  listener_ = Bound(port_);
  listen(listener_, 4);
}

void ScriptedPeer::OpenTerminal() {
  char name[128] = {};
  // The end that the program opens is held here too: a master without one tells of a hang-up all the time.
  if (openpty(&line_, &terminal_, name, nullptr, nullptr) != 0) return;
  fcntl(line_, F_SETFL, O_NONBLOCK);
  device_ = name;
}

int ScriptedPeer::FreePort() {
  int port = 0;
  close(Bound(port));
  return port;
}

std::string ScriptedPeer::HeardUpTo(const std::string& end) {
  Await([&] {
    const std::lock_guard lock(mutex_);
    return heard_.ends_with(end);
  });
  const std::lock_guard lock(mutex_);
  return heard_;
}

bool ScriptedPeer::HasHungUp() const {
  return Await([&] { return hungUp_ > 0; });
}

void ScriptedPeer::Forget() {
  const std::lock_guard lock(mutex_);
  heard_.clear();
}

void ScriptedPeer::Serve() {
  while (true) {
    pollfd waited[] = {{wake_[0], POLLIN, 0},
                       {listener_, POLLIN, 0},
                       {line_, static_cast<short>(unsaid_.empty() ? POLLIN : POLLIN | POLLOUT), 0}};
    if (poll(waited, 3, -1) < 0) continue;
    if (waited[0].revents != 0) return;
    if (waited[1].revents != 0) {
      Accept();
      continue;  // the other event is of the line before
    }
    if ((waited[2].revents & POLLOUT) != 0) Say();
    if ((waited[2].revents & ~POLLOUT) != 0) Hear();
  }
}

void ScriptedPeer::Accept() {
  Hang();
  line_ = accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
  ++connections_;
}

void ScriptedPeer::Hear() {
  char piece[4096];
  const ssize_t got = read(line_, piece, sizeof piece);
  if (got <= 0) return Hang();
  unread_.append(piece, static_cast<std::size_t>(got));
  {
    const std::lock_guard lock(mutex_);
    heard_.append(piece, static_cast<std::size_t>(got));
  }
  for (std::size_t end = 0; line_ >= 0 && (end = unread_.find('\n')) != std::string::npos;) {
    const std::string line = unread_.substr(0, end);
    unread_.erase(0, end + 1);
    Answer(line);
  }
}

void ScriptedPeer::Answer(const std::string& line) {
  if (!script_) return;
  const Reply reply = script_(line);
  unsaid_ += reply.Bytes;
  closes_ = closes_ || reply.Closes;
  Say();
}

void ScriptedPeer::Say() {
  const ssize_t said = terminal_ >= 0 ? write(line_, unsaid_.data(), unsaid_.size())
                                      : send(line_, unsaid_.data(), unsaid_.size(), MSG_NOSIGNAL);
  if (said > 0) unsaid_.erase(0, static_cast<std::size_t>(said));
  if (unsaid_.empty() && closes_) Hang();
}

void ScriptedPeer::Hang() {
  if (line_ < 0) return;
  CloseIfOpen(line_);
  CloseIfOpen(terminal_);
  unread_.clear();
  unsaid_.clear();
  closes_ = false;
  ++hungUp_;
}

}  // namespace hylden
