#pragma once

#include <string>

#include "platform/BusTrace.h"
#include "platform/GpibDriver.h"

namespace hylden {

class Clock;

/// A driver whose every call is kept in a trace, with what its library wrote meanwhile and, after a failure, its
/// advice.
class TracedGpib final : public GpibDriver {
 public:
  /// Driver and clock must outlive it.
  TracedGpib(GpibDriver& inner, const Clock& clock) : inner_(inner), clock_(clock) {}

  BusTrace& Trace() { return trace_; }
  const BusTrace& Trace() const { return trace_; }

  int RegisterGpibGlobalsForThread(GpibStatusCells& cells) override;
  int UnregisterGpibGlobalsForThread() override;
  void SendIFC(int board) override;
  void FindLstn(int board, std::span<const std::int16_t> addresses, std::span<std::int16_t> results) override;
  void SetRWLS(int board, std::span<const std::int16_t> addresses) override;
  void EnableLocal(int board, std::span<const std::int16_t> addresses) override;
  void Send(int board, int address, std::string_view bytes, int eotMode) override;
  void Receive(int board, int address, std::span<char> buffer, int termination) override;
  void ibtmo(int board, int code) override;
  std::string Advice() const override { return inner_.Advice(); }
  std::string Way(int address) const override { return inner_.Way(address); }
  /// What is in the trace already is still to be had here.
  std::string TakeChatter() override;

 private:
  BusEvent Begin(BusCall call) const;
  /// Adds the event of a call that has returned, and what came beside it.
  void Finish(BusEvent event);
  void AddNote(const std::string& words);
  template <class Call>
  void TraceList(BusCall what, std::span<const std::int16_t> addresses, Call call);

  GpibDriver& inner_;
  const Clock& clock_;
  const GpibStatusCells* cells_ = nullptr;
  BusTrace trace_;
  std::string chatter_;     ///< that nobody has taken yet
  std::string lastAdvice_;  ///< that stands in the trace
};

}  // namespace hylden
