#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/native/ByteStream.h"

namespace hylden {

/// Values in the external data representation (RFC 4506).
class XdrWriter {
 public:
  XdrWriter& Number(std::uint32_t value);
  /// Bytes behind their length, filled up to a multiple of four.
  XdrWriter& Opaque(std::string_view bytes);
  const std::string& Bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

class XdrReader {
 public:
  explicit XdrReader(std::string_view bytes) : bytes_(bytes) {}
  /// The next number; 0 behind the end.
  std::uint32_t Number();
  /// The next bytes; empty where they are not there whole.
  std::string_view Opaque();
  std::string_view Rest() const { return bytes_; }
  /// Whether everything that was asked for was there.
  bool IsWhole() const { return isWhole_; }

 private:
  std::string_view Take(std::size_t count);

  std::string_view bytes_;
  bool isWhole_ = true;
};

/// Remote procedure calls (RFC 5531) over a stream, one at a time. The reply of a call that timed out is passed over
/// when it comes after all.
class OncRpc {
 public:
  using Outcome = ByteStream::Outcome;
  using Deadline = ByteStream::Deadline;

  /// The stream must outlive this object.
  explicit OncRpc(ByteStream& stream) : stream_(stream) {}
  /// To be called when the stream has been opened: nothing of the former connection counts any more.
  void Restart() { received_.clear(); }
  /// @param results  of the call, when it is Done. Lost when it was refused, too.
  Outcome Call(std::uint32_t program, std::uint32_t version, std::uint32_t procedure, const XdrWriter& arguments,
               std::string& results, Deadline deadline);
  /// Whether the last call was written in part only: the other end would join the next one to it.
  bool IsHalfWritten() const { return isHalfWritten_; }
  /// Whether the other end answered the last call, but does not have it.
  bool IsUnknown() const { return isUnknown_; }
  /// Why the last call came to nothing, where it is not the stream that knows.
  const std::string& Fault() const { return fault_; }

 private:
  Outcome ReadRecord(std::string& record, Deadline deadline);
  Outcome Await(std::size_t count, Deadline deadline);
  Outcome Nonsense();

  ByteStream& stream_;
  std::uint32_t lastCall_ = 0;
  std::string received_;
  std::string fault_;
  bool isHalfWritten_ = false, isUnknown_ = false;
};

}  // namespace hylden
