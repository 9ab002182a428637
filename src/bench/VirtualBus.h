#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "bench/BenchFault.h"
#include "bench/VirtualInstrument.h"
#include "platform/Clock.h"
#include "platform/GpibDriver.h"

namespace hylden {

/// Board 0 with virtual instruments by address. No call blocks: what would wait for its time limit fails at once. An
/// answer stays with its instrument until it is read, so a reader that is one answer behind stays behind, as on a real
/// bus; a new question replaces an answer that nobody fetched, unless that one was late.
class VirtualBus : public GpibDriver {
 public:
  /// The clock must outlive the bus.
  explicit VirtualBus(const Clock& clock) : clock_(clock) {}

  /// Takes all instruments away.
  void Clear();
  /// Puts an instrument at an address, 0 to 30; several there are one device with several command sets.
  void Attach(int address, VirtualInstrument& instrument);
  void Inject(const BenchFault& fault) { faults_.push_back({fault, fault.Call}); }

  /// A message that no instrument at its address understood.
  struct UnknownCommand {
    int Address = 0;
    std::string Text;
  };
  /// The first hundred of them.
  const std::vector<UnknownCommand>& UnknownCommands() const { return unknown_; }
  /// How many there were.
  int UnknownCount() const { return unknownCount_; }
  /// Whether somebody listens at the address.
  bool Listens(int address) const;
  /// Whether the device at the address was put in remote and not yet returned to local.
  bool IsRemote(int address) const;

  /// What ends the messages to the device at the address; nothing where none stands.
  std::string TerminatorOf(int address) const;
  /// When the device at the address has an answer for whoever reads it; nothing when it has none.
  std::optional<std::int64_t> AnswerReadyMs(int address) const;
  /// The device forgets the answers that nobody has fetched.
  void ClearDevice(int address);
  /// The time limit of the calls to come, as ibtmo sets it by its code.
  void SetTimeLimitMs(std::int64_t milliseconds) { timeLimitMs_ = milliseconds; }

  /// Told what time a call takes on a real bus, ms: a command about 2, a read that nobody answers its time limit. A
  /// virtual clock can be advanced here; nothing by default.
  std::function<void(std::int64_t)> passTime;
  /// Called when a fault puts the amplifier in protection.
  std::function<void()> protectAmplifier;

  int RegisterGpibGlobalsForThread(GpibStatusCells& cells) override;
  int UnregisterGpibGlobalsForThread() override;
  void SendIFC(int board) override;
  void FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) override;
  void SetRWLS(int board, std::span<const std::int16_t> addresses) override;
  void EnableLocal(int board, std::span<const std::int16_t> addresses) override;
  void Send(int board, int address, std::string_view bytes, int eotMode) override;
  void Receive(int board, int address, std::span<char> buffer, int termination) override;
  void ibtmo(int board, int code) override;
  std::string Way(int /*address*/) const override { return "simulated bench"; }

 private:
  struct Answer {
    std::string Text;
    std::int64_t ReadyMs = 0;
    bool Late = false;
  };
  struct Device {
    std::vector<VirtualInstrument*> Instruments;
    std::deque<Answer> Answers;
    bool Absent = false, Remote = false;
  };
  struct PendingFault {
    BenchFault Fault;
    int Left;
  };

  /// Counts a call; true when it fails by a fault, with the status set.
  bool Refused(int board, Device* device);
  bool Due(PendingFault& pending, const Device* device, BenchRole role);
  Device* At(int address);
  const Device* At(int address) const;
  void Queue(Device& device, BenchRole role, std::string text);
  void Deliver(Device& device, std::span<char> buffer, int termination);
  void SetRemote(int board, std::span<const std::int16_t> addresses, bool remote);
  void Succeed(std::size_t count, int extraStatus = 0);
  void Fail(int error, int extraStatus = 0);
  void Pass(std::int64_t milliseconds);

  const Clock& clock_;
  GpibStatusCells* cells_ = nullptr;
  std::array<Device, 31> devices_;
  std::vector<PendingFault> faults_;
  std::vector<UnknownCommand> unknown_;
  int unknownCount_ = 0;
  std::int64_t timeLimitMs_ = 10000;
};

}  // namespace hylden
