#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "bench/VirtualBus.h"

namespace hylden {

/// A misbehaviour of a connection, to be tried on whoever drives the bench over one.
struct ConnectionBreak {
  enum class Kind : int {
    Close,   ///< the message gets lost, and the connection is closed
    Hang,    ///< the message and all that follow on the connection get lost; it stays open
    Garble,  ///< the next answer on the connection holds wrong bytes
  };
  Kind What = Kind::Close;
  int Message = 1;  ///< which one, counted over all connections from 1 on
};

/// The virtual bus as those see it who serve it to clients: answers in place of status words, and the time that the
/// calls would have taken in place of waits. What one client does all others see.
class ServedBus {
 public:
  /// The bus must outlive it, and nobody else may drive it meanwhile.
  explicit ServedBus(VirtualBus& bus, const Clock& clock);
  ~ServedBus();
  ServedBus(const ServedBus&) = delete;
  ServedBus& operator=(const ServedBus&) = delete;

  const Clock& TheClock() const { return clock_; }
  const VirtualBus& Bus() const { return bus_; }

  bool Send(int address, std::string_view bytes, std::int64_t limitMs);
  struct Answer {
    std::string Text;
    bool Ended = false;  ///< up to its end, or to the terminating byte
  };
  /// What the device at the address says, up to the termination (a byte, or gpib::kStopEnd).
  /// @return nothing when nobody says anything within the limit
  std::optional<Answer> Receive(int address, int termination, std::int64_t limitMs);
  void ClearInterface() { bus_.SendIFC(kBoard); }
  void ClearDevice(int address) { bus_.ClearDevice(address); }
  /// With lockout, or back to local.
  void SetRemote(int address, bool remote);

  /// The time that the calls since the last time would have taken, ms.
  std::int64_t TakePassedMs();

  void Break(const ConnectionBreak& at) { break_ = at; }
  /// Counts a message. @return what is to happen to the connection that brought it
  std::optional<ConnectionBreak::Kind> CountMessage();
  /// How many there were.
  int Messages() const { return messages_; }

 private:
  static constexpr int kBoard = 0;

  bool Ok() const { return (cells_.status & gpib::kErr) == 0; }

  VirtualBus& bus_;
  const Clock& clock_;
  GpibStatusCells cells_;
  std::int64_t passedMs_ = 0;
  std::optional<ConnectionBreak> break_;
  int messages_ = 0;
};

}  // namespace hylden
