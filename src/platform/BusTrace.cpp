#include "platform/BusTrace.h"

#include <utility>

namespace hylden {

void BusTrace::Add(BusEvent event) {
  const bool isOfDevice = event.Address >= 0 && event.Address < static_cast<int>(kAddresses);
  if (isOfDevice && event.Call != BusCall::Note) lastStatus_[static_cast<std::size_t>(event.Address)] = event.Status;
  if (onEvent) onEvent(event);
  if (events_.size() < kCapacity)
    events_.push_back(std::move(event));
  else
    events_[end_ % kCapacity] = std::move(event);
  ++end_;
}

std::optional<GpibStatusCells> BusTrace::LastStatus(int address) const {
  if (address < 0 || address >= static_cast<int>(kAddresses)) return std::nullopt;
  return lastStatus_[static_cast<std::size_t>(address)];
}

}  // namespace hylden
