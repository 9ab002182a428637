#pragma once

namespace hylden {

/// The signals of the system, in a program that may have RF on: none of them ends or freezes it unasked.
/// While this object lives, a request to stop (SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPWR, SIGXCPU) only makes a
/// descriptor readable, and the program ends in its own turn, with RF off. All others that would end or stop it, as a
/// reader that closes our output, the job control of the terminal, alarms and a file that may not grow any more, do
/// nothing. A fault of the program itself (SIGSEGV, SIGABRT ...) still ends it.
/// There is one at a time.
class StopSignals {
 public:
  /// @throws RuntimeError when one lives already, or the system has no pipe left
  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// Readable when a request to stop has arrived.
  int Descriptor() const { return wakeUp_; }
  /// Whether one has arrived since the last call.
  bool Take();

 private:
  int wakeUp_ = -1;
};

}  // namespace hylden
