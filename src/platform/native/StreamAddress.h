#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/native/ByteStream.h"

namespace hylden {

struct HostPort {
  std::string Host;  ///< a name or a numeric address, without brackets
  int Port = 0;
};

/// Of "HOST", "HOST:PORT", "[IPV6]" or "[IPV6]:PORT"; nothing when it is none of them, or the port not 1 to 65535.
std::optional<HostPort> ParseHostPort(std::string_view text, int usualPort);

/// A stream, still closed, or why there is none, in words.
struct ParsedStream {
  std::unique_ptr<ByteStream> Stream;
  std::string Fault;
};

/// The stream that a setting names: "tcp:HOST", "tcp:HOST:PORT" (an IPv6 address in brackets), "serial:DEVICE" or
/// "serial:DEVICE,BAUD".
ParsedStream ParseStream(std::string_view address, int usualPort = 1234);

}  // namespace hylden
