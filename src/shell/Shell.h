#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/Clock.h"
#include "platform/Dialogs.h"
#include "platform/EventLoop.h"
#include "platform/Journals.h"
#include "platform/Platform.h"
#include "platform/Printer.h"
#include "platform/Speaker.h"
#include "platform/TracedGpib.h"
#include "shell/BDelay.h"
#include "shell/EndOfProgram.h"
#include "shell/Failure.h"
#include "shell/INISettings.h"
#include "shell/RunAtWork.h"
#include "shell/RunLog.h"
#include "shell/TimedDialogs.h"

namespace hylden {

/// What every part of the program shares: the machine, the settings, the run log, the waits.
class Shell {
 public:
  Shell(const Platform& platform, const Directories& directories);

  TimedDialogs dialogs;  ///< the platform's
  Clock& clock;
  EventLoop& events;
  Speaker& speaker;
  Printer& printer;
  TracedGpib gpib;  ///< the platform's driver, with a trace of all that goes over the bus
  INISettings settings;
  RunLog log;
  BDelay delay;
  EndOfProgram end;

  /// What the run log has to say of every run, and every window: which instruments are only simulated. Empty where none
  /// is.
  std::string runNotice;
  /// Whose account the program runs under.
  std::string user;
  /// Where runs keep their rows while they record; null: nowhere.
  Journals* journals = nullptr;
  /// The journal of a run that ended early stays when its rows are settled, since the run may be continued.
  bool keepsJournals = false;

  /// Shows that a file has been saved; may be missing.
  std::function<void(const std::string& path)> onSaved;
  void Saved(const std::string& path) const {
    if (onSaved) onSaved(path);
  }

  /// Gives a run the instruments until it releases them.
  /// @return false after a message: another one has them
  bool ClaimInstruments(RunAtWork& run);
  void ReleaseInstruments() { run_ = nullptr; }
  /// A run has the instruments.
  bool InstrumentsClaimed() const { return run_ != nullptr; }
  /// The one that has them; null when nobody has.
  const RunAtWork* AtWork() const { return run_; }

  /// Shows the boxes of a failure. While a run has the instruments, RF goes off first.
  void Tell(const Failure& failure);
  /// Whether it was done; otherwise it is told.
  template <class T>
  bool Ok(const Result<T>& result) {
    if (!result) Tell(result.error());
    return result.has_value();
  }
  /// Shows the standard report of what was thrown.
  void ReportError(const std::exception& error, std::string_view context, std::string_view path = {}) {
    Tell(Failure::Report(error, context, path));
  }
  /// The same for a failure that nobody foresaw: a run that is on is halted.
  void ReportUnforeseen(const std::exception& error, std::string_view context);

 private:
  RunAtWork* run_ = nullptr;  ///< the one that has the instruments
};

}  // namespace hylden
