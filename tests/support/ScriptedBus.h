#pragma once

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "support/BusTranscript.h"
#include "support/CallFailures.h"

namespace hylden {

/// A bus whose devices answer from a script; its transcript keeps every call (see BusTranscript for the form).
/// Every address listens unless it is in `absent`. A read takes the next scripted answer of the address, then what
/// `fallback` says, and otherwise ends with EABO and TIMO. An answer that the read's termination or buffer cuts leaves
/// its rest for the next read. Under the 30 ms time limit a read finds only such a rest or a stale answer, so drains
/// use up no scripted answers.
class ScriptedBus : public GpibDriver, public CallFailures {
 public:
  void Answer(int address, const std::string& bytes) { answers_[address].push_back(bytes); }
  void Answers(int address, const std::vector<std::string>& list);
  /// One read in which the device says nothing.
  void Silence(int address) { answers_[address].push_back(std::nullopt); }
  /// Bytes of an earlier measurement that wait in the device; a drain, or else the next read, finds them.
  void StaleAnswer(int address, const std::string& bytes) { rest_[address] += bytes; }
  /// What a device without a scripted answer says to its last command; nothing is silence.
  std::function<std::optional<std::string>(int address, const std::string& lastCommand)> fallback;

  /// Addresses where nobody listens: ENOL on a send, silence on a read.
  std::set<int> absent;

  /// What the driver says beside its status.
  std::string advice;
  /// How it reaches an address.
  std::function<std::string(int address)> wayOf;

  /// Results for the next registrations; 0 when none is left.
  std::deque<int> registrationResults;
  /// "REGISTER" and "UNREGISTER", kept apart from the transcript.
  std::vector<std::string> registrations;

  BusTranscript transcript;
  const std::vector<std::string>& Lines() const { return transcript.Lines(); }

  int RegisterGpibGlobalsForThread(GpibStatusCells& cells) override;
  int UnregisterGpibGlobalsForThread() override;
  void SendIFC(int board) override;
  void FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) override;
  void SetRWLS(int board, std::span<const std::int16_t> addresses) override;
  void EnableLocal(int board, std::span<const std::int16_t> addresses) override;
  void Send(int board, int address, std::string_view bytes, int eotMode) override;
  void Receive(int board, int address, std::span<char> buffer, int termination) override;
  void ibtmo(int board, int code) override;
  std::string Advice() const override { return advice; }
  std::string Way(int address) const override { return wayOf ? wayOf(address) : std::string(); }

 private:
  void Plain(const std::string& line);
  std::optional<std::string> NextAnswer(int address);

  GpibStatusCells* cells_ = nullptr;
  int timeLimit_ = gpib::kT10s;
  std::map<int, std::deque<std::optional<std::string>>> answers_;
  std::map<int, std::string> rest_;
  std::map<int, std::string> lastCommand_;
};

}  // namespace hylden
