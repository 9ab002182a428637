#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace hylden {

/// The cells in which a driver leaves the status of its last call.
struct GpibStatusCells {
  std::int32_t status = 0;
  std::int32_t error = 0;
  std::int32_t count = 0;
  std::int32_t longCount = 0;
};

namespace gpib {
constexpr int kErr = 0x8000, kTimo = 0x4000, kEnd = 0x2000, kCmpl = 0x0100, kCic = 0x0020;    // status bits
constexpr int kEdvr = 0, kEcic = 1, kEnol = 2, kEabo = 6, kEneb = 7, kEoip = 10, kEcap = 11;  // error codes
constexpr int kDabEnd = 2;                          // end-of-transmission mode: EOI with the last byte
constexpr int kStopEnd = 0x100;                     // Receive termination: at EOI only
constexpr std::int16_t kNoAddr = -1;                // address list terminator
constexpr int kT30ms = 8, kT100ms = 9, kT10s = 13;  // time-limit codes; the next lower one is about a third
}  // namespace gpib

/// The calls of an NI-488.2 driver that the program uses; every call leaves its outcome in the registered cells.
/// Implementations: the machine's library (platform/native), the simulated bench, and the tests' scripted bus.
class GpibDriver {
 public:
  virtual ~GpibDriver() = default;
  /// Registers the cells. 0 registered, 1 already registered for this thread, 2 no threads on this system, 3 refused.
  /// The cells must outlive the registration.
  virtual int RegisterGpibGlobalsForThread(GpibStatusCells& cells) = 0;
  virtual int UnregisterGpibGlobalsForThread() = 0;
  virtual void SendIFC(int board) = 0;
  /// Writes the addresses that listen, at most `results.size()`, into `results`.
  virtual void FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) = 0;
  virtual void SetRWLS(int board, std::span<const std::int16_t> addresses) = 0;
  virtual void EnableLocal(int board, std::span<const std::int16_t> addresses) = 0;
  virtual void Send(int board, int address, std::string_view bytes, int eotMode) = 0;
  /// Reads into the buffer until the termination, its end or the time limit; the byte count is in the cells.
  virtual void Receive(int board, int address, std::span<char> buffer, int termination) = 0;
  virtual void ibtmo(int board, int code) = 0;
  /// Why the last call did not get as far as the bus, in words, and what to do about it; empty where the status says
  /// all.
  virtual std::string Advice() const { return {}; }
  /// How an address is reached, in words: the connection, and what library or adapter say of their version.
  virtual std::string Way(int /*address*/) const { return {}; }
  /// What a library wrote to standard error since this was last asked.
  virtual std::string TakeChatter() { return {}; }
};

}  // namespace hylden
