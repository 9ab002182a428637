#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace hylden {

/// A two-way stream of bytes: a TCP connection or a serial line. No call takes longer than to its deadline.
class ByteStream {
 public:
  using Deadline = std::chrono::steady_clock::time_point;
  enum class Outcome {
    Done,
    TimedOut,  ///< the deadline passed; the stream is still open
    Lost,      ///< it could not be opened, or was closed by the other end, or failed; it has to be opened again
  };

  virtual ~ByteStream() = default;
  /// Opens it anew; one that was open is closed, and what it still held is dropped.
  virtual Outcome Open(Deadline deadline) = 0;
  virtual bool IsOpen() const = 0;
  /// Writes all of the bytes.
  virtual Outcome Write(std::string_view bytes, Deadline deadline) = 0;
  /// Waits for at least one byte, and appends what is there, at most `most`.
  virtual Outcome Read(std::string& bytes, std::size_t most, Deadline deadline) = 0;
  /// Waits until the other end's machine has acknowledged what was written, where the system can tell.
  virtual Outcome Flush(Deadline) { return IsOpen() ? Outcome::Done : Outcome::Lost; }
  /// Why the last call did not come to Done, in words.
  virtual std::string Fault() const = 0;
  /// As the settings name it: "tcp:HOST:PORT", "serial:DEVICE,BAUD".
  virtual std::string Name() const = 0;
};

}  // namespace hylden
