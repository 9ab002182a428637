#pragma once

#include <sys/types.h>

#include "platform/native/ByteStream.h"

namespace hylden {

/// What a TCP connection and a serial line share: a descriptor that never blocks, and is waited for to the deadline.
class FdStream : public ByteStream {
 public:
  FdStream() = default;
  ~FdStream() override;
  FdStream(const FdStream&) = delete;
  FdStream& operator=(const FdStream&) = delete;

  bool IsOpen() const override { return fd_ >= 0; }
  Outcome Write(std::string_view bytes, Deadline deadline) override;
  Outcome Read(std::string& bytes, std::size_t most, Deadline deadline) override;
  std::string Fault() const override { return fault_; }

 protected:
  /// Takes a descriptor that does not block, and from here on closes it.
  void Adopt(int fd);
  void Close();
  int Fd() const { return fd_; }
  /// Closes the stream, for this reason.
  Outcome Lose(const std::string& fault);
  /// Waits for an event on a descriptor, at least as long as to look once; what there is of it, 0 when it is late.
  static short Await(int fd, short events, Deadline deadline);
  Outcome Late(const char* what);
  /// Writes as much as goes.
  virtual ssize_t Put(int fd, std::string_view bytes) const = 0;
  /// Why an open stream is lost, in words. @param error  of the system; 0: the other end has closed it
  virtual std::string WhyLost(int error) const = 0;

 private:
  int fd_ = -1;
  std::string fault_ = "not opened yet";
};

}  // namespace hylden
