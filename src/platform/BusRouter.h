#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/GpibDriver.h"

namespace hylden {

/// Several ways to the instruments under one bus: each call goes to the driver of its address. Every way leaves its own
/// status words and advice.
/// The interface clear is only noted. A way is cleared, and thereby connected, by the first call to one of its
/// addresses and, where that failed, by each FindLstn until it gets through. So a way that is not there fails where it
/// is needed, and holds up nobody else.
class BusRouter : public GpibDriver {
 public:
  /// @param others  the way of each address that has none of its own
  /// @param ways    by address; several may share a driver. All of them must outlive the router.
  BusRouter(GpibDriver& others, std::map<int, GpibDriver*> ways);

  int RegisterGpibGlobalsForThread(GpibStatusCells& cells) override;
  int UnregisterGpibGlobalsForThread() override;
  void SendIFC(int board) override;
  void FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) override;
  void SetRWLS(int board, std::span<const std::int16_t> addresses) override;
  void EnableLocal(int board, std::span<const std::int16_t> addresses) override;
  void Send(int board, int address, std::string_view bytes, int eotMode) override;
  void Receive(int board, int address, std::span<char> buffer, int termination) override;
  void ibtmo(int board, int code) override;
  std::string Advice() const override { return last_->Advice(); }
  std::string Way(int address) const override { return To(address).Way(address); }
  std::string TakeChatter() override;

 private:
  GpibDriver& To(int address) const;
  bool Failed() const { return cells_ && (cells_->status & gpib::kErr) != 0; }
  /// Makes the driver the one of the last call, and clears it if it waits for that.
  /// @param again  also where that failed before
  /// @return whether it can be called; the status says why not
  bool IsReady(GpibDriver& driver, int board, bool again = false);
  /// Does a call on every way of the list, with the part of the list that it serves, until a call returns false.
  template <class Call>
  void Spread(std::span<const std::int16_t> addresses, Call call);

  enum class Clear { Due, Failed, Done };

  GpibDriver& others_;
  const std::map<int, GpibDriver*> ways_;
  std::vector<GpibDriver*> drivers_;  ///< each once, the others' first
  GpibDriver* last_;
  std::map<const GpibDriver*, Clear> clears_;
  GpibStatusCells* cells_ = nullptr;
};

}  // namespace hylden
