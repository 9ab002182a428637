#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hylden {

/// Whoever talks with one client of a server: bytes in, bytes out. No call waits.
class StreamSession {
 public:
  virtual ~StreamSession() = default;
  /// Whether it takes more bytes now; otherwise they stay with the client.
  virtual bool TakesMore() const = 0;
  virtual void Take(std::string_view bytes) = 0;
  /// Does the next thing that can be done now. @return bytes for the client
  virtual std::string Serve() = 0;
  /// When Serve has something to do without further bytes, in ms from now; nothing: not before some come.
  virtual std::optional<std::int64_t> DueInMs() const = 0;
  /// Whether the connection is to be closed.
  virtual bool Ended() const = 0;
};

}  // namespace hylden
