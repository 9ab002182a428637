#include "shell/Shell.h"

#include <exception>

namespace hylden {

Shell::Shell(const Platform& platform, const Directories& directories)
    : dialogs(platform.dialogs, platform.clock),
      clock(platform.clock),
      events(platform.events),
      speaker(platform.speaker),
      printer(platform.printer),
      gpib(platform.gpib, platform.clock),
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
  if (run_ && !run_->GivesWayTo(run)) {
    dialogs.Tell(std::string(run_->Name()) + " is using the instruments");
    return false;
  }
  run_ = &run;
  if (!runNotice.empty()) log.LogFile(runNotice);
  return true;
}

void Shell::Tell(const Failure& failure) {
  if (run_ && !failure.IsSilent()) run_->RfOff();
  for (const Message& box : failure.Boxes()) dialogs.Show(box);
}

void Shell::ReportUnforeseen(const std::exception& error, std::string_view context) {
  if (InstrumentsClaimed()) delay.RequestHalt();
  ReportError(error, context);
}

}  // namespace hylden
