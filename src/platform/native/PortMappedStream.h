#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/native/TcpStream.h"

namespace hylden {

/// A TCP connection to a program of another computer, whose port is asked there first (RFC 1833, version 2), and
/// again when it is not to be reached any more where it was.
class PortMappedStream : public ByteStream {
 public:
  /// @param mapperPort  where to ask
  PortMappedStream(std::string host, std::uint32_t program, std::uint32_t version, int mapperPort = 111);

  Outcome Open(Deadline deadline) override;
  bool IsOpen() const override { return stream_ && stream_->IsOpen(); }
  Outcome Write(std::string_view bytes, Deadline deadline) override;
  Outcome Read(std::string& bytes, std::size_t most, Deadline deadline) override;
  std::string Fault() const override { return fault_; }
  std::string Name() const override { return host_; }

 private:
  /// Finds out the port.
  Outcome Ask(Deadline deadline);
  /// Passes an outcome on, with the stream's fault.
  Outcome Told(Outcome outcome, const ByteStream& stream);

  const std::string host_;
  const std::uint32_t program_, version_;
  const int mapperPort_;
  std::unique_ptr<TcpStream> stream_;
  std::string fault_;
};

}  // namespace hylden
