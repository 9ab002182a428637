#include "shell/Shell.h"

#include <exception>
#include <utility>

#include "platform/FlagRaised.h"

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

bool Shell::ClaimInstruments(std::function<void()> makeSafe) {
  if (makeSafe_) return false;
  makeSafe_ = std::move(makeSafe);
  if (!runNotice.empty()) log.LogFile(runNotice);
  return true;
}

void Shell::ReleaseInstruments() {
  makeSafe_ = nullptr;
  busFailure_.clear();
  failureShown_ = false;
}

void Shell::MakeSafe() {
  if (!makeSafe_ || makingSafe_) return;
  const FlagRaised scope(makingSafe_);
  makeSafe_();
}

void Shell::TellFailure(const std::string& text, MessageIcon icon) {
  MakeSafe();
  dialogs.Tell(text, icon);
}

void Shell::ReportBusFailure(const std::string& text, const std::string& status) {
  MakeSafe();
  if (!makeSafe_) return dialogs.Tell(text + status, MessageIcon::Exclamation);
  if (failureShown_) return;
  busFailure_ += busFailure_.empty() ? text + status : "\r\n" + text;
}

void Shell::ShowFailure(const std::string& text, MessageIcon icon) {
  std::string shown = std::exchange(busFailure_, {});
  if (!shown.empty()) {
    failureShown_ = true;
    if (icon == MessageIcon::None) icon = MessageIcon::Exclamation;
    if (!text.empty()) shown += "\r\n";
  }
  shown += text;
  if (shown.empty()) return;
  MakeSafe();
  dialogs.Tell(shown, icon);
}

void Shell::ReportError(const RuntimeError& error, std::string_view context, std::string_view path) {
  try {
    MakeSafe();
  } catch (const std::exception&) {
    // What there is to report is told all the same, and the end of the run tries again.
  }
  std::string text = "Error # " + std::to_string(error.Number()) + "\r" + error.Description() + "\r";
  text.append(context).append("\r").append(path);
  dialogs.Show({text, "Error", MessageIcon::Critical});
}

void Shell::ReportUnforeseen(const std::exception& error, std::string_view context) {
  if (InstrumentsClaimed()) delay.RequestHalt();
  MakeSafe();
  ReportError(error, context);
}

void Shell::ReportError(const std::exception& error, std::string_view context, std::string_view path) {
  const auto* numbered = dynamic_cast<const RuntimeError*>(&error);
  ReportError(numbered ? *numbered : RuntimeError(kInternalError, "Internal error"), context, path);
}

}  // namespace hylden
