#include "bench/ServedBus.h"

#include <array>
#include <utility>

namespace hylden {

ServedBus::ServedBus(VirtualBus& bus, const Clock& clock) : bus_(bus), clock_(clock) {
  bus_.UnregisterGpibGlobalsForThread();
  bus_.RegisterGpibGlobalsForThread(cells_);
  bus_.passTime = [this](std::int64_t milliseconds) { passedMs_ += milliseconds; };
}

ServedBus::~ServedBus() {
  bus_.passTime = {};
  bus_.UnregisterGpibGlobalsForThread();
}

bool ServedBus::Send(int address, std::string_view bytes, std::int64_t limitMs) {
  bus_.SetTimeLimitMs(limitMs);
  bus_.Send(kBoard, address, bytes, gpib::kDabEnd);
  return Ok();
}

std::optional<ServedBus::Answer> ServedBus::Receive(int address, int termination, std::int64_t limitMs) {
  bus_.SetTimeLimitMs(limitMs);
  std::array<char, 1024> piece{};
  Answer answer;
  while (!answer.Ended) {
    bus_.Receive(kBoard, address, piece, termination);
    if (!Ok()) break;
    answer.Text.append(piece.data(), static_cast<std::size_t>(cells_.longCount));
    answer.Ended = (cells_.status & gpib::kEnd) != 0;
  }
  if (answer.Text.empty()) return std::nullopt;
  return answer;
}

void ServedBus::SetRemote(int address, bool remote) {
  const std::array<std::int16_t, 2> addresses = {static_cast<std::int16_t>(address), gpib::kNoAddr};
  remote ? bus_.SetRWLS(kBoard, addresses) : bus_.EnableLocal(kBoard, addresses);
}

std::int64_t ServedBus::TakePassedMs() {
  return std::exchange(passedMs_, 0);
}

std::optional<ConnectionBreak::Kind> ServedBus::CountMessage() {
  ++messages_;
  if (!break_ || break_->Message != messages_) return std::nullopt;
  return break_->What;
}

}  // namespace hylden
