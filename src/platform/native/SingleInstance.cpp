#include "platform/native/SingleInstance.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <utility>

namespace hylden {

SingleInstance::SingleInstance(std::string place) : place_(std::move(place)) {}

SingleInstance::~SingleInstance() {
  if (socket_ >= 0) close(socket_);
}

bool SingleInstance::Claim() {
  if (socket_ >= 0) return true;
  // Closed on exec: a sound player that outlives the program holds no place.
  const int holder = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (holder < 0) return true;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  // The zero byte in front makes it a name of the kernel's, without a file.
  const std::size_t length = place_.copy(address.sun_path + 1, sizeof address.sun_path - 1);
  const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + length);
  const bool taken = bind(holder, reinterpret_cast<const sockaddr*>(&address), size) != 0 && errno == EADDRINUSE;
  if (taken)
    close(holder);
  else
    socket_ = holder;
  return !taken;
}

std::string SingleInstance::Place() {
  const char* const own = std::getenv("HYLDEN_LOCK");
  return own && *own ? std::string("hylden-") + own : "hylden";
}

}  // namespace hylden
