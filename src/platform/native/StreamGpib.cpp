#include "platform/native/StreamGpib.h"

#include <utility>

namespace hylden {

StreamGpib::StreamGpib(std::unique_ptr<ByteStream> stream) : stream_(std::move(stream)) {}

int StreamGpib::RegisterGpibGlobalsForThread(GpibStatusCells& cells) {
  cells_ = &cells;
  return 0;
}

int StreamGpib::UnregisterGpibGlobalsForThread() {
  cells_ = nullptr;
  return 0;
}

void StreamGpib::ibtmo(int board, int code) {
  if (Refused(board)) return;
  limitMs_ = gpib::TimeLimitMs(code);
  Finish(Outcome::Done);
}

StreamGpib::Deadline StreamGpib::Limit() const {
  return std::chrono::steady_clock::now() + std::chrono::milliseconds(limitMs_);
}

bool StreamGpib::Refused(int board) {
  if (board == 0) return false;
  Fail(gpib::kEneb, {});
  return true;
}

void StreamGpib::Finish(Outcome outcome, std::size_t count, int extraStatus) {
  const auto bytes = static_cast<std::int32_t>(count);
  const std::string fault = std::exchange(fault_, {});
  advice_.clear();
  if (outcome == Outcome::Lost) advice_ = fault.empty() ? stream_->Fault() : fault;
  if (!cells_) return;
  if (outcome == Outcome::Done)
    *cells_ = {gpib::kCmpl | gpib::kCic | extraStatus, 0, bytes, bytes};
  else if (outcome == Outcome::TimedOut)
    *cells_ = {gpib::kErr | gpib::kTimo | gpib::kCmpl | gpib::kCic, gpib::kEabo, bytes, bytes};
  else
    *cells_ = {gpib::kErr | gpib::kCmpl, gpib::kEdvr, bytes, bytes};
}

void StreamGpib::Fail(int error, const std::string& advice, int extraStatus) {
  advice_ = advice;
  if (cells_) *cells_ = {gpib::kErr | gpib::kCmpl | gpib::kCic | extraStatus, error, 0, 0};
}

StreamGpib::Outcome StreamGpib::Open(Deadline deadline) {
  Abandon();
  Outcome outcome = stream_->Open(deadline);
  if (outcome == Outcome::Done) outcome = SetUp(deadline);
  isInOrder_ = outcome == Outcome::Done;
  return outcome;
}

StreamGpib::Outcome StreamGpib::Write(std::string_view bytes, Deadline deadline) {
  const Outcome written = stream_->Write(bytes, deadline);
  // A device must not join the half of a command with the next one.
  if (written == Outcome::TimedOut) Abandon();
  return written;
}

}  // namespace hylden
