#include "platform/native/SingleInstance.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <utility>

namespace hylden {

namespace {

constexpr int kCallers = 4, kCallerMs = 50;
constexpr std::size_t kLongest = 65536;
/// Stands before every answer: without it the holder has gone before it answered.
constexpr char kTaken = '+';

struct Address {
  explicit Address(const std::string& place) {
    Name.sun_family = AF_UNIX;
    // The zero byte in front makes it a name of the kernel's, without a file.
    const std::size_t length = place.copy(Name.sun_path + 1, sizeof Name.sun_path - 1);
    Size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + length);
  }
  const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&Name); }

  sockaddr_un Name{};
  socklen_t Size = 0;
};

class Connection {
 public:
  explicit Connection(int descriptor) : descriptor_(descriptor) {}
  ~Connection() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  int Descriptor() const { return descriptor_; }

  bool IsOfThisUser() const {
    ucred other{};
    socklen_t size = sizeof other;
    return getsockopt(descriptor_, SOL_SOCKET, SO_PEERCRED, &other, &size) == 0 && other.uid == geteuid();
  }

  bool Send(const std::string& text) const {
    return send(descriptor_, text.data(), text.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(text.size()) &&
           shutdown(descriptor_, SHUT_WR) == 0;
  }

  /// What comes up to its end; nothing when that does not come in time.
  std::optional<std::string> ReadAll(int limitMs) const {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(limitMs);
    std::string text;
    while (text.size() < kLongest) {
      const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
      pollfd waiting{descriptor_, POLLIN, 0};
      if (left < 0 || poll(&waiting, 1, static_cast<int>(left)) <= 0) return std::nullopt;
      char bytes[4096];
      const ssize_t count = read(descriptor_, bytes, sizeof bytes);
      if (count < 0) return std::nullopt;
      if (count == 0) return text;
      text.append(bytes, static_cast<std::size_t>(count));
    }
    return std::nullopt;
  }

 private:
  int descriptor_;
};

}  // namespace

SingleInstance::SingleInstance(std::string place) : place_(std::move(place)) {}

SingleInstance::~SingleInstance() {
  if (socket_ >= 0) close(socket_);
}

bool SingleInstance::Claim() {
  if (socket_ >= 0) return true;
  // Closed on exec: a sound player that outlives the program holds no place.
  const int holder = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (holder < 0) return true;
  const Address address(place_);
  const bool taken = bind(holder, address.Get(), address.Size) != 0 && errno == EADDRINUSE;
  if (taken)
    close(holder);
  else
    socket_ = holder;
  return !taken;
}

int SingleInstance::Listen() {
  // A caller that has gone again must not have the program wait for the next one.
  const bool listens = socket_ >= 0 && fcntl(socket_, F_SETFL, O_NONBLOCK) == 0 && listen(socket_, kCallers) == 0;
  return listens ? socket_ : -1;
}

void SingleInstance::Answer(const std::function<std::string(const std::string& request)>& answer) {
  const Connection caller(accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC));
  if (caller.Descriptor() < 0 || !caller.IsOfThisUser()) return;
  if (const auto request = caller.ReadAll(kCallerMs)) (void)caller.Send(kTaken + answer(*request));
}

std::optional<std::string> SingleInstance::Ask(const std::string& request, int limitMs) const {
  const Connection holder(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  const Address address(place_);
  if (holder.Descriptor() < 0 || connect(holder.Descriptor(), address.Get(), address.Size) != 0) return std::nullopt;
  if (!holder.IsOfThisUser() || !holder.Send(request)) return std::nullopt;
  const auto answer = holder.ReadAll(limitMs);
  if (!answer || answer->empty() || answer->front() != kTaken) return std::nullopt;
  return answer->substr(1);
}

std::string SingleInstance::Place() {
  const char* const own = std::getenv("HYLDEN_LOCK");
  return own && *own ? std::string("hylden-") + own : "hylden";
}

}  // namespace hylden
