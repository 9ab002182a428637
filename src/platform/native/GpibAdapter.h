#pragma once

#include "platform/native/StreamGpib.h"

namespace hylden {

/// A GPIB controller in the network or on a serial line, with the widespread command set of lines that begin with "++".
/// It serves all addresses of its bus.
/// A command is done when the adapter has answered the "++ver" behind it: otherwise one to an adapter that is gone
/// would pass as sent. Whether the instrument took it an adapter does not tell. A connection that broke is made again,
/// and the adapter set up, by the next call; a Receive fails even then.
class GpibAdapter : public StreamGpib {
 public:
  /// The longest time limit that the adapters have for one read, ms; a longer one is many reads.
  static constexpr int kLongestReadMs = 3000;

  explicit GpibAdapter(std::unique_ptr<ByteStream> stream, int longestReadMs = kLongestReadMs);

  /// Connects anew, sets the adapter up, and clears the interface.
  void SendIFC(int board) override;
  /// ECAP: an adapter can't tell who listens. It is made sure that the adapter is there.
  void FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) override;
  void SetRWLS(int board, std::span<const std::int16_t> addresses) override;
  void EnableLocal(int board, std::span<const std::int16_t> addresses) override;
  void Send(int board, int address, std::string_view bytes, int eotMode) override;
  void Receive(int board, int address, std::span<char> buffer, int termination) override;
  std::string Way(int address) const override;

 private:
  /// An answer that has not come to its end.
  struct Answer {
    int Address = -1;                      ///< of the instrument; -1: none
    Deadline Until{};                      ///< when the adapter has given up its present read
    std::chrono::milliseconds Patience{};  ///< of the adapter, from its last byte
    int LastByte = -1;                     ///< so far; -1: none has come
    bool IsOver = false;
    bool Skips = false;  ///< it began with what was left of the last one
  };

  Outcome SetUp(Deadline deadline) override;
  Outcome AskVersion(Deadline deadline);
  /// Reads away what the adapter still has to say of former questions, as far as it comes.
  Outcome AwaitVersions(int count, Deadline deadline);
  /// The line that has come first; TimedOut when there is none.
  Outcome ReadLine(std::string& line, Deadline deadline);
  /// Reads away what has come. Lost shows that the connection is gone.
  Outcome Drop();
  /// The lines that turn the adapter to an instrument, with a time limit, where it is not so already.
  std::string Turned(int address, int limitMs);
  /// Writes lines, and waits until the adapter has worked them off.
  Outcome Obey(const std::string& lines, Deadline deadline);
  void ToEach(int board, std::span<const std::int16_t> addresses, const char* command);
  int UsualReadMs() const;
  void Conclude(Outcome outcome, std::size_t count = 0, int extraStatus = 0);

  Outcome ReadAnswer(std::span<char> buffer, int termination, Deadline deadline, std::size_t& count);
  Outcome AskToRead(int termination, Deadline deadline);
  void SkipWhatIsNoAnswer();
  void Take(std::span<char> buffer, int termination, std::size_t& count);

  const int longestReadMs_;
  std::string version_, complaint_, unread_;
  int address_ = -1, readLimitMs_ = -1;  ///< as the adapter has them; -1: not known
  bool owesVersion_ = false;             ///< the last question was not answered
  bool marksEnds_ = false;               ///< it has marked the end of an answer
  int crEndedAddress_ = -1;              ///< whose last answer was read up to its CR
  Answer answer_;
};

}  // namespace hylden
