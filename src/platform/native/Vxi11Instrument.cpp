#include "platform/native/Vxi11Instrument.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace hylden {

namespace {

// Procedures of the core channel.
constexpr std::uint32_t kCreateLink = 10, kWrite = 11, kRead = 12, kClear = 15, kRemote = 16, kLocal = 17,
                        kDestroyLink = 23;
// Flags and reasons, and the error codes that have a meaning here.
constexpr std::uint32_t kEnd = 8, kTermCharSet = 0x80, kByTermChar = 2, kByEnd = 4;
constexpr std::uint32_t kInvalidLink = 4, kNotSupported = 8, kTimeOut = 15;
constexpr std::uint32_t kLeastPiece = 1024;  // what every instrument takes
constexpr auto kLinkGoodbye = std::chrono::milliseconds(200);

/// The instrument keeps the time limit itself, and its answer needs a moment.
constexpr std::chrono::milliseconds kOnTheWay(50);

std::uint32_t LeftMs(ByteStream::Deadline deadline) {
  const auto left =
      std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
  return static_cast<std::uint32_t>(std::max<std::int64_t>(left, 0));
}

std::string Words(std::uint32_t error) {
  switch (error) {
    case 3:
      return "it can't be reached behind its interface";
    case 4:
    case 6:
      return "it does not know the connection any more";
    case 9:
      return "it has no room for another connection: close one of another program";
    case 11:
      return "it is locked by another program";
    case 17:
      return "its interface failed";
    case 21:
      return "there is no instrument of that name";
    default:
      return "it refused the call";
  }
}

}  // namespace

Vxi11Instrument::Vxi11Instrument(std::unique_ptr<ByteStream> stream, std::string name)
    : StreamGpib(std::move(stream)), name_(std::move(name)) {}

Vxi11Instrument::~Vxi11Instrument() {
  std::string ignored;
  if (Stands())
    rpc_.Call(kProgram, kVersion, kDestroyLink, OfLink(), ignored, std::chrono::steady_clock::now() + kLinkGoodbye);
}

XdrWriter Vxi11Instrument::OfLink() const {
  return XdrWriter().Number(link_);
}

StreamGpib::Outcome Vxi11Instrument::Call(std::uint32_t procedure, const XdrWriter& arguments, std::string& results,
                                          Deadline deadline) {
  error_ = 0;
  const Outcome outcome = rpc_.Call(kProgram, kVersion, procedure, arguments, results, deadline + kOnTheWay);
  if (outcome != Outcome::Done) {
    fault_ = rpc_.Fault();
    if (rpc_.IsUnknown())
      error_ = kNotSupported;
    else if (outcome == Outcome::Lost || rpc_.IsHalfWritten())
      Abandon();
    return outcome;
  }
  XdrReader reply(results);
  error_ = reply.Number();
  if (!reply.IsWhole()) return Nonsense();
  if (error_ == 0) return Outcome::Done;
  if (error_ == kInvalidLink) isLinked_ = false;
  if (error_ == kTimeOut) return Outcome::TimedOut;
  fault_ = "The instrument at " + Stream().Name() + " answers: " + Words(error_) + " (error " + std::to_string(error_) +
           ").";
  return Outcome::Lost;
}

StreamGpib::Outcome Vxi11Instrument::Nonsense() {
  fault_ = Stream().Name() + " does not speak as an instrument does.";
  Abandon();
  return Outcome::Lost;
}

StreamGpib::Outcome Vxi11Instrument::SetUp(Deadline deadline) {
  rpc_.Restart();
  std::string results;
  const XdrWriter arguments = XdrWriter().Number(0).Number(0).Number(LeftMs(deadline)).Opaque(name_);
  const Outcome outcome = Call(kCreateLink, arguments, results, deadline);
  XdrReader reply(results);
  reply.Number();
  link_ = reply.Number();
  reply.Number();  // the port on which a call can be aborted
  mostBytes_ = std::max(reply.Number(), kLeastPiece);
  isLinked_ = outcome == Outcome::Done && reply.IsWhole();
  return outcome == Outcome::Done && !isLinked_ ? Nonsense() : outcome;
}

StreamGpib::Outcome Vxi11Instrument::Linked(Deadline deadline) {
  const bool isLinked = Stands() && isLinked_;
  const Outcome outcome = isLinked ? Outcome::Done : Open(deadline);
  if (outcome != Outcome::Done || !isHalfSent_) return outcome;
  // The half of a command that timed out must not be joined to the next one.
  isHalfSent_ = false;
  if (Switch(kClear, deadline) == Outcome::Done) return Outcome::Done;
  // One that can't be cleared must not keep the next command, an RF off perhaps, from it for good.
  fault_.clear();
  return Open(deadline);
}

void Vxi11Instrument::SendIFC(int board) {
  if (!Refused(board)) Finish(Open(Limit()));
}

void Vxi11Instrument::FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) {
  if (Refused(board)) return;
  const Outcome outcome = Linked(Limit());
  if (outcome != Outcome::Done) return Finish(outcome);
  std::size_t found = 0;
  for (const std::int16_t address : addresses) {
    if (address == gpib::kNoAddr || found == results.size()) break;
    if (address != 0) results[found++] = address;  // 0 is the controller's own
  }
  Finish(Outcome::Done, found);
}

StreamGpib::Outcome Vxi11Instrument::Switch(std::uint32_t procedure, Deadline deadline) {
  std::string ignored;
  const Outcome outcome =
      Call(procedure, OfLink().Number(0).Number(LeftMs(deadline)).Number(LeftMs(deadline)), ignored, deadline);
  if (error_ != kNotSupported) return outcome;
  fault_.clear();
  return Outcome::Done;
}

void Vxi11Instrument::SwitchLinked(int board, std::uint32_t procedure) {
  if (Refused(board)) return;
  const Deadline deadline = Limit();
  const Outcome outcome = Linked(deadline);
  Finish(outcome == Outcome::Done ? Switch(procedure, deadline) : outcome);
}

void Vxi11Instrument::SetRWLS(int board, std::span<const std::int16_t>) {
  SwitchLinked(board, kRemote);
}

void Vxi11Instrument::EnableLocal(int board, std::span<const std::int16_t>) {
  SwitchLinked(board, kLocal);
}

StreamGpib::Outcome Vxi11Instrument::WritePiece(std::string_view piece, bool isEnd, Deadline deadline) {
  const XdrWriter arguments =
      OfLink().Number(LeftMs(deadline)).Number(LeftMs(deadline)).Number(isEnd ? kEnd : 0).Opaque(piece);
  std::string results;
  if (const Outcome outcome = Call(kWrite, arguments, results, deadline); outcome != Outcome::Done) return outcome;
  XdrReader reply(results);
  reply.Number();
  if (reply.Number() >= piece.size()) return Outcome::Done;
  fault_ = "The instrument at " + Stream().Name() + " has taken only a part of the command.";
  return Outcome::Lost;
}

void Vxi11Instrument::Send(int board, int, std::string_view bytes, int eotMode) {
  if (Refused(board)) return;
  const Deadline deadline = Limit();
  Outcome outcome = Linked(deadline);
  std::size_t count = 0;
  while (outcome == Outcome::Done && count < bytes.size()) {
    const std::string_view piece = bytes.substr(count, mostBytes_);
    const bool isLast = count + piece.size() == bytes.size();
    outcome = WritePiece(piece, isLast && eotMode == gpib::kDabEnd, deadline);
    if (outcome == Outcome::Done) count += piece.size();
    isHalfSent_ = outcome == Outcome::TimedOut || (outcome == Outcome::Lost && Stands() && (error_ == 0 || count > 0));
  }
  Finish(outcome, count);
}

StreamGpib::Outcome Vxi11Instrument::ReadPiece(std::span<char> buffer, int termination, Deadline deadline,
                                               std::size_t& count, bool& isEnded) {
  const bool toCharacter = termination != gpib::kStopEnd;
  const XdrWriter arguments = OfLink()
                                  .Number(static_cast<std::uint32_t>(buffer.size()))
                                  .Number(LeftMs(deadline))
                                  .Number(LeftMs(deadline))
                                  .Number(toCharacter ? kTermCharSet : 0)
                                  .Number(toCharacter ? static_cast<std::uint32_t>(termination) : 0);
  std::string results;
  if (const Outcome outcome = Call(kRead, arguments, results, deadline); outcome != Outcome::Done) return outcome;
  XdrReader reply(results);
  reply.Number();
  isEnded = (reply.Number() & (kByEnd | kByTermChar)) != 0;
  const std::string_view bytes = reply.Opaque().substr(0, buffer.size());
  if (!reply.IsWhole()) return Nonsense();
  std::copy(bytes.begin(), bytes.end(), buffer.begin());
  count += bytes.size();
  return Outcome::Done;
}

void Vxi11Instrument::Receive(int board, int, std::span<char> buffer, int termination) {
  if (Refused(board)) return;
  const Deadline deadline = Limit();
  if (!Stands() || !isLinked_) {
    if (Linked(deadline) == Outcome::Done) fault_ = "The connection was lost, and with it the answer; it stands again.";
    return Finish(Outcome::Lost);
  }
  std::size_t count = 0;
  bool isEnded = false;
  Outcome outcome = Outcome::Done;
  while (outcome == Outcome::Done && !isEnded && count < buffer.size()) {
    outcome = ReadPiece(buffer.subspan(count), termination, deadline, count, isEnded);
    if (outcome == Outcome::Done && !isEnded && LeftMs(deadline) == 0) outcome = Outcome::TimedOut;
  }
  Finish(outcome, count, outcome == Outcome::Done && isEnded ? gpib::kEnd : 0);
}

std::string Vxi11Instrument::Way(int) const {
  return "VXI-11, " + Stream().Name() + ", " + name_;
}

}  // namespace hylden
