#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "platform/BusEvent.h"

namespace hylden {

/// The last events of the bus, numbered from 0 on; the oldest go. What an event is as text is worked out only by
/// whoever shows it.
class BusTrace {
 public:
  static constexpr std::size_t kCapacity = 10'000;  ///< events
  static constexpr std::size_t kBytesKept = 1024;   ///< of an event; it tells how many there were

  void Add(BusEvent event);

  /// The number of the oldest event that is kept, and one beyond that of the newest.
  std::uint64_t Begin() const { return end_ - events_.size(); }
  std::uint64_t End() const { return end_; }
  /// @pre the event is kept
  const BusEvent& operator[](std::uint64_t number) const { return events_[number % kCapacity]; }

  /// How the last call to this device ended; nothing where there was none.
  std::optional<GpibStatusCells> LastStatus(int address) const;

  /// Called with every event, in the thread of the call.
  std::function<void(const BusEvent&)> onEvent;

 private:
  static constexpr std::size_t kAddresses = 31;

  std::vector<BusEvent> events_;  ///< a ring once it is full
  std::uint64_t end_ = 0;
  std::array<std::optional<GpibStatusCells>, kAddresses> lastStatus_;
};

}  // namespace hylden
