#include "bench/ServedSession.h"

#include <algorithm>
#include <utility>

namespace hylden {

namespace {

constexpr char kEsc = '\x1b';

bool EndsLine(char byte) {
  return byte == '\r' || byte == '\n';
}

/// As many bytes in as many lines, with none that an answer may hold.
std::string Garbled(std::string answer) {
  std::ranges::replace_if(
      answer, [](char byte) { return !EndsLine(byte); }, '\xff');
  return answer;
}

}  // namespace

void ServedSession::Take(std::string_view bytes) {
  if (hangs_) return;
  if (tooLong_) {
    const std::size_t end = EndOfMessage(bytes);
    if (end == bytes.npos) return;
    bytes.remove_prefix(end);
    tooLong_ = false;
  }
  input_ += bytes;
  DropEmptyLines();
  if (input_.size() < kLongest || EndOfMessage(input_) != input_.npos) return;
  input_.clear();
  tooLong_ = true;
}

std::size_t ServedSession::EndOfMessage(std::string_view bytes) const {
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    if (escapes_ == Escapes::Esc && bytes[at] == kEsc)
      ++at;
    else if (EndsLine(bytes[at]))
      return at;
  }
  return bytes.npos;
}

void ServedSession::DropEmptyLines() {
  input_.erase(input_.begin(), std::ranges::find_if_not(input_, EndsLine));
}

std::string ServedSession::TakeMessage() {
  const std::size_t end = EndOfMessage(input_);
  if (end == input_.npos) return {};
  std::string message = input_.substr(0, end);
  input_.erase(0, end);
  DropEmptyLines();
  return message;
}

bool ServedSession::GetsThrough() {
  const auto fault = bus_.CountMessage();
  closed_ = fault == ConnectionBreak::Kind::Close;
  hangs_ = fault == ConnectionBreak::Kind::Hang;
  if (hangs_) input_.clear();
  garbles_ = garbles_ || fault == ConnectionBreak::Kind::Garble;
  return !closed_ && !hangs_;
}

std::string ServedSession::Serve() {
  const std::int64_t now = bus_.TheClock().TickMs();
  if (now < readyMs_) return {};
  if (!output_.empty()) return std::exchange(output_, {});
  const std::string message = TakeMessage();
  if (message.empty() || !GetsThrough()) return {};
  output_ = Obey(message);
  readyMs_ = now + bus_.TakePassedMs();
  if (garbles_ && !output_.empty()) output_ = Garbled(output_), garbles_ = false;
  return readyMs_ == now ? std::exchange(output_, {}) : std::string();
}

std::optional<std::int64_t> ServedSession::DueInMs() const {
  if (output_.empty() && EndOfMessage(input_) == input_.npos) return std::nullopt;
  return std::max<std::int64_t>(readyMs_ - bus_.TheClock().TickMs(), 0);
}

}  // namespace hylden
