#include "platform/native/OncRpc.h"

#include <algorithm>
#include <chrono>

namespace hylden {

namespace {

constexpr std::uint32_t kCall = 0, kReply = 1, kRpcVersion = 2, kAccepted = 0, kNoCredentials = 0;
constexpr std::uint32_t kSuccess = 0, kNoSuchProcedure = 3;
constexpr std::uint32_t kLastFragment = 0x80000000;
constexpr std::size_t kWord = 4, kPiece = 4096;
constexpr std::size_t kLongestRecord = 1 << 24;  // more is no reply of an instrument

}  // namespace

XdrWriter& XdrWriter::Number(std::uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) bytes_ += static_cast<char>(value >> shift & 0xFF);
  return *this;
}

XdrWriter& XdrWriter::Opaque(std::string_view bytes) {
  Number(static_cast<std::uint32_t>(bytes.size()));
  bytes_ += bytes;
  bytes_.append((kWord - bytes.size() % kWord) % kWord, '\0');
  return *this;
}

std::string_view XdrReader::Take(std::size_t count) {
  isWhole_ = isWhole_ && count <= bytes_.size();
  if (!isWhole_) return {};
  const std::string_view taken = bytes_.substr(0, count);
  bytes_.remove_prefix(count);
  return taken;
}

std::uint32_t XdrReader::Number() {
  std::uint32_t value = 0;
  for (const char byte : Take(kWord)) value = value << 8 | static_cast<unsigned char>(byte);
  return value;
}

std::string_view XdrReader::Opaque() {
  const std::size_t length = Number();
  const std::string_view bytes = Take(length);
  Take((kWord - length % kWord) % kWord);
  return bytes;
}

OncRpc::Outcome OncRpc::Call(std::uint32_t program, std::uint32_t version, std::uint32_t procedure,
                             const XdrWriter& arguments, std::string& results, Deadline deadline) {
  fault_.clear();
  isHalfWritten_ = isUnknown_ = false;
  XdrWriter message;
  message.Number(++lastCall_).Number(kCall).Number(kRpcVersion).Number(program).Number(version).Number(procedure);
  message.Number(kNoCredentials).Number(0).Number(kNoCredentials).Number(0);
  const std::string bytes = message.Bytes() + arguments.Bytes();
  const std::string header = XdrWriter().Number(kLastFragment | static_cast<std::uint32_t>(bytes.size())).Bytes();
  const Outcome written = stream_.Write(header + bytes, deadline);
  isHalfWritten_ = written != Outcome::Done;
  if (isHalfWritten_) return written;
  do {
    std::string record;
    if (const Outcome read = ReadRecord(record, deadline); read != Outcome::Done) return read;
    XdrReader reply(record);
    if (reply.Number() != lastCall_ || reply.Number() != kReply) continue;  // of a call that had timed out
    const bool isAccepted = reply.Number() == kAccepted;
    reply.Number();  // what the other end says of itself
    reply.Opaque();
    const std::uint32_t outcome = reply.Number();
    if (!reply.IsWhole()) return Nonsense();
    results = reply.Rest();
    if (isAccepted && outcome == kSuccess) return Outcome::Done;
    isUnknown_ = isAccepted && outcome == kNoSuchProcedure;
    fault_ = stream_.Name() + " answers, but does not know the call.";
    return Outcome::Lost;
  } while (std::chrono::steady_clock::now() < deadline);
  return Outcome::TimedOut;
}

OncRpc::Outcome OncRpc::Nonsense() {
  fault_ = stream_.Name() + " does not speak as an instrument does.";
  return Outcome::Lost;
}

OncRpc::Outcome OncRpc::Await(std::size_t count, Deadline deadline) {
  while (received_.size() < count) {
    if (const Outcome read = stream_.Read(received_, kPiece, deadline); read != Outcome::Done) return read;
    // A source that never ends is never late.
    if (received_.size() < count && std::chrono::steady_clock::now() >= deadline) return Outcome::TimedOut;
  }
  return Outcome::Done;
}

/// What was received of a record stays when it does not come whole.
OncRpc::Outcome OncRpc::ReadRecord(std::string& record, Deadline deadline) {
  std::string fragments;
  for (std::size_t at = 0;;) {
    if (const Outcome outcome = Await(at + kWord, deadline); outcome != Outcome::Done) return outcome;
    const std::uint32_t header = XdrReader(std::string_view(received_).substr(at)).Number();
    const std::uint32_t length = header & ~kLastFragment;
    if (at + length > kLongestRecord) return Nonsense();
    if (const Outcome outcome = Await(at + kWord + length, deadline); outcome != Outcome::Done) return outcome;
    fragments += received_.substr(at + kWord, length);
    at += kWord + length;
    if ((header & kLastFragment) == 0) continue;
    received_.erase(0, at);
    record = std::move(fragments);
    return Outcome::Done;
  }
}

}  // namespace hylden
