#pragma once

#include <sys/socket.h>

#include <vector>

#include "platform/native/FdStream.h"

namespace hylden {

/// A TCP connection to a device. The address at which it was reached once is kept: when the connection breaks, no
/// look-up of a name stands between an RF off and its device.
class TcpStream : public FdStream {
 public:
  TcpStream(std::string host, int port);

  /// The look-up of a name may take longer than the deadline: only the system knows when it gives up.
  Outcome Open(Deadline deadline) override;
  Outcome Flush(Deadline deadline) override;
  std::string Name() const override { return "tcp:" + Place(); }

 private:
  struct Address {
    sockaddr_storage Bytes;
    socklen_t Size;
  };

  /// "HOST:PORT".
  std::string Place() const;
  /// Empty when the addresses of the host are known, else why not.
  std::string LookUp();
  /// Empty when connected.
  std::string Connect(const Address& address, Deadline deadline);
  std::string Unreachable(int error) const;
  ssize_t Put(int fd, std::string_view bytes) const override;
  std::string WhyLost(int error) const override;

  const std::string host_;
  const int port_;
  std::vector<Address> addresses_;
  bool wasReached_ = false;
};

}  // namespace hylden
