#include "run/RunGuard.h"

#include <stdexcept>
#include <utility>

#include "instruments/SigGen.h"
#include "platform/FlagRaised.h"
#include "shell/Shell.h"

namespace hylden {

namespace {

/// The instruments, as long as it lives.
class Claim {
 public:
  Claim(Shell& shell, RunAtWork& run) : shell_(shell), granted_(shell.ClaimInstruments(run)) {}
  ~Claim() {
    if (granted_) shell_.ReleaseInstruments();
  }
  Claim(const Claim&) = delete;
  Claim& operator=(const Claim&) = delete;

  bool Granted() const { return granted_; }

 private:
  Shell& shell_;
  bool granted_;
};

}  // namespace

bool RunGuard::Run(const std::string& context, const std::function<void()>& run, const std::function<void()>& end) {
  if (!shell_.end.MayStart()) return false;
  const Claim claim(shell_, *this);
  if (!claim.Granted()) return false;
  {
    const FlagRaised running(running_);
    context_ = context;
    programEnd_ = nullptr;
    reported_ = busFailureTold_ = false;
    outcome_ = RunOutcome::EndedEarly;
    RunTrapped(run);
    end();
  }
  if (const std::exception_ptr programEnd = std::exchange(programEnd_, nullptr)) std::rethrow_exception(programEnd);
  return true;
}

void RunGuard::RunTrapped(const std::function<void()>& run) {
  try {
    run();
  } catch (const ProgramEnd&) {
    RfOff();
    programEnd_ = std::current_exception();
  } catch (const std::exception& error) {
    RfOff();
    Report(error);
  } catch (...) {
    RfOff();
    Report(std::runtime_error("Unknown failure"));
  }
}

void RunGuard::Attempt(const std::function<void()>& part) {
  try {
    part();
  } catch (const ProgramEnd&) {
  } catch (const std::exception& error) {
    Report(error);
  } catch (...) {
    Report(std::runtime_error("Unknown failure"));
  }
}

void RunGuard::Report(const std::exception& error) {
  if (reported_) return;
  reported_ = true;
  try {
    shell_.ReportError(error, context_);
  } catch (const std::exception&) {
    // The operator can't be told; the end of the run goes on.
  }
}

void RunGuard::RfOff() {
  constexpr int kAttempts = 2;  // a box may stand on it for hours
  for (int attempt = 0; attempt < kAttempts && sigGen_.RfIsOn(); ++attempt) {
    try {
      (void)sigGen_.SilenceRf();
    } catch (const std::exception&) {
      // Taking the instruments down tries again.
    }
  }
}

bool RunGuard::Fail(const Failure& failure) {
  RfOff();
  if (failure.IsOnBus() && std::exchange(busFailureTold_, true)) return false;
  shell_.dialogs.DefaultPointer();
  for (const Message& box : failure.Boxes()) shell_.dialogs.Show(box);
  return false;
}

std::optional<double> RunGuard::Reading(const Result<double>& result) {
  if (!Ok(result) || sigGen_.RfState() != Rf::On) return std::nullopt;
  return *result;
}

}  // namespace hylden
