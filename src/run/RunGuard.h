#pragma once

#include <exception>
#include <functional>
#include <string>

#include "run/RunOutcome.h"

namespace hylden {

class Shell;
class SigGen;

/// Has the instruments for a run, one run at a time, and keeps the promise that it makes to its operator: an exception,
/// from wherever it comes, ends the run with RF off and with one report, and the end of the run goes on behind it. RF
/// is also off when an instrument's failure is told.
class RunGuard {
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

 private:
  void Report(const std::exception& error);
  void RfOffQuietly();
  void RunTrapped(const std::function<void()>& run);

  Shell& shell_;
  SigGen& sigGen_;
  std::string context_;
  std::exception_ptr programEnd_;
  bool reported_ = false;
  bool running_ = false;
  RunOutcome outcome_ = RunOutcome::NotRun;
};

}  // namespace hylden
