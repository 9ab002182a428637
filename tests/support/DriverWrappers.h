#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "support/BusTranscript.h"

namespace hylden {

/// Passes every call on to another driver and remembers the status cells; the base of the wrappers below.
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

/// Keeps the transcript of everything that passes.
class RecordingDriver : public DriverWrapper {
 public:
  using DriverWrapper::DriverWrapper;
  BusTranscript transcript;
  const std::vector<std::string>& Lines() const { return transcript.Lines(); }

 protected:
  void Around(const std::string& line, const std::function<void()>& call) override;
  void AroundReceive(int address, std::span<char> buffer, const std::function<void()>& call) override;
};

/// Lets chosen calls fail without reaching the driver behind. Calls and reads are counted from now (1 is the next),
/// reads on their own; reads under the 30 ms time limit (drains) don't count as reads.
class FailingDriver : public DriverWrapper {
 public:
  using DriverWrapper::DriverWrapper;

  void FailCall(int n, int error) { failures_[calls_ + n] = error; }
  /// Fails the next call whose transcript line begins with this text ("> 18 RF", "< 13").
  void FailLine(const std::string& beginning, int error) { lineFailures_.emplace_back(beginning, error); }
  /// Fails every call from the n-th on; nothing mends it.
  void FailFrom(int n, int error) { failFrom_ = {calls_ + n, error}; }
  /// The n-th read brings these bytes instead; the device's own answer is read and lost.
  void GarbleReceive(int n, const std::string& bytes) { garbled_[reads_ + n] = bytes; }
  /// The n-th read ends with EABO and TIMO; the device's own answer is read and lost.
  void SilenceReceive(int n) { garbled_[reads_ + n] = std::nullopt; }

  int Calls() const { return calls_; }
  int Reads() const { return reads_; }

  void ibtmo(int board, int code) override;

 protected:
  void Around(const std::string& line, const std::function<void()>& call) override;
  void AroundReceive(int address, std::span<char> buffer, const std::function<void()>& call) override;

 private:
  std::optional<int> ScriptedFailure(const std::string& line);

  int calls_ = 0;
  int reads_ = 0;
  int timeLimit_ = gpib::kT10s;
  std::map<int, int> failures_;
  std::vector<std::pair<std::string, int>> lineFailures_;
  std::optional<std::pair<int, int>> failFrom_;
  std::map<int, std::optional<std::string>> garbled_;
};

}  // namespace hylden
