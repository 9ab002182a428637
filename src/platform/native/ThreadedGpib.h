#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "platform/GpibDriver.h"

namespace hylden {

class EventLoop;

/// How long a bus call is waited for, and how.
struct BusPatience {
  using Time = std::chrono::microseconds;
  Time Plain = std::chrono::milliseconds(200);  ///< without a turn of the event loop
  Time Turn = std::chrono::milliseconds(20);    ///< from then on, between two of its turns
  Time Grace = std::chrono::milliseconds(100);  ///< beyond the time limit in force and a tenth of it
  Time Late = std::chrono::seconds(2);          ///< for a call that was given up, by all calls behind it together; at
                                                ///< least as long as its time limit
};

/// Does the calls of another driver on a thread of their own, one and the same for all of them: libraries keep their
/// status by thread. While a call takes long, the windows are repainted and Halt is taken.
/// A call that has not returned when the time limit in force and a grace are over is given up: ERR, TIMO and EABO, told
/// by Advice. It works on copies, so what it still does reaches nobody. Those behind it fail with EOIP until it has
/// returned.
class ThreadedGpib : public GpibDriver {
 public:
  /// @param events  gets a turn while a call takes long; must outlive this object
  ThreadedGpib(std::unique_ptr<GpibDriver> driver, EventLoop& events, const BusPatience& patience = {});
  /// Waits for no call: the driver of one that does not return is left to it.
  ~ThreadedGpib() override;
  ThreadedGpib(const ThreadedGpib&) = delete;
  ThreadedGpib& operator=(const ThreadedGpib&) = delete;

  int RegisterGpibGlobalsForThread(GpibStatusCells& cells) override;
  int UnregisterGpibGlobalsForThread() override;
  void SendIFC(int board) override;
  void FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) override;
  void SetRWLS(int board, std::span<const std::int16_t> addresses) override;
  void EnableLocal(int board, std::span<const std::int16_t> addresses) override;
  void Send(int board, int address, std::string_view bytes, int eotMode) override;
  void Receive(int board, int address, std::span<char> buffer, int termination) override;
  void ibtmo(int board, int code) override;
  std::string Advice() const override { return advice_; }
  std::string Way(int address) const override;
  std::string TakeChatter() override;

 private:
  struct Call;
  struct Worker;
  using Work = std::function<void(GpibDriver& driver)>;
  using Instant = std::chrono::steady_clock::time_point;

  static void DoCalls(Worker& worker);
  static void DoCall(Worker& worker, Call& call);
  /// Has a call done, and waits for it. Its work must own what it works on.
  /// @return the call; one that failed where it was not done
  std::shared_ptr<Call> Do(const std::string& name, Work work) const;
  /// The failure of a call that comes while another one is stuck.
  std::shared_ptr<Call> Refused() const;
  /// Makes a call's status and advice those of this driver. @return whether it was done
  bool TakeOver(const Call& call);
  /// Both at once.
  bool Done(const std::string& name, Work work);
  template <class Condition>
  bool Await(Condition condition, Instant deadline) const;
  bool IsBusy() const;

  EventLoop& events_;
  const BusPatience patience_;
  std::shared_ptr<Worker> worker_;
  std::thread thread_;
  GpibStatusCells* cells_ = nullptr;
  std::string advice_;
};

}  // namespace hylden
