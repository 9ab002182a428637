#pragma once

#include <memory>
#include <string>

#include "platform/GpibDriver.h"
#include "platform/GpibTimeLimit.h"
#include "platform/native/ByteStream.h"

namespace hylden {

/// What the drivers over a stream of bytes share: board 0, the status cells, the time limit, and a stream that is
/// opened anew by the call after the one that lost it.
class StreamGpib : public GpibDriver {
 public:
  int RegisterGpibGlobalsForThread(GpibStatusCells& cells) override;
  int UnregisterGpibGlobalsForThread() override;
  void ibtmo(int board, int code) override;
  std::string Advice() const override { return advice_; }

 protected:
  using Outcome = ByteStream::Outcome;
  using Deadline = ByteStream::Deadline;

  explicit StreamGpib(std::unique_ptr<ByteStream> stream);

  ByteStream& Stream() const { return *stream_; }
  Deadline Limit() const;
  std::int64_t LimitMs() const { return limitMs_; }
  /// Sets the status and returns true on a board that does not exist.
  bool Refused(int board);
  /// Sets the status of a call that succeeded, timed out, or found no way to its device.
  void Finish(Outcome outcome, std::size_t count = 0, int extraStatus = 0);
  void Fail(int error, const std::string& advice, int extraStatus = 0);

  /// Whether the stream can be used as it is.
  bool Stands() const { return stream_->IsOpen() && isInOrder_; }
  /// It can't be told any more what the other end has heard and will say: the next call opens the stream anew.
  void Abandon() { isInOrder_ = false; }
  Outcome Open(Deadline deadline);
  /// Opens what does not stand.
  Outcome Ready(Deadline deadline) { return Stands() ? Outcome::Done : Open(deadline); }
  Outcome Write(std::string_view bytes, Deadline deadline);
  /// What else is to be done when the stream has been opened.
  virtual Outcome SetUp(Deadline) { return Outcome::Done; }
  /// Why the present call finds no way to its device, where it is not the stream that knows.
  std::string fault_;

 private:
  const std::unique_ptr<ByteStream> stream_;
  GpibStatusCells* cells_ = nullptr;
  std::int64_t limitMs_ = gpib::TimeLimitMs(gpib::kT10s);
  std::string advice_;
  bool isInOrder_ = false;
};

}  // namespace hylden
