#include "shell/Shell.h"

#include <exception>

namespace hylden {

namespace {

constexpr int kInternalError = 51;

}  // namespace

Shell::Shell(const Platform& platform, const Directories& directories)
    : dialogs(platform.dialogs),
      clock(platform.clock),
      events(platform.events),
      speaker(platform.speaker),
      printer(platform.printer),
      gpib(platform.gpib),
      settings(directories),
      log(settings, clock),
      delay(dialogs, clock, events) {
  settings.onTrouble = [this](const std::string& text) {
    if (InstrumentsClaimed()) return false;  // RF may be on, and no setting is worth a box then
    dialogs.Tell(text, MessageIcon::Exclamation);
    return true;
  };
}

bool Shell::ClaimInstruments(RunAtWork& run) {
  if (run_) return false;
  run_ = &run;
  if (!runNotice.empty()) log.LogFile(runNotice);
  return true;
}

void Shell::ReportError(const RuntimeError& error, std::string_view context, std::string_view path) {
  if (run_) run_->RfOff();
  std::string text = "Error # " + std::to_string(error.Number()) + "\r" + error.Description() + "\r";
  text.append(context).append("\r").append(path);
  dialogs.Show({text, "Error", MessageIcon::Critical});
}

void Shell::ReportUnforeseen(const std::exception& error, std::string_view context) {
  if (InstrumentsClaimed()) delay.RequestHalt();
  ReportError(error, context);
}

void Shell::ReportError(const std::exception& error, std::string_view context, std::string_view path) {
  const auto* numbered = dynamic_cast<const RuntimeError*>(&error);
  ReportError(numbered ? *numbered : RuntimeError(kInternalError, "Internal error"), context, path);
}

}  // namespace hylden
