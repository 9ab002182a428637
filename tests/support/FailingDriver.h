#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "support/BusTranscript.h"
#include "support/CallFailures.h"

namespace hylden {

/// Passes every call on to another driver, lets chosen calls fail without reaching it, and spoils answers. Reads are
/// counted from now (1 is the next); those under the 30 ms time limit (drains) don't count. A send that times out
/// leaves all but the end of its command in the device, which takes the next one onto that tail.
class FailingDriver : public GpibDriver, public CallFailures {
 public:
  explicit FailingDriver(GpibDriver& inner) : inner_(&inner) {}
  /// Passes the calls on to this one instead; before the first call.
  void PassTo(GpibDriver& inner) { inner_ = &inner; }

  /// The n-th read brings these bytes instead; the device's own answer is read and lost.
  void GarbleReceive(int n, const std::string& bytes) { garbled_[reads_ + n] = bytes; }
  /// The n-th read ends with EABO and TIMO; the device's own answer is read and lost.
  void SilenceReceive(int n) { garbled_[reads_ + n] = std::nullopt; }

  int Reads() const { return reads_; }
  /// What a real bus would have waited in calls that timed out, each under the limit in force, s.
  double FrozenSeconds() const { return frozenSeconds_; }
  /// The commands that an address was sent, failed ones too.
  const std::vector<std::string>& SentTo(int address) { return sent_[address]; }

  int RegisterGpibGlobalsForThread(GpibStatusCells& cells) override;
  int UnregisterGpibGlobalsForThread() override;
  void SendIFC(int board) override;
  void FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) override;
  void SetRWLS(int board, std::span<const std::int16_t> addresses) override;
  void EnableLocal(int board, std::span<const std::int16_t> addresses) override;
  void Send(int board, int address, std::string_view bytes, int eotMode) override;
  void Receive(int board, int address, std::span<char> buffer, int termination) override;
  void ibtmo(int board, int code) override;
  std::string Way(int address) const override { return inner_->Way(address); }

 private:
  /// Whether the call with this transcript line fails; it has then.
  bool Fails(const std::string& line);

  GpibDriver* inner_;
  GpibStatusCells* cells_ = nullptr;
  int reads_ = 0;
  int timeLimit_ = gpib::kT10s;
  double frozenSeconds_ = 0;
  std::map<int, std::vector<std::string>> sent_;
  std::map<int, std::string> tails_;
  std::map<int, std::optional<std::string>> garbled_;
};

}  // namespace hylden
