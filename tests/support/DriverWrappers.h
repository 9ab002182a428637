#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "support/BusTranscript.h"
#include "support/CallFailures.h"

namespace hylden {

/// Passes every call on to another driver and remembers the status cells; the base of its wrappers.
class DriverWrapper : public GpibDriver {
 public:
  explicit DriverWrapper(GpibDriver& inner) : inner_(inner) {}
  int RegisterGpibGlobalsForThread(GpibStatusCells& cells) override;
  int UnregisterGpibGlobalsForThread() override;
  void SendIFC(int board) override;
  void FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) override;
  void SetRWLS(int board, std::span<const std::int16_t> addresses) override;
  void EnableLocal(int board, std::span<const std::int16_t> addresses) override;
  void Send(int board, int address, std::string_view bytes, int eotMode) override;
  void Receive(int board, int address, std::span<char> buffer, int termination) override;
  void ibtmo(int board, int code) override;

 protected:
  /// Every call passes here with its transcript line; `call` does the work.
  virtual void Around(const std::string& line, const std::function<void()>& call) = 0;
  virtual void AroundReceive(int address, std::span<char> buffer, const std::function<void()>& call) = 0;

  GpibDriver& inner_;
  GpibStatusCells* cells_ = nullptr;
};

/// Lets chosen calls fail without reaching the driver behind, and spoils answers. Reads are counted from now (1 is the
/// next); those under the 30 ms time limit (drains) don't count.
class FailingDriver : public DriverWrapper, public CallFailures {
 public:
  using DriverWrapper::DriverWrapper;

  /// The n-th read brings these bytes instead; the device's own answer is read and lost.
  void GarbleReceive(int n, const std::string& bytes) { garbled_[reads_ + n] = bytes; }
  /// The n-th read ends with EABO and TIMO; the device's own answer is read and lost.
  void SilenceReceive(int n) { garbled_[reads_ + n] = std::nullopt; }

  int Reads() const { return reads_; }
  /// What a real bus would have waited in calls that timed out, each under the limit in force, s.
  double FrozenSeconds() const { return frozenSeconds_; }
  /// The commands that an address was sent, failed ones too.
  const std::vector<std::string>& SentTo(int address) { return sent_[address]; }

  void Send(int board, int address, std::string_view bytes, int eotMode) override;

  void ibtmo(int board, int code) override;

 protected:
  void Around(const std::string& line, const std::function<void()>& call) override;
  void AroundReceive(int address, std::span<char> buffer, const std::function<void()>& call) override;

 private:
  void Fail(int error);

  int reads_ = 0;
  int timeLimit_ = gpib::kT10s;
  double frozenSeconds_ = 0;
  std::map<int, std::vector<std::string>> sent_;
  std::map<int, std::optional<std::string>> garbled_;
};

}  // namespace hylden
