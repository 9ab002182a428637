#include "platform/native/SocketInstrument.h"

#include <algorithm>
#include <utility>

namespace hylden {

namespace {

constexpr std::size_t kPiece = 4096;

}  // namespace

SocketInstrument::SocketInstrument(std::unique_ptr<ByteStream> stream) : StreamGpib(std::move(stream)) {}

StreamGpib::Outcome SocketInstrument::SetUp(Deadline) {
  unread_.clear();
  skipsLineFeed_ = false;
  isNew_ = !isLossTold_;
  return Outcome::Done;
}

void SocketInstrument::SendIFC(int board) {
  if (Refused(board)) return;
  const Outcome outcome = Open(Limit());
  isNew_ = false;
  Finish(outcome);
}

StreamGpib::Outcome SocketInstrument::Refresh(Deadline deadline) {
  constexpr int kMostPieces = 1000;  // an instrument that never stops talking is still there
  unread_.clear();
  for (int n = 0; n < kMostPieces && Stands(); ++n) {
    if (Stream().Read(unread_, kPiece, Deadline()) != Outcome::Done) break;
    unread_.clear();
  }
  return Ready(deadline);
}

void SocketInstrument::FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) {
  if (Refused(board)) return;
  if (Refresh(Limit()) != Outcome::Done) return Fail(gpib::kEnol, Stream().Fault());
  isNew_ = false;
  std::size_t found = 0;
  for (const std::int16_t address : addresses) {
    if (address == gpib::kNoAddr || found == results.size()) break;
    if (address != 0) results[found++] = address;  // 0 is the controller's own
  }
  Finish(Outcome::Done, found);
}

void SocketInstrument::SetRWLS(int board, std::span<const std::int16_t>) {
  if (!Refused(board)) Finish(Outcome::Done);
}

void SocketInstrument::EnableLocal(int board, std::span<const std::int16_t>) {
  if (Refused(board)) return;
  // A command to an instrument without power or cable passes as sent at first, RF off too.
  Finish(Stands() ? Stream().Flush(Limit()) : Outcome::Done);
}

void SocketInstrument::Send(int board, int, std::string_view bytes, int eotMode) {
  if (Refused(board)) return;
  const Deadline deadline = Limit();
  std::string message(bytes);
  if (eotMode == gpib::kDabEnd && !message.empty() && message.back() != '\n') message += '\n';
  Outcome outcome = std::exchange(isLate_, false) ? Refresh(deadline) : Ready(deadline);
  if (outcome == Outcome::Done) outcome = Write(message, deadline);
  if (outcome == Outcome::Done && std::exchange(isNew_, false)) {
    fault_ = "The connection was lost, and what was sent last perhaps with it; it stands again.";
    outcome = Outcome::Lost;
  }
  isLossTold_ = outcome != Outcome::Done;
  Finish(outcome, outcome == Outcome::Done ? bytes.size() : 0);
}

void SocketInstrument::Receive(int board, int, std::span<char> buffer, int termination) {
  if (Refused(board)) return;
  const Deadline deadline = Limit();
  if (!Stands()) {
    if (Open(deadline) == Outcome::Done) fault_ = "The connection was lost, and with it the answer; it stands again.";
    return Finish(Outcome::Lost);
  }
  const char end = termination == gpib::kStopEnd ? '\n' : static_cast<char>(termination);
  std::size_t count = 0;
  Outcome outcome = Outcome::Done;
  bool ended = Take(buffer, end, count);
  while (!ended && count < buffer.size() && outcome == Outcome::Done) {
    outcome = Stream().Read(unread_, kPiece, deadline);
    ended = Take(buffer, end, count);
  }
  isLate_ = outcome == Outcome::TimedOut;
  Finish(outcome, count, ended ? gpib::kEnd : 0);
}

bool SocketInstrument::Take(std::span<char> buffer, char end, std::size_t& count) {
  // An answer that was read up to CR may have ended with CR LF.
  if (skipsLineFeed_ && unread_.starts_with('\n')) unread_.erase(0, 1);
  if (!unread_.empty()) skipsLineFeed_ = false;
  const std::size_t endAt = unread_.find(end);
  const std::size_t there = endAt == std::string::npos ? unread_.size() : endAt + 1;
  const std::size_t taken = std::min(there, buffer.size() - count);
  unread_.copy(buffer.data() + count, taken);
  count += taken;
  unread_.erase(0, taken);
  const bool ended = endAt != std::string::npos && taken == there;
  if (ended && end == '\r') skipsLineFeed_ = true;
  return ended;
}

std::string SocketInstrument::Way(int) const {
  const std::string name = Stream().Name();
  const std::string place = name.starts_with("tcp:") ? "socket:" + name.substr(4) : name;
  return place + ", " + (Stands() ? "connected" : Stream().Fault());
}

}  // namespace hylden
