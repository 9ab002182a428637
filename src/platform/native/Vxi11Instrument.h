#pragma once

#include "platform/native/OncRpc.h"
#include "platform/native/StreamGpib.h"

namespace hylden {

/// One instrument in the network that speaks VXI-11. Whatever address it is asked under is its own. An answer ends with
/// the instrument's END; what does not fit in the buffer stays there for the next Receive.
/// A connection that broke is made again by the next call; a Receive makes it again too, but fails: what there was to
/// read is gone.
class Vxi11Instrument : public StreamGpib {
 public:
  static constexpr std::uint32_t kProgram = 0x0607AF, kVersion = 1;

  /// @param stream  to the instrument's core channel
  /// @param name    of the instrument behind it
  explicit Vxi11Instrument(std::unique_ptr<ByteStream> stream, std::string name = "inst0");
  ~Vxi11Instrument() override;

  /// Connects anew.
  void SendIFC(int board) override;
  void FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) override;
  /// An instrument that knows neither remote nor local stays as it is.
  void SetRWLS(int board, std::span<const std::int16_t> addresses) override;
  void EnableLocal(int board, std::span<const std::int16_t> addresses) override;
  void Send(int board, int address, std::string_view bytes, int eotMode) override;
  void Receive(int board, int address, std::span<char> buffer, int termination) override;
  std::string Way(int address) const override;

 private:
  /// Connects where there is no link.
  Outcome Linked(Deadline deadline);
  /// Makes the link to the instrument.
  Outcome SetUp(Deadline deadline) override;
  /// A call of the core channel, up to the error code that its results begin with; that it is told makes it Lost.
  Outcome Call(std::uint32_t procedure, const XdrWriter& arguments, std::string& results, Deadline deadline);
  /// A call without data; one that the instrument does not know is done.
  Outcome Switch(std::uint32_t procedure, Deadline deadline);
  void SwitchLinked(int board, std::uint32_t procedure);
  Outcome WritePiece(std::string_view piece, bool isEnd, Deadline deadline);
  Outcome ReadPiece(std::span<char> buffer, int termination, Deadline deadline, std::size_t& count, bool& isEnded);
  /// Fails: what was answered is no answer to that call.
  Outcome Nonsense();
  XdrWriter OfLink() const;

  const std::string name_;
  OncRpc rpc_{Stream()};
  std::uint32_t link_ = 0, mostBytes_ = 0;
  std::uint32_t error_ = 0;  ///< that the instrument told last
  bool isLinked_ = false;
  bool isHalfSent_ = false;  ///< of a command the instrument may have the half
};

}  // namespace hylden
