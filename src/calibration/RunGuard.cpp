#include "calibration/RunGuard.h"

#include <stdexcept>
#include <utility>

#include "instruments/SigGen.h"
#include "shell/Shell.h"

namespace hylden {

bool RunGuard::Begin() {
  const bool free = shell_.ClaimInstruments([this] {
    if (sigGen_.RfIsOn()) sigGen_.SilenceRf();
  });
  if (!free) shell_.dialogs.Tell("Another run is using the instruments");
  return free;
}

void RunGuard::Run(const std::string& context, const std::function<void()>& run) {
  context_ = context;
  programEnd_ = nullptr;
  reported_ = false;
  try {
    run();
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

void RunGuard::Finish() {
  shell_.ReleaseInstruments();
  if (const std::exception_ptr programEnd = std::exchange(programEnd_, nullptr)) std::rethrow_exception(programEnd);
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
    sigGen_.RfIsOn() ? sigGen_.SilenceRf() : sigGen_.RfOff();
  } catch (const std::exception&) {
    // Taking the instruments down tries again.
  }
}

}  // namespace hylden
