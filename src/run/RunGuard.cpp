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
  Claim(Shell& shell, std::function<void()> makeSafe)
      : shell_(shell), granted_(shell.ClaimInstruments(std::move(makeSafe))) {}
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
  const Claim claim(shell_, [this] {
    if (sigGen_.RfIsOn()) sigGen_.SilenceRf();
  });
  if (!claim.Granted()) {
    shell_.dialogs.Tell("Another run is using the instruments");
    return false;
  }
  {
    const FlagRaised running(running_);
    context_ = context;
    programEnd_ = nullptr;
    reported_ = false;
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
    shell_.ShowFailure();
  } catch (const ProgramEnd&) {
    RfOffQuietly();
    programEnd_ = std::current_exception();
  } catch (const std::exception& error) {
    RfOffQuietly();
    Report(error);
  } catch (...) {
    RfOffQuietly();
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

void RunGuard::RfOffQuietly() {
  try {
    sigGen_.SilenceRf();
  } catch (const std::exception&) {
    // Taking the instruments down tries again.
  }
}

}  // namespace hylden
