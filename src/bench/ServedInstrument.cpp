#include "bench/ServedInstrument.h"

#include <algorithm>

namespace hylden {

std::string ServedInstrument::Obey(const std::string& message) {
  const VirtualBus& bus = bus_.Bus();
  if (!bus_.Send(address_, message + bus.TerminatorOf(address_), 0)) return {};
  const auto ready = bus.AnswerReadyMs(address_);
  if (!ready) return {};
  const auto answer =
      bus_.Receive(address_, gpib::kStopEnd, std::max<std::int64_t>(*ready - bus_.TheClock().TickMs(), 0));
  if (!answer) return {};
  return answer->Text.ends_with('\n') ? answer->Text : answer->Text + '\n';
}

}  // namespace hylden
