#pragma once

#include <exception>
#include <functional>
#include <optional>
#include <string>

#include "run/RunOutcome.h"
#include "shell/Failure.h"
#include "shell/RunAtWork.h"

namespace hylden {

class Shell;
class SigGen;

/// Has the instruments for a run, one run at a time, and keeps the promise that it makes to its operator: whatever
/// fails or throws, RF is off before it is told, it is told once, and the end of the run goes on behind it.
class RunGuard : public RunAtWork {
 public:
  RunGuard(Shell& shell, SigGen& sigGen) : shell_(shell), sigGen_(sigGen) {}

  /// Does the run proper, then its end. An exception of the run proper switches RF off at once and is reported; one
  /// that ends the program is thrown on when all is done.
  /// @param context  names the run in the report
  /// @return false when nothing was done: after a message, another run has the instruments; or the program ends
  bool Run(const std::string& context, const std::function<void()>& run, const std::function<void()>& end);
  /// Does a part of the end. An exception ends here; it is reported unless one of this run has been.
  void Attempt(const std::function<void()>& part);
  /// Every planned step was run.
  void Finish() { outcome_ = RunOutcome::Finished; }
  bool IsRunning() const { return running_; }
  RunOutcome Outcome() const { return outcome_; }

  /// RF off, quietly. Where it can't be switched off every later call tries again.
  void RfOff() override;

  /// RF off, then what failed. Of the failures on the bus only the first is told: an instrument that is gone fails at
  /// everything that is still tried. @return false
  bool Fail(const Failure& failure);
  bool Fail(const std::string& text, MessageIcon icon = MessageIcon::None) { return Fail(Failure(text, icon)); }
  /// Whether it was done; otherwise it fails, with what that means to the run.
  template <class T>
  bool Ok(const Result<T>& result, const std::string& meaning = {}, MessageIcon icon = MessageIcon::None) {
    return result || Fail(Failure(result.error()).Add(Failure(meaning, icon)));
  }
  /// The reading, if there is one: what is read without RF is none.
  std::optional<double> Reading(const Result<double>& result);
  /// The operator goes on after a failure was told: the next one is told again.
  void GoOn() { busFailureTold_ = false; }

 private:
  void Report(const std::exception& error);
  void RunTrapped(const std::function<void()>& run);

  Shell& shell_;
  SigGen& sigGen_;
  std::string context_;
  std::exception_ptr programEnd_;
  bool reported_ = false;
  bool busFailureTold_ = false;
  bool running_ = false;
  RunOutcome outcome_ = RunOutcome::NotRun;
};

}  // namespace hylden
