#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "platform/native/TcpStream.h"
#include "support/ScriptedPeer.h"

namespace hylden {

/// A bus driver over a stream, and what its calls come to.
template <class Driver>
struct StreamDriver {
  template <class... Arguments>
  explicit StreamDriver(std::unique_ptr<ByteStream> stream, Arguments... arguments)
      : driver(std::move(stream), arguments...) {
    driver.RegisterGpibGlobalsForThread(cells);
  }
  explicit StreamDriver(const ScriptedPeer& peer)
      : StreamDriver(std::make_unique<TcpStream>("127.0.0.1", peer.Port())) {}

  bool Ok() const { return (cells.status & gpib::kErr) == 0; }
  bool Ended() const { return (cells.status & gpib::kEnd) != 0; }
  bool IsLost() const { return cells.status == (gpib::kErr | gpib::kCmpl) && cells.error == gpib::kEdvr; }
  bool IsLate() const {
    return cells.status == (gpib::kErr | gpib::kTimo | gpib::kCmpl | gpib::kCic) && cells.error == gpib::kEabo;
  }
  bool Clear() { return driver.SendIFC(0), Ok(); }
  bool Send(const std::string& text, int address = 18) { return driver.Send(0, address, text, gpib::kDabEnd), Ok(); }
  /// What was received, also when it failed.
  std::string Receive(int termination, std::size_t size = 64, int address = 18) {
    std::vector<char> buffer(size);
    driver.Receive(0, address, buffer, termination);
    return {buffer.data(), static_cast<std::size_t>(cells.longCount)};
  }
  void Hurry() { driver.ibtmo(0, gpib::kT30ms); }

  Driver driver;
  GpibStatusCells cells;
};

}  // namespace hylden
