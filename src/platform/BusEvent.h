#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/GpibDriver.h"

namespace hylden {

/// What an event of the bus is: a call of its driver, or words that came beside one.
enum class BusCall : std::uint8_t { Register, Unregister, Clear, Find, Remote, Local, Send, Receive, TimeLimit, Note };

/// One event of the bus.
struct BusEvent {
  static constexpr int kNoAddress = -1;

  BusCall Call = BusCall::Note;
  int Address = kNoAddress;         ///< of one device; none where several, or the bus itself, are meant
  double SecondsSinceMidnight = 0;  ///< when it began
  std::int64_t DurationMs = 0;
  /// Of a transfer its bytes, of a note its words, of other calls the addresses; a bounded part of them.
  std::string Bytes;
  std::string Found;      ///< the addresses that listen
  std::size_t Count = 0;  ///< of all bytes of the transfer
  int Argument = 0;  ///< end mode of a Send, termination of a Receive, code of a time limit, result of a registration
  GpibStatusCells Status = {};  ///< left by the call

  bool Failed() const { return (Status.status & gpib::kErr) != 0; }
  bool IsTransfer() const { return Call == BusCall::Send || Call == BusCall::Receive; }
};

/// Bytes in quotes as text that is exact and has one reading: \r \n \t \\ \" and \xNN for what is no ASCII character.
std::string QuotedBytes(std::string_view bytes);

/// The bytes of a transfer, their count and whether the message ended with them: "\"ID?\\n\" 4 EOI". Behind bytes that
/// are not kept to their end stands "...".
std::string TransferText(const BusEvent& event);

/// The event as a line without its end: time, direction, address, what went there, how it failed, how long it took.
///   09:00:00.125 -> 18 "FREQ 100.0 MHZ\r\n" 16 EOI, 2 ms
///   09:00:00.130 <- 13 "72.669" 6 END, 5 ms
///   09:00:10.140 <- 13 "" 0 EABO TIMO, 10000 ms
///   09:00:10.150 --    find 0..30: 7 13 18, 3 ms
std::string LineOf(const BusEvent& event);

}  // namespace hylden
