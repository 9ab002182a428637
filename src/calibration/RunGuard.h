#pragma once

#include <exception>
#include <functional>
#include <string>

namespace hylden {

class Shell;
class SigGen;

/// Keeps the promise that a run makes to its operator: an exception, from wherever it comes, ends the run with RF off
/// and with one report, and the end of the run goes on behind it. RF is also off when an instrument's failure is told.
class RunGuard {
 public:
  RunGuard(Shell& shell, SigGen& sigGen) : shell_(shell), sigGen_(sigGen) {}

  /// Takes the instruments for the run, until Finish. @return false after a message: another run has them
  bool Begin();
  /// Does the run proper. An exception switches RF off at once and is reported.
  /// @param context  names the run in the report
  void Run(const std::string& context, const std::function<void()>& run);
  /// Does a part of the end of the run. An exception ends here; it is reported unless one of this run has been.
  void Attempt(const std::function<void()>& part);
  /// After the end of the run: gives the instruments back, and throws what the run proper threw to end the program, if
  /// it did.
  void Finish();

 private:
  void Report(const std::exception& error);
  void RfOffQuietly();

  Shell& shell_;
  SigGen& sigGen_;
  std::string context_;
  std::exception_ptr programEnd_;
  bool reported_ = false;
};

}  // namespace hylden
