#pragma once

#include "platform/native/FdStream.h"

namespace hylden {

/// A serial line, raw with 8 data bits, no parity and 1 stop bit, without handshake. It is this program's alone.
class SerialStream : public FdStream {
 public:
  static constexpr int kUsualBaud = 115200;
  /// Why a line can't have a speed, in words; empty when it can.
  static std::string BaudFault(int baud);

  explicit SerialStream(std::string device, int baud = kUsualBaud);

  Outcome Open(Deadline deadline) override;
  std::string Name() const override { return "serial:" + device_ + "," + std::to_string(baud_); }

 private:
  std::string CannotOpen(int error) const;
  ssize_t Put(int fd, std::string_view bytes) const override;
  std::string WhyLost(int error) const override;

  const std::string device_;
  const int baud_;
};

}  // namespace hylden
