#pragma once

#include "platform/native/StreamGpib.h"

namespace hylden {

/// One instrument that takes its commands as lines over a connection of its own, without a bus. Whatever address it is
/// asked under is its own. Such a connection has no EOI: an LF ends a message, both ways.
/// What it says stays until it is read; but an answer that did not come in time is dropped by the next Send, as it
/// would pass for that of the next question. A connection that broke is made again by the next call. FindLstn succeeds
/// then; a Receive fails, since what there was to read is gone, and so does a Send, although it is sent: the command
/// before may have been lost.
class SocketInstrument : public StreamGpib {
 public:
  explicit SocketInstrument(std::unique_ptr<ByteStream> stream);

  /// Connects anew, and drops what was not read.
  void SendIFC(int board) override;
  /// Finds the instrument when the connection stands or can be made; drops what it said unasked.
  void FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) override;
  /// There is no remote control to take: succeeds, and does nothing.
  void SetRWLS(int board, std::span<const std::int16_t> addresses) override;
  /// Nor to give back. It is the last call to an instrument: fails where what was sent has not reached its machine.
  void EnableLocal(int board, std::span<const std::int16_t> addresses) override;
  void Send(int board, int address, std::string_view bytes, int eotMode) override;
  void Receive(int board, int address, std::span<char> buffer, int termination) override;
  std::string Way(int address) const override;

 private:
  Outcome SetUp(Deadline deadline) override;
  /// Reads away what has come; the connection is made again when that shows that it is gone.
  Outcome Refresh(Deadline deadline);
  /// Moves what is there into the buffer, up to the end of an answer; true when it ended.
  bool Take(std::span<char> buffer, char end, std::size_t& count);

  std::string unread_;
  bool isNew_ = false;          ///< made again since the last Send, without a word of the loss
  bool isLate_ = false;         ///< an answer did not come in time
  bool isLossTold_ = false;     ///< the last Send failed: another loss is no news
  bool skipsLineFeed_ = false;  ///< the last answer was read up to its CR
};

}  // namespace hylden
